#include "tests/model/units.h"

#include <cstddef>
#include <cstdint>

namespace model {

std::u16string unitsOf(std::string_view bytes) {
    std::u16string units;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        std::uint32_t code = length == 1 ? lead : lead & (0x7FU >> length);
        for (std::size_t k = 1; k < length && i + k < bytes.size(); ++k) {
            code = code << 6 | (static_cast<unsigned char>(bytes[i + k]) & 0x3FU);
        }
        if (code >= 0x10000) {
            units += static_cast<char16_t>(0xD7C0 + (code >> 10));
            units += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
        } else {
            units += static_cast<char16_t>(code);
        }
        i += length;
    }
    return units;
}

std::string bytesOf(std::u16string_view units) {
    std::string bytes;
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t code = units[i];
        if ((code & 0xFC00) == 0xD800 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00) {
            code = 0x10000 + ((code - 0xD800) << 10) + (units[++i] - 0xDC00U);
        }
        const int more = code < 0x80 ? 0 : code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
        bytes += static_cast<char>(kLeads[more] | (code >> (6 * more)));
        for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) {
            bytes += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
        }
    }
    return bytes;
}

} // namespace model
