#import "plugin/support/host_text.h"

#include "plugin/support/immortal.h"
#include "plugin/support/retained.h"
#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
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

// The strings of the short texts that were met last. Calculations name the same properties, labels and entries
// again and again, and making a string takes longer than most of what it is for.
class KeptStrings {
  public:
    static constexpr NSUInteger kLongest = 48; // units; a record's id has 45

    // Returns a string with exactly these units, at least one and no more than kLongest.
    NSString* stringOf(const TextUnit* units, NSUInteger count) {
        const std::u16string_view text(reinterpret_cast<const char16_t*>(units), count);
        Slot& slot = slots_[std::hash<std::u16string_view>()(text) % slots_.size()];
        if (slot.count != count || !std::equal(units, units + count, slot.units.begin())) {
            slot.count = 0;
            slot.string = Retained<NSString>::adopt([stringOfUnits(units, count) copy]);
            std::copy_n(units, count, slot.units.begin());
            slot.count = slot.string ? count : 0;
        }
        // A call within the call that gets the string may need its slot.
        return [[slot.string.get() retain] autorelease];
    }

  private:
    struct Slot {
        NSUInteger count = 0; // of the units; 0 when there is no string
        std::array<TextUnit, kLongest> units{};
        Retained<NSString> string;
    };
    std::array<Slot, 128> slots_;
};

constinit Immortal<KeptStrings> keptStrings;

} // namespace

NSString* stringFromText(const fmx::Text& text) {
    const fmx::uint32 size = text.GetSize();
    if (size == 0) {
        return nil;
    }
    UnicharBuffer buffer(size);
    text.GetUnicode(buffer.data(), 0, size);
    return size <= KeptStrings::kLongest ? keptStrings.value.stringOf(buffer.data(), size)
                                         : stringOfUnits(buffer.data(), size);
}

NSString* textArgument(const fmx::DataVect& arguments, fmx::uint32 position) {
    return position < arguments.Size() ? stringFromText(arguments.AtAsText(position)) : nil;
}

void forgetStringsForTests() {
    keptStrings.value = KeptStrings{};
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

void JoinedText::append(NSString* string) {
    const NSUInteger length = [string length];
    if (length == 0) {
        return;
    }
    const std::size_t before = units_.size();
    units_.resize(before + length);
    [string getCharacters:units_.data() + before range:NSMakeRange(0, length)];
}

void JoinedText::assignTo(fmx::Text& text) {
    units_.push_back(0);
    text.AssignUnicode(units_.data());
    units_.pop_back();
}

} // namespace koru
