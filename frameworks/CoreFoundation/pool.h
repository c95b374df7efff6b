#pragma once

// C programs have no autorelease pool, so each function makes one for the statements given. An exception
// leaves this pool to the enclosing one, if there is any, as the exception itself may be in it.

#import <Foundation/Foundation.h>

#define IN_POOL(...)                                                                                         \
    do {                                                                                                     \
        NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];                                         \
        __VA_ARGS__;                                                                                         \
        [pool_ release];                                                                                     \
    } while (0)

// Evaluates an expression in a pool of its own, and returns its object, which the caller owns.
#define OWNED(...)                                                                                           \
    ({                                                                                                       \
        id object_;                                                                                          \
        IN_POOL(object_ = [(__VA_ARGS__) retain]);                                                           \
        (void*)object_;                                                                                      \
    })
