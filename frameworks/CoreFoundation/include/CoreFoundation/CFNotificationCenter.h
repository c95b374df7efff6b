#pragma once

#include <CoreFoundation/CFBase.h>

// Who is told what happens in this process: the center is Foundation's default one, where the address book
// posts kABDatabaseChangedNotification and kABDatabaseChangedExternallyNotification.
typedef struct __CFNotificationCenter* CFNotificationCenterRef;

// Called on the thread that posts. [observer] is what the observer was added with, [object] who posts.
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

// Any name, any object: NULL. The behaviour is ignored, as this center is never suspended.
CF_EXPORT void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                               CFNotificationCallback callBack, CFStringRef name,
                                               const void* object,
                                               CFNotificationSuspensionBehavior suspensionBehavior);

// Takes back what was added with the same observer, and the same name and object unless they are NULL.
CF_EXPORT void CFNotificationCenterRemoveObserver(CFNotificationCenterRef center, const void* observer,
                                                  CFStringRef name, const void* object);
CF_EXPORT void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void* observer);
CF_EXPORT void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name,
                                                    const void* object, CFDictionaryRef userInfo,
                                                    Boolean deliverImmediately);
