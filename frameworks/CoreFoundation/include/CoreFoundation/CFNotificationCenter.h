#pragma once

#include <CoreFoundation/CFBase.h>

// Notifications in this process. The center is Foundation's default one, to which the address book posts
// kABDatabaseChangedNotification and kABDatabaseChangedExternallyNotification.
typedef struct __CFNotificationCenter* CFNotificationCenterRef;

// Called on the thread that posts. [observer] is the pointer that was added, [object] the sender.
typedef void (*CFNotificationCallback)(CFNotificationCenterRef center, void* observer, CFStringRef name,
                                       const void* object, CFDictionaryRef userInfo);

typedef CFIndex CFNotificationSuspensionBehavior;
enum {
    CFNotificationSuspensionBehaviorDrop = 1,
    CFNotificationSuspensionBehaviorCoalesce = 2,
    CFNotificationSuspensionBehaviorHold = 3,
    CFNotificationSuspensionBehaviorDeliverImmediately = 4
};

CF_EXPORT CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void);

// Registers a callback. NULL as the name or object means any. The suspension behaviour is ignored, as this
// center is never suspended.
CF_EXPORT void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                               CFNotificationCallback callBack, CFStringRef name,
                                               const void* object,
                                               CFNotificationSuspensionBehavior suspensionBehavior);

// Removes the callbacks that were added with the same observer, and with the same name and object unless
// these are NULL.
CF_EXPORT void CFNotificationCenterRemoveObserver(CFNotificationCenterRef center, const void* observer,
                                                  CFStringRef name, const void* object);
CF_EXPORT void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void* observer);
CF_EXPORT void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name,
                                                    const void* object, CFDictionaryRef userInfo,
                                                    Boolean deliverImmediately);
