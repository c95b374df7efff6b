#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// The function that runs inside the guard.
typedef void (*KoruGuardedWork)(void* context);

// Called with the exception (an NSException, valid until the current autorelease pool is drained) and the
// work's context.
typedef void (*KoruExceptionHandler)(void* context, void* exception);

// Runs work(context). An NSException ends the work, running the destructors it unwinds, and is passed to
// caught. Anything else, a C++ exception or a thrown object of another class, passes through unchanged.
void koruGuard(KoruGuardedWork work, KoruExceptionHandler caught, void* context);

#ifdef __cplusplus
}
#endif
