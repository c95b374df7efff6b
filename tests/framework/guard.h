#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Runs [work] and answers the platform exception that it raised, autoreleased; nil when it raised none.
NSException* exceptionOf(void (*work)(void*), void* context);

#ifdef __cplusplus
}
#endif
