#import "plugin/notify/notification_listener.h"

#include "plugin/support/host_interface.h"
#include "plugin/support/retained.h"
#import <AddressBook/AddressBook.h>
#import <Foundation/NSPort.h>
#include <vector>

namespace koru {
namespace {

// Holds the lock to the end of the block.
class Locked {
  public:
    explicit Locked(NSLock* lock) : lock_(lock) { [lock_ lock]; }
    ~Locked() { [lock_ unlock]; }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    NSLock* lock_;
};

// A kind of change: its key in the notification, and the script's parameter.
struct Change {
    NSString* const* key;
    NSString* format;
};

// The kinds of change in the order in which they are looked for.
const Change kChanges[] = {
    {&kABInsertedRecords, @"New %@"},
    {&kABUpdatedRecords, @"Updated %@"},
    {&kABDeletedRecords, @"Deleted %@"},
};

// Returns the script's parameter: the first record of the first kind of change that the notification has.
// When it has none, returns the notification itself, which raises when it is used as a string.
NSString* parameterOf(NSNotification* notification) {
    NSDictionary* changes = [notification userInfo];
    for (const Change& change : kChanges) {
        if (NSArray* ids = [changes objectForKey:*change.key]; ids != nil) {
            return [NSString stringWithFormat:change.format, [ids objectAtIndex:0]];
        }
    }
    return static_cast<NSString*>(static_cast<id>(notification));
}

// Sets the host's text to the string's UTF-16 units: encodes the string and leaves out the byte-order mark.
// For some texts with surrogates GNUstep's encoding lacks the last unit; then the units are copied one by
// one.
void assignEncoded(fmx::Text& text, NSString* string) {
    constexpr NSUInteger kMarkUnits = 1;
    NSData* encoded = [string dataUsingEncoding:NSUnicodeStringEncoding];
    const NSUInteger length = [string length];
    if ([encoded length] == (kMarkUnits + length) * sizeof(TextUnit)) {
        text.AssignUnicodeWithLength(static_cast<const TextUnit*>([encoded bytes]) + kMarkUnits,
                                     static_cast<fmx::uint32>(length));
    } else {
        std::vector<TextUnit> units(length);
        [string getCharacters:units.data() range:NSMakeRange(0, length)];
        text.AssignUnicodeWithLength(units.data(), static_cast<fmx::uint32>(length));
    }
}

} // namespace
} // namespace koru

using namespace koru;

@implementation KORUXNotificationListener

- (id)init {
    if ((self = [super init]) != nil) {
        auto undo = Retained<KORUXNotificationListener>::adopt(self);
        theDB.construct();
        theScript.construct();
        theParam.construct();
        locale.construct(fmx::Locale::kType_System);
        data.construct();
        (void)undo.leak();
    }
    return self;
}

- (void)dealloc {
    data.destroy();
    locale.destroy();
    theParam.destroy();
    theScript.destroy();
    theDB.destroy();
    [notificationPort invalidate];
    [notificationPort release];
    [notificationLock release];
    [notificationThread release];
    [notifications release];
    [super dealloc];
}

- (void)setUpThreadingSupport {
    if (notifications != nil) {
        return;
    }
    notifications = [[NSMutableArray alloc] init];
    notificationLock = [[NSLock alloc] init];
    notificationThread = [[NSThread currentThread] retain];
    notificationPort = [[NSMachPort alloc] init];
    [notificationPort setDelegate:self];
    [[NSRunLoop currentRunLoop] addPort:notificationPort forMode:(NSString*)kCFRunLoopCommonModes];
}

- (void)handleMachMessage:(void*)message {
    (void)message;
    for (;;) {
        Retained<NSNotification> notification;
        {
            const Locked locked(notificationLock);
            if ([notifications count] == 0) {
                return;
            }
            notification = Retained<NSNotification>::retain([notifications objectAtIndex:0]);
            [notifications removeObjectAtIndex:0];
        }
        [self processNotification:notification.get()];
    }
}

- (void)processNotification:(NSNotification*)notification {
    if ([NSThread currentThread] != notificationThread) {
        {
            const Locked locked(notificationLock);
            [notifications addObject:notification];
        }
        [notificationPort sendBeforeDate:[NSDate date] components:nil from:nil reserved:0];
        return;
    }
    NSString* parameter = parameterOf(notification);
    const OwnedText text;
    assignEncoded(*text, parameter);
    data->SetAsText(*text, *locale, fmx::Data::kDTText);
    err = FMX_StartScript(theDB.get().get(), theScript.get().get(), kFMXT_Pause, data.get().get());
}

@end
