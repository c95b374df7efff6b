#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

// Puts another implementation in place of a class's method for the rest of the block, an inherited one too;
// for a method of the class itself, give the class's class (object_getClass). Of a class with subclasses,
// replace the method in these: the runtime of GCC does not tell all of them.
class ReplacedMethod {
  public:
    template <typename Function>
    ReplacedMethod(Class type, SEL selector, Function* implementation) : type_(type), selector_(selector) {
        Method method = class_getInstanceMethod(type_, selector_);
        original_ = method_getImplementation(method);
        const IMP replacement = reinterpret_cast<IMP>(reinterpret_cast<void*>(implementation));
        const char* encoding = method_getTypeEncoding(method);
        // Replacing an inherited method would change the superclass's.
        if (!class_addMethod(type_, selector_, replacement, encoding)) {
            class_replaceMethod(type_, selector_, replacement, encoding);
        }
    }
    ~ReplacedMethod() {
        class_replaceMethod(type_, selector_, original_,
                            method_getTypeEncoding(class_getInstanceMethod(type_, selector_)));
    }
    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

  private:
    Class type_;
    SEL selector_;
    IMP original_;
};
