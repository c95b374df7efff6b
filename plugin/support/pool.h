#pragma once

#import <Foundation/Foundation.h>

namespace koru {

// An autorelease pool for the rest of the block. Everything that the host calls runs inside one, which is
// outside the guard: an NSException is itself autoreleased and must outlive the frames that it unwinds.
class Pool {
  public:
    Pool() {
        static Class const type = [NSAutoreleasePool class]; // GNUstep looks a class up by its name each time
        pool_ = [[type alloc] init];
    }
    ~Pool() { [pool_ drain]; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    NSAutoreleasePool* pool_;
};

} // namespace koru
