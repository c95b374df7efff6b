// The bytes of a picture, as people's pictures come: read, measured, written in every format, and read again.

#include "fuzz/support/claim.h"
#include "fuzz/support/picture_limit.h"
#include "plugin/support/pool.h"
#import <AppKit/AppKit.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace {

// A picture of more pixels takes the codec longer than a fuzzer's second; real ones may have 256 times as many.
constexpr std::uint64_t kMostPixels = 262'144;

std::uint64_t pixelsOf(NSBitmapImageRep* bitmap) {
    return static_cast<std::uint64_t>([bitmap pixelsWide]) * static_cast<std::uint64_t>([bitmap pixelsHigh]);
}

bool isEqual(NSBitmapImageRep* one, NSBitmapImageRep* other) {
    return
        [one pixelsWide] == [other pixelsWide] && [one pixelsHigh] == [other pixelsHigh] &&
        [one bitsPerPixel] == [other bitsPerPixel] &&
        std::memcmp([one bitmapData], [other bitmapData], static_cast<std::size_t>([one bytesPerPlane])) == 0;
}

void write(NSBitmapImageRep* bitmap, NSBitmapImageFileType type) {
    const koru::Pool pool;
    NSDictionary* properties = [NSDictionary dictionaryWithObject:[NSNumber numberWithDouble:0.5]
                                                           forKey:NSImageCompressionFactor];
    NSData* file = [bitmap representationUsingType:type properties:properties];
    fuzz::claim(file != nil, "a picture that was read can be written");
    NSBitmapImageRep* again = [NSBitmapImageRep imageRepWithData:file];
    fuzz::claim(again != nil, "a picture that was written can be read");
    fuzz::claim([again pixelsWide] == [bitmap pixelsWide] && [again pixelsHigh] == [bitmap pixelsHigh],
                "a picture that was written keeps its sides");
    if (type == NSBitmapImageFileTypePNG) {
        NSBitmapImageRep* third = [NSBitmapImageRep imageRepWithData:[again representationUsingType:type
                                                                                         properties:nil]];
        fuzz::claim(isEqual(again, third), "a PNG that is read and written again has the same pixels");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const koru::Pool pool;
    static const bool limited = [] {
        (void)[NSBitmapImageRep imageRepWithData:[NSData dataWithBytes:"BM" length:2]]; // starts the library
        fuzz::limitPixels(kMostPixels);
        return true;
    }();
    (void)limited;
    NSData* file = [NSData dataWithBytes:data length:size];
    NSBitmapImageRep* bitmap = [NSBitmapImageRep imageRepWithData:file];
    NSImage* image = [[[NSImage alloc] initWithData:file] autorelease];
    fuzz::claim((bitmap == nil) == (image == nil), "a picture is one whichever way it is read");
    if (bitmap == nil || pixelsOf(bitmap) > kMostPixels) { // the screen of a GIF may be larger than its frame
        return 0;
    }
    NSBitmapImageRep* upright = [[image representations] objectAtIndex:0];
    fuzz::claim(pixelsOf(upright) == pixelsOf(bitmap), "turning a picture upright loses no pixel");
    for (const NSBitmapImageFileType type : {NSBitmapImageFileTypeBMP, NSBitmapImageFileTypeGIF,
                                             NSBitmapImageFileTypeJPEG, NSBitmapImageFileTypePNG}) {
        write(upright, type);
    }
    fuzz::claim([bitmap representationUsingType:NSBitmapImageFileTypeTIFF properties:nil] == nil,
                "TIFF is not written");
    return 0;
}
