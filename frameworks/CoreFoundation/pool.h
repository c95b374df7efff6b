#pragma once

// Functions for C run without an autorelease pool around them, so each has its own. An exception leaves it to
// the pool outside, if there is one: the exception itself may be in it.

#import <Foundation/Foundation.h>

#define IN_POOL(...)                                                                                         \
    do {                                                                                                     \
        NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];                                         \
        __VA_ARGS__;                                                                                         \
        [pool_ release];                                                                                     \
    } while (0)

// The expression's object, owned by the caller; evaluated in a pool of its own.
#define OWNED(...)                                                                                           \
    ({                                                                                                       \
        id object_;                                                                                          \
        IN_POOL(object_ = [(__VA_ARGS__) retain]);                                                           \
        (void*)object_;                                                                                      \
    })
