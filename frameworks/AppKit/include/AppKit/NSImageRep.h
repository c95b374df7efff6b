#pragma once

#import <Foundation/Foundation.h>

// A representation of a picture: its size in pixels and the precision of its samples.
@interface NSImageRep : NSObject {
  @protected
    NSSize _size;
    NSInteger _pixelsWide;
    NSInteger _pixelsHigh;
    NSInteger _bitsPerSample;
    BOOL _alpha;
}

// The size in points.
- (NSSize)size;
- (void)setSize:(NSSize)size;

- (NSInteger)pixelsWide;
- (NSInteger)pixelsHigh;
- (NSInteger)bitsPerSample;
- (BOOL)hasAlpha;

@end
