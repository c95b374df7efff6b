// An autorelease pool around each test, from before its SetUp to after its TearDown, in every program that is
// linked with this file.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

namespace {

class PoolAroundEachTest : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { pool_ = [[NSAutoreleasePool alloc] init]; }
    void OnTestEnd(const testing::TestInfo&) override { [pool_ release]; }
    NSAutoreleasePool* pool_ = nil;
};

[[maybe_unused]] const bool kListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new PoolAroundEachTest);
    return true;
}();

} // namespace
