#pragma once

#import <AppKit/NSImageRep.h>
#import <Foundation/Foundation.h>

// The file types of bitmaps. TIFF and JPEG 2000 have their numbers, but cannot be written here.
enum {
    NSBitmapImageFileTypeTIFF = 0,
    NSBitmapImageFileTypeBMP = 1,
    NSBitmapImageFileTypeGIF = 2,
    NSBitmapImageFileTypeJPEG = 3,
    NSBitmapImageFileTypePNG = 4,
    NSBitmapImageFileTypeJPEG2000 = 5,
    // The names of older systems.
    NSTIFFFileType = NSBitmapImageFileTypeTIFF,
    NSBMPFileType = NSBitmapImageFileTypeBMP,
    NSGIFFileType = NSBitmapImageFileTypeGIF,
    NSJPEGFileType = NSBitmapImageFileTypeJPEG,
    NSPNGFileType = NSBitmapImageFileTypePNG,
    NSJPEG2000FileType = NSBitmapImageFileTypeJPEG2000
};
typedef NSUInteger NSBitmapImageFileType;

// How the samples of a bitmap are laid out.
enum {
    NSBitmapFormatAlphaNonpremultiplied = 1 << 1,
    NSBitmapFormatSixteenBitLittleEndian = 1 << 8,
    NSBitmapFormatSixteenBitBigEndian = 1 << 10
};
typedef NSUInteger NSBitmapFormat;

// A property for JPEG: an NSNumber from 0 (smallest file) to 1 (best quality); 0.8 by default.
extern NSString* const NSImageCompressionFactor;

// A picture as pixels, in rows from top to bottom without padding, with the samples of a pixel next to each
// other (grey, grey and alpha, RGB or RGBA), 8 bits each, or 16 in the machine's byte order. Palettes and
// CMYK become RGB, fewer than 8 bits become 8; colour profiles are not kept. At most 32,767 pixels wide or
// high, and 67,108,864 (64 Mi) pixels in all.
@interface NSBitmapImageRep : NSImageRep {
  @private
    void* _picture;
}

// Read a picture file as -[NSImage initWithData:] does, but leave the pixels as they are stored. Return nil
// when that fails.
+ (id)imageRepWithData:(NSData*)data;
- (id)initWithData:(NSData*)data;

- (NSInteger)samplesPerPixel;
- (NSInteger)bitsPerPixel;
- (NSInteger)bytesPerRow;
- (NSInteger)bytesPerPlane;
- (NSInteger)numberOfPlanes;
- (BOOL)isPlanar;
- (NSBitmapFormat)bitmapFormat;

// Returns the samples, which this object owns; they may be changed.
- (unsigned char*)bitmapData;

// Returns the picture as a file; nil when it cannot be written as that type. Properties may be nil.
//
// PNG keeps every sample. BMP has 8 bits a sample: 32 bits a pixel with alpha, else 24. JPEG has no alpha:
// transparent pixels are blended with white. GIF has at most 256 colours, of which the best are chosen when
// there are more, and a pixel is either fully transparent (alpha below one half) or opaque.
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties;

@end
