#include "plugin/support/numbers.h"
#include "plugin/support/retained.h"
#include "tests/plugin/support.h"

// Counts how many of its kind there are.
@interface VelocardProbe : NSObject
+ (int)living;
@end

namespace {
int livingProbes = 0;
}

@implementation VelocardProbe
- (id)init {
    ++livingProbes;
    return [super init];
}
- (void)dealloc {
    --livingProbes;
    [super dealloc];
}
+ (int)living {
    return livingProbes;
}
@end

namespace {

using Holder = Retained<VelocardProbe>;

VelocardProbe* newProbe() {
    return [[VelocardProbe alloc] init];
}

TEST(RetainedTest, AdoptTakesTheClaimOver) {
    {
        const auto holder = Holder::adopt(newProbe());
        EXPECT_EQ([holder.get() retainCount], 1U);
        EXPECT_EQ([VelocardProbe living], 1);
    }
    EXPECT_EQ([VelocardProbe living], 0);
}

TEST(RetainedTest, RetainAddsAClaim) {
    VelocardProbe* probe = newProbe();
    {
        const auto holder = Holder::retain(probe);
        EXPECT_EQ([probe retainCount], 2U);
    }
    EXPECT_EQ([probe retainCount], 1U);
    [probe release];
    EXPECT_EQ([VelocardProbe living], 0);
}

TEST(RetainedTest, CopyMoveAndReplaceKeepTheCount) {
    auto first = Holder::adopt(newProbe());
    Holder second = first;
    EXPECT_EQ([first.get() retainCount], 2U);
    Holder third = std::move(second);
    EXPECT_FALSE(second); // NOLINT(bugprone-use-after-move): an empty holder is what is looked for
    EXPECT_EQ([third.get() retainCount], 2U);
    third = Holder::adopt(newProbe());
    EXPECT_EQ([VelocardProbe living], 2);
    first = first;
    EXPECT_EQ([first.get() retainCount], 1U);
    first.reset();
    first.reset();
    EXPECT_FALSE(first);
    EXPECT_EQ([VelocardProbe living], 1);
    [third.leak() release];
    EXPECT_EQ([VelocardProbe living], 0);
}

TEST(RetainedTest, NothingIsHeldAsNil) {
    Holder holder = Holder::retain(nil);
    EXPECT_EQ(holder.get(), nil);
    holder = Holder();
    holder.reset();
}

TEST(TruncatedTest, DropsTheFractionAndStaysInBounds) {
    EXPECT_EQ(truncated(2.9), 2);
    EXPECT_EQ(truncated(-2.9), -2);
    EXPECT_EQ(truncated(1e300), std::numeric_limits<long long>::max());
    EXPECT_EQ(truncated(-1e300), std::numeric_limits<long long>::min());
    EXPECT_EQ(truncated(std::nan("")), 0);
}

} // namespace
