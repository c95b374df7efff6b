#import "plugin/images/person_image.h"

#import "plugin/records/plugin_state.h"
#include "plugin/shell/handlers.h"
#import <AppKit/AppKit.h>

namespace koru {
namespace {

// The code of a container's stream and the format that goes with it.
struct ImageStream {
    char code[4];
    NSBitmapImageFileType format;

    [[nodiscard]] OwnedQuadChar type() const { return {code[0], code[1], code[2], code[3]}; }
};

// The streams in the order in which they are looked for.
constexpr ImageStream kRead[] = {
    {{'P', 'N', 'G', 'f'}, NSBitmapImageFileTypePNG},
    {{'B', 'M', 'P', 'f'}, NSBitmapImageFileTypeBMP},
    {{'J', 'P', 'E', 'G'}, NSBitmapImageFileTypeJPEG},
    {{'G', 'I', 'F', 'f'}, NSBitmapImageFileTypeGIF},
};

// The codes of the streams in which a picture is returned, in order.
constexpr char kWritten[][4] = {
    {'G', 'I', 'F', 'f'}, {'B', 'M', 'P', 'f'}, {'J', 'P', 'E', 'G'}, {'P', 'N', 'G', 'f'}};

// Returns the first stream of a known code; nullptr when there is none. The container's very first stream is
// never taken, on purpose: the host's own containers begin with other streams.
const ImageStream* findStream(const fmx::BinaryData& container, fmx::int32& index) {
    for (const ImageStream& stream : kRead) {
        index = container.GetIndex(*stream.type());
        if (index >= 1) {
            return &stream;
        }
    }
    return nullptr;
}

// Returns the bytes of a stream. The host's error code is ignored.
NSData* bytesOf(const fmx::BinaryData& container, fmx::int32 index) {
    const fmx::uint32 size = container.GetSize(index);
    NSMutableData* bytes = [NSMutableData dataWithLength:size];
    container.GetData(index, 0, size, [bytes mutableBytes]);
    return bytes;
}

// Returns the picture's first bitmap. Fails the call with kNoBitmap, and returns nil, when it has none.
NSBitmapImageRep* firstBitmap(NSImage* image) {
    NSArray* representations = [image representations];
    for (NSUInteger i = 0; i < [representations count]; ++i) {
        id each = [representations objectAtIndex:i];
        if ([each isKindOfClass:[NSBitmapImageRep class]]) {
            return each;
        }
    }
    setError(kNoBitmap);
    return nil;
}

// Returns the bytes that encode the bitmap; nil for none.
NSData* encoded(NSBitmapImageRep* bitmap, NSBitmapImageFileType format) {
    // Apple declares the parameter nonnull but accepts nil for no properties. Passed by way of a variable,
    // nil gives no warning.
    NSDictionary* noProperties = nil;
    return [bitmap representationUsingType:format properties:noProperties];
}

} // namespace

NSString* setImage(const fmx::BinaryData& container) {
    NSData* picture = nil;
    if (container.GetTotalSize() != 0) {
        fmx::int32 index = 0;
        const ImageStream* stream = findStream(container, index);
        if (stream == nullptr) {
            setError(kUnsupportedImageType);
            return nil;
        }
        NSData* bytes = bytesOf(container, index);
        short width = 0;
        short height = 0;
        container.GetSIZEData(width, height);
        const auto image = Retained<NSImage>::adopt([[NSImage alloc] initWithData:bytes]);
        [image.get() setSize:NSMakeSize(width, height)];
        // Without a bitmap it continues: the person's picture is removed, and the call fails.
        picture = encoded(firstBitmap(image.get()), stream->format);
    }
    if (![state.g_person.get() setImageData:picture]) {
        setError(kSettingImageFailed);
    }
    return errors.g_llasterror == kSuccess ? @"0" : nil;
}

Answer getImage(fmx::Data& result) {
    NSData* picture = [state.g_person.get() imageData];
    if (picture == nil) {
        return {};
    }
    const auto image = Retained<NSImage>::adopt([[NSImage alloc] initWithData:picture]);
    NSBitmapImageRep* bitmap = firstBitmap(image.get());
    NSData* bytes = encoded(bitmap, NSBitmapImageFileTypeBMP);
    // On purpose: the width is given for both width and height, and all streams have the same bytes whatever
    // their codes.
    const auto width = static_cast<short>([bitmap pixelsWide]);
    const auto height = static_cast<short>([bitmap pixelsWide]);
    const OwnedBinaryData container;
    container->AddSIZEData(width, height);
    for (const auto& code : kWritten) {
        const OwnedQuadChar type(code[0], code[1], code[2], code[3]);
        container->Add(*type, static_cast<fmx::uint32>([bytes length]), const_cast<void*>([bytes bytes]));
    }
    result.SetBinaryData(*container, true);
    return Answer::written();
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_SetImage(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                              fmx::Data& result) {
    const auto work = [&]() -> Answer {
        const OwnedBinaryData container(arguments.AtAsBinaryData(0));
        return setImage(*container);
    };
    return runHandler(function, arguments, result, work);
}

fmx::errcode Do_KORU_GetImage(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                              fmx::Data& result) {
    return runHandler(function, arguments, result, [&]() -> Answer { return getImage(result); });
}
