#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// Selects the person with the id in the Address Book application and brings the application to the front.
// Does not check whether there is such a person, and never starts the application. Returns "0", or nil when
// it fails the call with kAddressBookNotStarted because the application is not running.
[[nodiscard]] NSString* displayPerson(NSString* uniqueId);

} // namespace koru
