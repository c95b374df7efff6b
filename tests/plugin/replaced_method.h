#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

// Puts another implementation in place of a class's method for the rest of the block; for a method of the
// class itself, give the class's class (object_getClass).
class ReplacedMethod {
  public:
    template <typename Function>
    ReplacedMethod(Class type, SEL selector, Function* implementation) : type_(type), selector_(selector) {
        Method method = class_getInstanceMethod(type_, selector_);
        original_ = method_getImplementation(method);
        class_replaceMethod(type_, selector_, reinterpret_cast<IMP>(reinterpret_cast<void*>(implementation)),
                            method_getTypeEncoding(method));
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
