#pragma once

#import <Foundation/Foundation.h>

// One form of a picture: its size in pixels and how fine its samples are.
@interface NSImageRep : NSObject {
  @protected
    NSSize _size;
    NSInteger _pixelsWide;
    NSInteger _pixelsHigh;
    NSInteger _bitsPerSample;
    BOOL _alpha;
}

// In points.
- (NSSize)size;
- (void)setSize:(NSSize)size;

- (NSInteger)pixelsWide;
- (NSInteger)pixelsHigh;
- (NSInteger)bitsPerSample;
- (BOOL)hasAlpha;

@end
