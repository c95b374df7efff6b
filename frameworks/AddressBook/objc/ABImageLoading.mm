#import <AddressBook/ABImageLoading.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/property_types.h"
#include "frameworks/AddressBook/objc/record.h"

#include <map>
#include <mutex>

using namespace addressbook;

namespace {

// A request: the client, and the picture for it. Both are retained.
struct Request {
    id<ABImageClient> client;
    NSData* data;
};

// The pending requests, by tag. Thread-safe, as clients are called on the main thread, which need not be the
// thread that uses the address book.
class Requests {
  public:
    NSInteger add(const Request& request) {
        const std::lock_guard lock(mutex_);
        requests_[++last_] = request;
        return last_;
    }

    // Removes the request with this tag and returns it, autoreleased; without a client when it is done or
    // cancelled.
    Request take(NSInteger tag) {
        const std::lock_guard lock(mutex_);
        const auto found = requests_.find(tag);
        if (found == requests_.end()) {
            return {nil, nil};
        }
        const Request request = found->second;
        requests_.erase(found);
        return {[request.client autorelease], [request.data autorelease]};
    }

  private:
    std::mutex mutex_;
    std::map<NSInteger, Request> requests_;
    NSInteger last_ = 0;
};

Requests& requests() {
    static Requests all;
    return all;
}

} // namespace

@interface ABImageRequests : NSObject
+ (void)schedule:(NSNumber*)tag;
+ (void)answer:(NSNumber*)tag;
@end

@implementation ABImageRequests

// Has the request answered on the main thread, never from within the call that made it: a loop that performs
// a selector for another thread is woken for it, one that performs it for its own would first wait for its
// limit.
+ (void)schedule:(NSNumber*)tag {
    NSArray* modes = [NSArray arrayWithObjects:NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                                               @"NSEventTrackingRunLoopMode", nil];
    if ([NSThread isMainThread]) {
        [self performSelector:@selector(answer:) withObject:tag afterDelay:0 inModes:modes];
    } else {
        [self performSelectorOnMainThread:@selector(answer:) withObject:tag waitUntilDone:NO modes:modes];
    }
}

+ (void)answer:(NSNumber*)tag {
    const Request request = requests().take([tag integerValue]);
    [request.client consumeImageData:request.data forTag:[tag integerValue]];
}

@end

@implementation ABPerson (ABImageLoading)

- (BOOL)setImageData:(NSData*)data {
    if ([self isReadOnly]) {
        return NO;
    }
    Value picture = data ? requireValue(data, kABDataProperty, @"image") : Value();
    reading([&] { [self book]->set([self liveRecord], std::string(property::kImage), std::move(picture)); });
    return YES;
}

- (NSData*)imageData {
    const Value picture = reading([&] { return [self book]->value(*[self liveRecord], property::kImage); });
    return objectFrom(picture);
}

- (NSInteger)beginLoadingImageDataForClient:(id<ABImageClient>)client {
    requireArgument(client, @"A picture was asked for by no client");
    NSData* data = [[self imageData] retain]; // read here, as only this thread may use the address book now
    const NSInteger tag = requests().add({[client retain], data});
    [ABImageRequests schedule:[NSNumber numberWithInteger:tag]];
    return tag;
}

+ (void)cancelLoadingImageDataForTag:(NSInteger)tag {
    requests().take(tag);
}

@end
