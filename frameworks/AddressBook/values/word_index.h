#pragma once

// Finds a word in a table of constants by looking at one place of it, nearly always: names of properties and
// labels are looked up for every value that is read or written.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace addressbook {

// The places of [Count] different words, fewer than 255. Made when the program is compiled.
template <std::size_t Count>
class WordIndex {
  public:
    constexpr explicit WordIndex(const std::array<std::string_view, Count>& words) : words_(words) {
        for (std::size_t place = 0; place < Count; ++place) {
            std::size_t slot = slotOf(words[place]);
            while (slots_[slot] != 0) {
                slot = (slot + 1) % kSlots;
            }
            slots_[slot] = static_cast<std::uint8_t>(place + 1);
        }
    }

    // Returns the place of a word, counted from 1; 0 for a word that is not there.
    constexpr std::size_t find(std::string_view word) const {
        for (std::size_t slot = slotOf(word);; slot = (slot + 1) % kSlots) {
            const std::size_t place = slots_[slot];
            if (place == 0 || words_[place - 1] == word) {
                return place;
            }
        }
    }

  private:
    static constexpr std::size_t kSlots = 512;
    static_assert(Count < 255, "a place takes a byte, and half of the slots stay free");

    // Words differ in their lengths, and in characters at the beginning, the end or between.
    static constexpr std::size_t slotOf(std::string_view word) {
        const auto at = [word](std::size_t place) {
            return static_cast<std::size_t>(static_cast<unsigned char>(word[place]));
        };
        const std::size_t size = word.size();
        if (size == 0) {
            return 0;
        }
        return (size * 151 + at(0) * 7 + at(size / 2) * 31 + at(size - 1) * 83 +
                at(size < 6 ? 0 : size - 6) * 13) %
               kSlots;
    }

    std::array<std::string_view, Count> words_;
    std::array<std::uint8_t, kSlots> slots_{};
};

} // namespace addressbook
