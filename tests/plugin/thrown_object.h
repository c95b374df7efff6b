#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Throws an object of any class, without retaining it.
void throwObject(void* object);

// Runs work(context) and returns the object that it throws; null when it throws nothing.
void* objectThrownBy(void (*work)(void* context), void* context);

#ifdef __cplusplus
}
#endif
