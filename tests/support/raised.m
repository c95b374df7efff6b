// Catching by type works in plain Objective-C only.

#import "tests/support/raised.h"

NSException* exceptionOf(void (*work)(void*), void* context) {
    @try {
        work(context);
    } @catch (NSException* exception) {
        return [[exception retain] autorelease];
    }
    return nil;
}
