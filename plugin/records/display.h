#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Selects the person with the id in the Address Book application and brings it to the front; the application
// is never started. Whether there is such a person is the application's affair. Returns "0", or nil when it
// fails the call with kAddressBookNotStarted.
[[nodiscard]] NSString* displayPerson(NSString* uniqueId);

} // namespace koru
