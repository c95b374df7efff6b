// Read before each Objective-C source when clang-tidy looks at it: GCC's runtime header writes nil as a bare
// cast, which clang takes neither in comparisons nor in constant expressions; on macOS it is a null pointer,
// too.
#include <objc/objc.h>
#include <stddef.h>
#undef nil
#ifdef __cplusplus
#define nil nullptr
#else
#define nil NULL
#endif
