// Read before each Objective-C++ source when clang-tidy looks at it: GCC's runtime header writes nil as a
// bare cast, which clang takes neither in comparisons nor in constant expressions; on macOS it is nullptr,
// too.
#include <objc/objc.h>
#undef nil
#define nil nullptr
