#pragma once

#import <Foundation/Foundation.h>

// Selects the person with the id in the Address Book application and brings it to the front; the application
// is never started. Whether there is such a person is the application's affair. "0", or nil when it failed
// the call with kAddressBookNotStarted.
[[nodiscard]] NSString* displayPerson(NSString* uniqueId);
