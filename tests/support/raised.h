#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Runs work(context). Returns the platform exception that it raises, autoreleased; nil when it raises none.
NSException* exceptionOf(void (*work)(void*), void* context);

#ifdef __cplusplus
}

// Runs the callable. Returns the platform exception that it raises, autoreleased; nil when it raises none.
template <typename Work>
NSException* raised(Work work) {
    return exceptionOf([](void* context) { (*static_cast<Work*>(context))(); }, &work);
}
#endif
