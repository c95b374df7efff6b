#import <ScriptingBridge/SBApplication.h>

#include "frameworks/ScriptingBridge/SBObjectInternal.h"
#include "frameworks/ScriptingBridge/remote_application.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ratio>
#include <string>

namespace {

using scripting_bridge::RemoteApplication;

// Apple's unit for time-outs.
using Ticks = std::chrono::duration<long, std::ratio<1, 60>>;

constexpr Ticks kTimeout = std::chrono::seconds(5);
constexpr Ticks kLongestTimeout = std::chrono::hours(24);

RemoteApplication& in(void* held) {
    return *static_cast<RemoteApplication*>(held);
}

std::string configuredName() {
    const char* name = std::getenv("ADDRESSBOOK_APPLICATION");
    return name != nullptr && *name != '\0' ? name : "org.gnome.Contacts";
}

// Returns the identifier of an element in the form that D-Bus takes, UTF-8 without zero characters; raises
// when there is none.
std::string elementIdentifier(id element) {
    id identifier = [element isKindOfClass:[SBObject class]] ? [element elementIdentifier] : nil;
    const char* bytes = [identifier isKindOfClass:[NSString class]] ? [identifier UTF8String] : nullptr;
    if (bytes == nullptr ||
        std::strlen(bytes) != [identifier lengthOfBytesUsingEncoding:NSUTF8StringEncoding]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"What is to be selected has no id that is text"];
    }
    return bytes;
}

void raiseIf(const std::string& failure) {
    if (!failure.empty()) {
        [NSException raise:NSGenericException format:@"%@", [NSString stringWithUTF8String:failure.c_str()]];
    }
}

} // namespace

@implementation SBApplication

+ (id)applicationWithBundleIdentifier:(NSString*)identifier {
    return [identifier isEqual:@"com.apple.AddressBook"] ? [[[self alloc] init] autorelease] : nil;
}

- (id)init {
    if ((self = [super init]) != nil) {
        _remote = new RemoteApplication(configuredName());
        [self setTimeout:kTimeout.count()];
    }
    return self;
}

- (void)dealloc {
    delete static_cast<RemoteApplication*>(_remote);
    [super dealloc];
}

- (BOOL)isRunning {
    const std::string absence = in(_remote).absence();
    if (!absence.empty()) {
        NSLog(@"%s; start it, or name another one in ADDRESSBOOK_APPLICATION.", absence.c_str());
    }
    return absence.empty();
}

- (void)activate {
    raiseIf(in(_remote).activate());
}

- (SBElementArray*)people {
    return [[[SBElementArray alloc] init] autorelease];
}

- (void)setSelection:(NSArray*)selection {
    if ([selection count] == 0) {
        return;
    }
    const std::string person = elementIdentifier([selection objectAtIndex:0]);
    raiseIf(in(_remote).activateAction("show-contact", person));
}

- (long)timeout {
    return _timeout;
}

- (void)setTimeout:(long)ticks {
    _timeout = ticks > 0 ? std::min(ticks, kLongestTimeout.count()) : kTimeout.count();
    in(_remote).setTimeout(std::chrono::duration_cast<std::chrono::microseconds>(Ticks(_timeout)));
}

@end
