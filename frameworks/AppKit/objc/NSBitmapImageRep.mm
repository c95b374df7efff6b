#import <AppKit/NSBitmapImageRep.h>

#include "frameworks/AppKit/objc/bitmap.h"
#include "frameworks/AppKit/objc/codec_loader.h"

#include <bit>
#include <memory>

using namespace appkit;

NSString* const NSImageCompressionFactor = @"NSImageCompressionFactor";

namespace {

constexpr double kUsualQuality = 0.8;

std::optional<Format> formatOf(NSBitmapImageFileType type) {
    switch (type) {
    case NSBitmapImageFileTypeBMP:
        return Format::bmp;
    case NSBitmapImageFileTypeGIF:
        return Format::gif;
    case NSBitmapImageFileTypeJPEG:
        return Format::jpeg;
    case NSBitmapImageFileTypePNG:
        return Format::png;
    default:
        return std::nullopt;
    }
}

Picture* pictureIn(void* variable) {
    return static_cast<Picture*>(variable);
}

double qualityFrom(NSDictionary* properties) {
    NSNumber* factor = [properties objectForKey:NSImageCompressionFactor];
    return [factor isKindOfClass:[NSNumber class]] ? [factor doubleValue] : kUsualQuality;
}

} // namespace

// _picture is a Picture that this object owns; null until there is one.
@implementation NSBitmapImageRep

+ (id)imageRepWithData:(NSData*)data {
    return [[[self alloc] initWithData:data] autorelease];
}

- (id)initWithData:(NSData*)data {
    return [self initWithData:data orientation:Orientation::asStored];
}

- (void)dealloc {
    delete pictureIn(_picture);
    [super dealloc];
}

- (NSInteger)samplesPerPixel {
    return _picture ? pictureIn(_picture)->samplesPerPixel : 0;
}

- (NSInteger)bitsPerPixel {
    return [self samplesPerPixel] * _bitsPerSample;
}

- (NSInteger)bytesPerRow {
    return _picture ? static_cast<NSInteger>(pictureIn(_picture)->bytesPerRow()) : 0;
}

- (NSInteger)bytesPerPlane {
    return [self bytesPerRow] * _pixelsHigh;
}

- (NSInteger)numberOfPlanes {
    return 1;
}

- (BOOL)isPlanar {
    return NO;
}

- (NSBitmapFormat)bitmapFormat {
    NSBitmapFormat format = _alpha ? NSBitmapFormatAlphaNonpremultiplied : 0;
    if (_bitsPerSample == 16) {
        format |= std::endian::native == std::endian::little ? NSBitmapFormatSixteenBitLittleEndian
                                                             : NSBitmapFormatSixteenBitBigEndian;
    }
    return format;
}

- (unsigned char*)bitmapData {
    return _picture ? pictureIn(_picture)->samples.data() : nullptr;
}

- (NSData*)representationUsingType:(NSBitmapImageFileType)type properties:(NSDictionary*)properties {
    const std::optional<Format> format = formatOf(type);
    if (!format || !_picture || !codec()) {
        return nil;
    }
    const auto file = codec()->encode(*pictureIn(_picture), *format, qualityFrom(properties));
    return file.empty() ? nil : [NSData dataWithBytes:file.data() length:file.size()];
}

@end

@implementation NSBitmapImageRep (Reading)

- (id)initWithData:(NSData*)data orientation:(Orientation)orientation {
    if ((self = [super init]) == nil) {
        return nil;
    }
    const std::span bytes(static_cast<const unsigned char*>([data bytes]), [data length]);
    auto picture = codec() ? codec()->decode(bytes, orientation) : std::nullopt;
    if (!picture) {
        [self release];
        return nil;
    }
    _pixelsWide = picture->width;
    _pixelsHigh = picture->height;
    _size = NSMakeSize(picture->width, picture->height);
    _bitsPerSample = picture->bitsPerSample;
    _alpha = picture->hasAlpha();
    _picture = new Picture(std::move(*picture));
    return self;
}

@end
