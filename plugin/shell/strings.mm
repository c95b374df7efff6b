#include "plugin/shell/strings.h"

#import "plugin/shell/own_bundle.h"
#include <array>

namespace koru {
namespace {

constexpr unsigned long kOptionsKind = 131;
constexpr unsigned long kOptionsString = 1;

// Returns the string number for one of the host's kinds: the same number, except for the options.
unsigned long stringForKind(unsigned long kind) {
    return kind == kOptionsKind ? kOptionsString : kind;
}

} // namespace
} // namespace koru

using namespace koru;

long Sub_OSXLoadString(unsigned long id, unsigned short* buffer, long capacity) {
    if (buffer == nullptr || capacity < 2) {
        return 0;
    }
    NSString* key = [NSString stringWithFormat:@"KORUFMPlugin %d", static_cast<int>(id)];
    NSString* string = [ownBundle() localizedStringForKey:key value:key table:@"KORUFMPlugin"];
    // When the table lacks the key, the key object itself is returned; so identity is compared, not text.
    if (string == nil || string == key) {
        return 0;
    }
    const long length = static_cast<long>([string length]);
    if (length >= capacity - 1) {
        return 0;
    }
    [string getCharacters:buffer range:NSMakeRange(0, static_cast<NSUInteger>(length))];
    buffer[length] = 0;
    return length;
}

void Do_GetString(unsigned long id, OwnedText& text, bool cutAtParenthesis) {
    std::array<unsigned short, 1024> buffer;
    buffer[0] = 0;
    Sub_OSXLoadString(stringForKind(id), buffer.data(), buffer.size());
    text->AssignUnicode(buffer.data());
    if (cutAtParenthesis) {
        OwnedText parenthesis;
        parenthesis->Assign("(");
        const fmx::uint32 position = text->Find(*parenthesis, 0);
        if (position != fmx::Text::kSize_Invalid) {
            text->DeleteText(position, fmx::Text::kSize_End);
        }
    }
}

void Do_GetString(unsigned long kind, unsigned int /*language*/, int capacity, unsigned short* buffer) {
    Sub_OSXLoadString(stringForKind(kind), buffer, capacity);
}
