#pragma once

#import <AppKit/NSImageRep.h>
#import <Foundation/Foundation.h>

// What a bitmap can be written as. TIFF and JPEG 2000 have their numbers, but are not written here.
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

// An NSNumber from 0 (small) to 1 (good) for JPEG; 0.8 when it is not given.
extern NSString* const NSImageCompressionFactor;

// A picture as pixels: rows from the top without padding, the samples of a pixel next to each other (grey,
// grey and alpha, RGB or RGBA), 8 bits each, or 16 in the machine's byte order. Palettes become RGB, CMYK
// becomes RGB, fewer bits become 8; colour profiles are not kept. At most 32,767 pixels wide or high and
// 67,108,864 (64 Mi) in all.
@interface NSBitmapImageRep : NSImageRep {
  @private
    void* _picture;
}

// Reads a picture file as -[NSImage initWithData:] does, but leaves the pixels as they are stored; nil when
// it cannot.
+ (id)imageRepWithData:(NSData*)data;
- (id)initWithData:(NSData*)data;

- (NSInteger)samplesPerPixel;
- (NSInteger)bitsPerPixel;
- (NSInteger)bytesPerRow;
- (NSInteger)bytesPerPlane;
- (NSInteger)numberOfPlanes;
- (BOOL)isPlanar;
- (NSBitmapFormat)bitmapFormat;

// The samples themselves, owned by this object; they may be changed.
- (unsigned char*)bitmapData;

// The picture as a file; nil when it cannot be written as that type. Properties may be nil.
//
// PNG keeps every sample. BMP keeps all that 8 bits hold, with alpha in 32 bits a pixel, else in 24. JPEG
// shows what is transparent on white. GIF has at most 256 colours, chosen to fit when there are more; a pixel
// is wholly transparent in it (alpha below one half) or not at all.
- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties;

@end
