// The styles of a text after thousands of edits, compared with a list of the size of each character.
#include "tests/host/wrapper/support.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

using fmx::CharacterStyleUniquePtr;
using fmx::Text;
using fmx::TextUniquePtr;

constexpr int kStandard = 12;

CharacterStyleUniquePtr size(fmx::FontSize points) {
    CharacterStyleUniquePtr style;
    style->SetSize(points);
    return style;
}

// Returns the sizes of all characters, and that after the last one.
std::vector<int> sizesOf(const Text& text) {
    std::vector<int> sizes;
    const CharacterStyleUniquePtr style;
    for (fmx::uint32 i = 0; i <= text.GetSize(); ++i) {
        text.GetStyle(*style, i);
        sizes.push_back(style->GetSize());
    }
    return sizes;
}

// A text whose characters have sizes, beside one that is as simple as can be.
struct Pair {
    TextUniquePtr text;
    std::u16string characters;
    std::vector<int> sizes;

    void check() const {
        ASSERT_EQ(unitsOf(*text), characters);
        std::vector<int> expected = sizes;
        expected.push_back(kStandard);
        ASSERT_EQ(sizesOf(*text), expected);
    }
};

TEST(WrapperStyleEdits, CarryEachSizeAlong) {
    std::mt19937 random(20240229);
    const auto below = [&](size_t limit) { return static_cast<fmx::uint32>(random() % (limit + 1)); };
    Pair pairs[2];
    for (int step = 0; step < 6000; ++step) {
        Pair& pair = pairs[step % 2];
        Pair& other = pairs[(step + random() % 2) % 2];
        const fmx::uint32 position = below(pair.characters.size() + 2);
        const fmx::uint32 count = random() % 7 == 0 ? Text::kSize_End + 0U : below(6);
        const size_t from = std::min<size_t>(position, pair.characters.size());
        const size_t to = from + std::min<size_t>(count, pair.characters.size() - from);
        const fmx::uint32 otherPosition = below(other.characters.size() + 1);
        const size_t otherFrom = std::min<size_t>(otherPosition, other.characters.size());
        const size_t otherTo = otherFrom + std::min<size_t>(count, other.characters.size() - otherFrom);
        const std::u16string characters = other.characters.substr(otherFrom, otherTo - otherFrom);
        const std::vector<int> sizes(other.sizes.begin() + static_cast<std::ptrdiff_t>(otherFrom),
                                     other.sizes.begin() + static_cast<std::ptrdiff_t>(otherTo));
        switch (random() % 7) {
        case 0: {
            const int points = static_cast<int>(random() % 4) + 20;
            pair.text->SetStyle(*size(static_cast<fmx::FontSize>(points)), position, count);
            std::fill(pair.sizes.begin() + static_cast<std::ptrdiff_t>(from),
                      pair.sizes.begin() + static_cast<std::ptrdiff_t>(to), points);
            break;
        }
        case 1:
            pair.text->DeleteText(position, count);
            pair.characters.erase(from, to - from);
            pair.sizes.erase(pair.sizes.begin() + static_cast<std::ptrdiff_t>(from),
                             pair.sizes.begin() + static_cast<std::ptrdiff_t>(to));
            break;
        case 2:
            if (pair.characters.size() + other.characters.size() < 60) {
                const std::u16string inserted = other.characters;
                const std::vector<int> insertedSizes = other.sizes;
                pair.text->InsertText(*other.text, position);
                pair.characters.insert(from, inserted);
                pair.sizes.insert(pair.sizes.begin() + static_cast<std::ptrdiff_t>(from),
                                  insertedSizes.begin(), insertedSizes.end());
            }
            break;
        case 3:
            if (pair.characters.size() + characters.size() < 60) {
                pair.text->AppendText(*other.text, otherPosition, count);
                pair.characters += characters;
                pair.sizes.insert(pair.sizes.end(), sizes.begin(), sizes.end());
            }
            break;
        case 4:
            pair.text->SetText(*other.text, otherPosition, count);
            pair.characters = characters;
            pair.sizes = sizes;
            break;
        case 5:
            pair.text->RemoveStyle(*size(21));
            std::replace(pair.sizes.begin(), pair.sizes.end(), 21, kStandard);
            break;
        default:
            pair.text->InsertText(*hostText(u"xyz"), position);
            pair.characters.insert(from, u"xyz");
            pair.sizes.insert(pair.sizes.begin() + static_cast<std::ptrdiff_t>(from), 3, kStandard);
            if (pair.characters.size() > 60) {
                pair.text->DeleteText(5);
                pair.characters.erase(5);
                pair.sizes.erase(pair.sizes.begin() + 5, pair.sizes.end());
            }
            break;
        }
        pair.check();
        if (HasFatalFailure()) {
            FAIL() << "step " << step;
        }
    }
}

} // namespace
