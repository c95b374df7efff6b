// Plain Objective-C, where any object can be thrown and caught.

#include "tests/plugin/thrown_object.h"
#import <Foundation/Foundation.h>

void throwObject(void* object) {
    @throw (id)object;
}

void* objectThrownBy(void (*work)(void* context), void* context) {
    @try {
        work(context);
    } @catch (id object) {
        return object;
    }
    return NULL;
}
