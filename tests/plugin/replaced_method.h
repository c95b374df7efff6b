#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

// Replaces the implementation of a class's method, also of an inherited one, for the rest of the block. For a
// class method, give the class's class (object_getClass). When the class has subclasses, replace the method
// in these: the GNU runtime does not update all of them.
class ReplacedMethod {
  public:
    template <typename Function>
    ReplacedMethod(Class type, SEL selector, Function* implementation) : type_(type), selector_(selector) {
        Method method = class_getInstanceMethod(type_, selector_);
        original_ = method_getImplementation(method);
        const IMP replacement = reinterpret_cast<IMP>(reinterpret_cast<void*>(implementation));
        const char* encoding = method_getTypeEncoding(method);
        // Setting the implementation of an inherited method would change that of the superclass.
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
