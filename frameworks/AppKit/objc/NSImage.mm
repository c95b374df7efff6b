#import <AppKit/NSImage.h>

#include "frameworks/AppKit/objc/bitmap.h"

using namespace appkit;

@implementation NSImage

- (id)init {
    if ((self = [super init]) != nil) {
        _representations = [[NSArray alloc] init];
    }
    return self;
}

- (id)initWithData:(NSData*)data orientation:(Orientation)orientation {
    if ((self = [super init]) == nil) {
        return nil;
    }
    NSBitmapImageRep* bitmap = [[NSBitmapImageRep alloc] initWithData:data orientation:orientation];
    if (bitmap == nil) {
        [self release];
        return nil;
    }
    _size = [bitmap size];
    _representations = [[NSArray alloc] initWithObjects:bitmap, nil];
    [bitmap release];
    return self;
}

- (id)initWithData:(NSData*)data {
    return [self initWithData:data orientation:Orientation::upright];
}

- (id)initWithDataIgnoringOrientation:(NSData*)data {
    return [self initWithData:data orientation:Orientation::asStored];
}

- (void)dealloc {
    [_representations release];
    [super dealloc];
}

- (NSSize)size {
    return _size;
}

- (void)setSize:(NSSize)size {
    _size = size;
}

- (NSArray*)representations {
    return _representations;
}

- (BOOL)isValid {
    return [_representations count] > 0;
}

@end
