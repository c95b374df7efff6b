#import "plugin/support/host_text.h"

#include <array>
#include <vector>

namespace koru {
namespace {

// A buffer for UTF-16 units, which is on the stack for the usual short texts.
class UnicharBuffer {
  public:
    explicit UnicharBuffer(std::size_t size) {
        if (size > small_.size()) {
            large_.resize(size);
        }
    }
    [[nodiscard]] TextUnit* data() { return large_.empty() ? small_.data() : large_.data(); }

  private:
    std::array<TextUnit, 256> small_;
    std::vector<TextUnit> large_;
};

// Returns a string with exactly these units. Foundation may refuse ill-formed text and drop a byte-order
// mark; such text is appended unit by unit.
NSString* stringOfUnits(const TextUnit* units, NSUInteger count) {
    NSString* string = [NSString stringWithCharacters:units length:count];
    if ([string length] == count) {
        return string;
    }
    NSMutableString* exact = [NSMutableString stringWithCapacity:count];
    for (NSUInteger i = 0; i < count; ++i) {
        [exact appendFormat:@"%C", units[i]];
    }
    return exact;
}

} // namespace

NSString* stringFromText(const fmx::Text& text) {
    const fmx::uint32 size = text.GetSize();
    if (size == 0) {
        return nil;
    }
    UnicharBuffer buffer(size);
    text.GetUnicode(buffer.data(), 0, size);
    return stringOfUnits(buffer.data(), size);
}

NSString* textArgument(const fmx::DataVect& arguments, fmx::uint32 position) {
    return position < arguments.Size() ? stringFromText(arguments.AtAsText(position)) : nil;
}

void assignString(fmx::Text& text, NSString* string) {
    const NSUInteger length = [string length];
    UnicharBuffer buffer(length + 1);
    if (length > 0) {
        [string getCharacters:buffer.data() range:NSMakeRange(0, length)];
    }
    buffer.data()[length] = 0;
    text.AssignUnicode(buffer.data());
}

} // namespace koru
