#include "tests/foundation/support.h"

@implementation CountingDelegate

- (id)init {
    if ((self = [super init]) != nil) {
        thread = [NSThread currentThread];
    }
    return self;
}

- (void)handleMachMessage:(void*)message {
    ++messages;
    onOtherThread = onOtherThread || [NSThread currentThread] != thread;
    withHeader = withHeader || message != nullptr;
    if (then != nullptr) {
        (*static_cast<std::function<void()>*>(then))();
    }
}

@end

@implementation ProbePort

- (void)dealloc {
    *gone = true;
    [super dealloc];
}

@end

void PortTest::SetUp() {
    pool_ = [[NSAutoreleasePool alloc] init];
    port_ = [[NSMachPort alloc] init];
    delegate_ = [[CountingDelegate alloc] init];
    [port_ setDelegate:delegate_];
}

void PortTest::TearDown() {
    [port_ invalidate];
    [port_ release];
    [delegate_ release];
    [pool_ release];
}

BOOL PortTest::send(NSMachPort* port) {
    return [port sendBeforeDate:[NSDate date] components:nil from:nil reserved:0];
}

void PortTest::runUntil(const std::function<bool()>& done, NSString* mode) {
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:10];
    while (!done() && [limit timeIntervalSinceNow] > 0) {
        NSAutoreleasePool* turn = [[NSAutoreleasePool alloc] init];
        [loop() runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
        [turn release];
    }
}

void PortTest::expectMessages(int count, NSString* mode) {
    runUntil([&] { return delegate_->messages >= count; }, mode);
    [loop() runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
    EXPECT_EQ(delegate_->messages, count);
    EXPECT_FALSE(delegate_->onOtherThread);
    EXPECT_FALSE(delegate_->withHeader);
}
