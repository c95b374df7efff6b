#import <AppKit/NSImageRep.h>

@implementation NSImageRep

- (NSSize)size {
    return _size;
}

- (void)setSize:(NSSize)size {
    _size = size;
}

- (NSInteger)pixelsWide {
    return _pixelsWide;
}

- (NSInteger)pixelsHigh {
    return _pixelsHigh;
}

- (NSInteger)bitsPerSample {
    return _bitsPerSample;
}

- (BOOL)hasAlpha {
    return _alpha;
}

@end
