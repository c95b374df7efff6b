#pragma once

#import <Foundation/Foundation.h>

// A picture of some size in points, with the representations that it was read into.
@interface NSImage : NSObject {
  @private
    NSArray* _representations;
    NSSize _size;
}

// Reads a picture file: BMP, GIF (its first frame), JPEG or PNG, whatever it is called. The pixels stand
// upright: what a camera says about the side that is up is carried out. nil for anything else, for a file
// that stops short or is damaged beyond what can be mended, and for more pixels than NSBitmapImageRep takes.
// The size is one point a pixel.
- (id)initWithData:(NSData*)data;

// As above, but with the pixels as they are stored.
- (id)initWithDataIgnoringOrientation:(NSData*)data;

// How large the picture is meant to be shown; setting it changes no pixel.
- (NSSize)size;
- (void)setSize:(NSSize)size;

// NSImageRep objects, at least one in an image that was read; empty after a plain init.
- (NSArray*)representations;

// NO when there is no representation.
- (BOOL)isValid;

@end
