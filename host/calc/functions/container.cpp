// Functions of containers: attributes, sizes, thumbnails.
#include "host/calc/crypt.h"
#include "host/calc/functions/groups.h"
#include "host/calc/thumbnail.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

Value sizeValue(size_t number) {
    return integerValue(static_cast<int64_t>(number));
}

// Returns the MD5 digest of the container's file.
Value md5(const Container& container) {
    const Container::Stream* stream = fileStream(container);
    const auto bytes = stream == nullptr ? std::nullopt : digest(stream->bytes(), u"MD5");
    return bytes ? Value::text(hexadecimal(*bytes)) : Value();
}

Value side(const Container& in, int64_t std::pair<int64_t, int64_t>::* which) {
    const auto sides = pictureSides(in);
    return sides ? integerValue((*sides).*which) : Value();
}

Value nothing(const Container& /*in*/) {
    return {};
}

struct Attribute {
    std::u16string_view group;
    std::u16string_view name;
    Value (*read)(const Container&);
};

constexpr Attribute kAttributes[] = {
    {u"general", u"filename", [](const Container& in) { return Value::text(in.fileNames().value_or(u"")); }},
    {u"general", u"storageType", [](const Container& /*in*/) { return Value::text(u"Embedded"); }},
    {u"general", u"MD5", md5},
    {u"general", u"fileSize",
     [](const Container& in) {
         const Container::Stream* stream = fileStream(in);
         return stream == nullptr ? Value() : sizeValue(stream->bytes().size());
     }},
    {u"general", u"internalSize", [](const Container& in) { return sizeValue(in.totalSize()); }},
    {u"general", u"externalSize", [](const Container& /*in*/) { return sizeValue(0); }},
    {u"general", u"externalFiles", [](const Container& /*in*/) { return sizeValue(0); }},
    {u"image", u"width", [](const Container& in) { return side(in, &std::pair<int64_t, int64_t>::first); }},
    {u"image", u"height", [](const Container& in) { return side(in, &std::pair<int64_t, int64_t>::second); }},
    {u"image", u"dpiWidth", nothing},
    {u"image", u"dpiHeight", nothing},
    {u"image", u"transparency", nothing},
    {u"photo", u"orientation", nothing},
    {u"photo", u"created", nothing},
    {u"photo", u"modified", nothing},
    {u"photo", u"latitude", nothing},
    {u"photo", u"longitude", nothing},
    {u"photo", u"make", nothing},
    {u"photo", u"model", nothing},
    {u"audio", u"title", nothing},
    {u"audio", u"artist", nothing},
    {u"audio", u"album", nothing},
    {u"audio", u"composer", nothing},
    {u"audio", u"coverArt", nothing},
    {u"audio", u"track", nothing},
    {u"audio", u"genre", nothing},
    {u"audio", u"year", nothing},
    {u"audio", u"duration", nothing},
    {u"audio", u"bitRate", nothing},
    {u"signature", u"signed", nothing},
    {u"barcode", u"barcodeText", nothing},
    {u"barcode", u"barcodeType", nothing},
};

// Returns the attributes of a group that have a value, one a line; nothing when there is no such group.
std::optional<std::u16string> groupText(const Container& container, std::u16string_view group) {
    std::u16string text;
    bool known = false;
    for (const Attribute& row : kAttributes) {
        if (group != u"all" && row.group != group) {
            continue;
        }
        known = true;
        if (const Value value = row.read(container); !value.isEmpty()) {
            text += (text.empty() ? u"" : u"\r") + std::u16string(row.name) + u": " + value.asText();
        }
    }
    return known ? std::optional(text) : std::nullopt;
}

// Returns an attribute, or the attributes of a group; empty when the value is no container or an empty one,
// "?" for an unknown attribute.
Value getContainerAttribute(Session& /*session*/, Arguments in) {
    const std::u16string wanted = foldCase(in[1].asText());
    const Container& container = in[0].asContainer();
    const auto* attribute = std::find_if(std::begin(kAttributes), std::end(kAttributes),
                                         [&](const Attribute& row) { return foldCase(row.name) == wanted; });
    if (attribute == std::end(kAttributes)) {
        const auto text = groupText(container, wanted);
        return text ? Value::text(*text) : Value::invalid();
    }
    if (in[0].type() == ValueType::text && !in[0].isEmpty() && wanted == u"storagetype") {
        return Value::text(u"Text");
    }
    return container.isEmpty() ? Value() : attribute->read(container);
}

Value getHeight(Session& /*session*/, Arguments in) {
    const auto sides = pictureSides(in[0].asContainer());
    return integerValue(sides ? sides->second : 0);
}
Value getWidth(Session& /*session*/, Arguments in) {
    const auto sides = pictureSides(in[0].asContainer());
    return integerValue(sides ? sides->first : 0);
}

// Returns the picture in the largest size that has its proportions, fits the width and the height, and is no
// larger than it is: JPEG as JPEG, all others as PNG. Empty when there is no picture, or no room for one.
Value getThumbnail(Session& /*session*/, Arguments in) {
    const Container& container = in[0].asContainer();
    const Container::Stream* file = fileStream(container);
    const auto small = file == nullptr ? std::nullopt : thumbnail(file->bytes(), count(in[1]), count(in[2]));
    if (!small) {
        return {};
    }
    std::u16string name = container.fileNames().value_or(u"");
    name = name.substr(0, name.find(u'\r'));
    return Value::container(pictureContainer(thumbnailName(name, *small), *small));
}

// Returns 1 for any container, since nobody else can have changed those of this host.
Value verifyContainer(Session& /*session*/, Arguments in) {
    return in[0].type() == ValueType::container ? integerValue(1) : Value::invalid();
}

constexpr Builtin kFunctions[] = {
    {u"GetContainerAttribute ( field ; attributeName )", getContainerAttribute,
     "Returns a fact about what a container holds."},
    {u"GetHeight ( field )", getHeight, "Returns the height of a picture in pixels."},
    {u"GetLiveText ( container ; language )", Placeholder{u"?"}, "Returns the text in a picture."},
    {u"GetLiveTextAsJSON ( container ; language )", Placeholder{u"?"},
     "Returns the text in a picture with its places."},
    {u"GetTextFromPDF ( container )", Placeholder{u"?"}, "Returns the text of a PDF document."},
    {u"GetThumbnail ( field ; width ; height )", getThumbnail,
     "Returns a picture in a size that fits a width and a height."},
    {u"GetWidth ( field )", getWidth, "Returns the width of a picture in pixels."},
    {u"ReadQRCode ( container )", Placeholder{u"?"}, "Returns the text of a code in a picture."},
    {u"VerifyContainer ( field )", verifyContainer,
     "Returns 1 when a container's data are as they were stored."},
};

} // namespace

std::span<const Builtin> containerFunctions() {
    return kFunctions;
}

} // namespace host
