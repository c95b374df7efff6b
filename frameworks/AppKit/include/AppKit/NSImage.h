#pragma once

#import <Foundation/Foundation.h>

// A picture with a size in points, and its representations as pixels.
@interface NSImage : NSObject {
  @private
    NSArray* _representations;
    NSSize _size;
}

// Reads the bytes of a picture file: BMP, GIF (its first frame), JPEG or PNG. The pixels are upright: the
// camera's orientation is applied. Returns nil for any other file, for one that is incomplete or damaged
// beyond repair, and for more pixels than NSBitmapImageRep accepts. The size is one point a pixel.
- (id)initWithData:(NSData*)data;

// Like -initWithData:, but with the pixels as they are stored.
- (id)initWithDataIgnoringOrientation:(NSData*)data;

// The size in points at which the picture is to be shown; setting it changes no pixel.
- (NSSize)size;
- (void)setSize:(NSSize)size;

// Returns the NSImageRep objects: at least one in an image that was read, none after a plain -init.
- (NSArray*)representations;

// Whether there is a representation.
- (BOOL)isValid;

@end
