// Plain Objective-C, as with GCC only there a handler can catch by type.

#import "tests/support/raised.h"

NSException* exceptionOf(void (*work)(void*), void* context) {
    @try {
        work(context);
    } @catch (NSException* exception) {
        return [[exception retain] autorelease];
    }
    return nil;
}
