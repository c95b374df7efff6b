#include "tests/framework/support.h"

#include <map>

// Notes what it is handed.
@interface ImageNotes : NSObject <ABImageClient> {
  @public
    std::map<NSInteger, std::string>* _handed;
    bool _onMainThread;
    bool _raises;
}
@end

@implementation ImageNotes

- (void)consumeImageData:(NSData*)data forTag:(NSInteger)tag {
    (*_handed)[tag] = data ? std::string(static_cast<const char*>([data bytes]), [data length]) : "nil";
    _onMainThread = [NSThread isMainThread];
    if (_raises) {
        [NSException raise:NSGenericException format:@"no pictures, please"];
    }
}

@end

namespace {

class ImageLoadingTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        client_ = [[ImageNotes alloc] init];
        client_->_handed = &handed_;
    }
    void TearDown() override {
        [client_ release];
        AddressBookTest::TearDown();
    }
    ABPerson* pictured(const char* picture) {
        ABPerson* one = person(@"Ann", nil);
        [one setImageData:[NSData dataWithBytes:picture length:strlen(picture)]];
        return one;
    }
    // Lets the run loop turn until nothing more comes.
    static void turn() {
        [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }

    std::map<NSInteger, std::string> handed_;
    ImageNotes* client_ = nil;
};

TEST_F(ImageLoadingTest, TheClientIsCalledOnTheRunLoop) {
    const NSInteger tag = [pictured("face") beginLoadingImageDataForClient:client_];
    EXPECT_NE(tag, 0);
    EXPECT_TRUE(handed_.empty());
    turn();
    EXPECT_EQ(handed_, (std::map<NSInteger, std::string>{{tag, "face"}}));
    EXPECT_TRUE(client_->_onMainThread);
    handed_.clear();
    turn();
    EXPECT_TRUE(handed_.empty());
}

TEST_F(ImageLoadingTest, WithoutAPictureItIsHandedNil) {
    const NSInteger tag = [person(@"Ann", nil) beginLoadingImageDataForClient:client_];
    turn();
    EXPECT_EQ(handed_[tag], "nil");
}

TEST_F(ImageLoadingTest, ACancelledRequestIsNotAnswered) {
    ABPerson* one = pictured("one");
    const NSInteger first = [one beginLoadingImageDataForClient:client_];
    [one setImageData:[NSData dataWithBytes:"two" length:3]];
    const NSInteger second = [one beginLoadingImageDataForClient:client_];
    EXPECT_NE(first, second);
    [ABPerson cancelLoadingImageDataForTag:first];
    [ABPerson cancelLoadingImageDataForTag:first];
    [ABPerson cancelLoadingImageDataForTag:0];
    turn();
    EXPECT_EQ(handed_, (std::map<NSInteger, std::string>{{second, "two"}}));
    [ABPerson cancelLoadingImageDataForTag:second];
}

TEST_F(ImageLoadingTest, TheClientLivesUntilItIsCalled) {
    const NSUInteger before = [client_ retainCount];
    ABPerson* one = pictured("face");
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const NSInteger tag = [one beginLoadingImageDataForClient:client_];
    EXPECT_EQ([client_ retainCount], before + 1);
    [ABPerson cancelLoadingImageDataForTag:tag];
    [one beginLoadingImageDataForClient:client_];
    turn();
    client_->_raises = true;
    [one beginLoadingImageDataForClient:client_];
    turn();
    [pool release];
    EXPECT_EQ([client_ retainCount], before);
    EXPECT_EQ(handed_.size(), 2u);
}

TEST_F(ImageLoadingTest, NobodyToCallIsAnError) {
    NSException* exception = raised([&] { [person(@"Ann", nil) beginLoadingImageDataForClient:nil]; });
    EXPECT_TRUE([[exception name] isEqual:NSInvalidArgumentException]);
}

} // namespace
