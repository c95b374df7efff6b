#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// What runs inside the guard.
typedef void (*KoruGuardedWork)(void* context);

// Told of the exception (an NSException, borrowed until the autorelease pool in place is drained), with the
// work's context.
typedef void (*KoruExceptionHandler)(void* context, void* exception);

// Runs work(context). An NSException ends the work (destructors on the way run) and goes to caught; anything
// else, a C++ exception or an object of another class, passes through unchanged.
void koruGuard(KoruGuardedWork work, KoruExceptionHandler caught, void* context);

#ifdef __cplusplus
}
#endif
