#include "tests/foundation/support.h"

#include <cerrno>
#import <objc/runtime.h>
#include <sys/wait.h>

namespace {

TEST(DistributedCentreTest, IsUnsuspendedWithoutANotificationServer) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDate* start = [NSDate date];
    NSDistributedNotificationCenter* centre = [NSDistributedNotificationCenter defaultCenter];
    EXPECT_EQ(raised([&] { [centre setSuspended:NO]; }), nil);
    EXPECT_FALSE([centre suspended]);
    EXPECT_LT(-[start timeIntervalSinceNow], 5);

    Ivar remote = class_getInstanceVariable([NSDistributedNotificationCenter class], "_remote");
    ASSERT_NE(remote, nullptr);
    EXPECT_EQ(object_getIvar(centre, remote), nil);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1); // no child was started
    EXPECT_EQ(errno, ECHILD);
    [pool release];
}

} // namespace
