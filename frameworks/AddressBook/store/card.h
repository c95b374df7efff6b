#pragma once

// A record's values as the database keeps them: one block of bytes, the "card", in which each property can be
// found, read and replaced without reading the others. A card needs no other table to be read, and a checksum
// tells when its bytes have changed by themselves.

#include "value.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// The bytes are no card or no value.
class DamagedCard : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One value as bytes, losslessly. Throws std::length_error for values nested deeper than kDeepestValue.
inline constexpr int kDeepestValue = 64;
std::string encodeValue(const Value& value);
Value decodeValue(std::string_view bytes);

// Calls [visit] with each property's name and encoded value, in the order of names. Throws DamagedCard.
void visitCard(std::string_view card, const std::function<void(std::string_view, std::string_view)>& visit);

// The same for what can be read in a damaged card, whatever its checksum says; some of it may be wrong.
void visitDamagedCard(std::string_view card,
                      const std::function<void(std::string_view, std::string_view)>& visit);

// Throws DamagedCard when the card's checksum is wrong.
void checkCard(std::string_view card);

// The encoded value of one property, in a card that was checked. Throws DamagedCard.
std::optional<std::string_view> findInCard(std::string_view card, std::string_view name);

// A card of these properties and their encoded values.
std::string makeCard(const std::map<std::string, std::string>& values);

// A unique id, or an identifier, in less space: a UUID in capitals, alone or before ":ABPerson" or
// ":ABGroup", takes 16 or 17 bytes. Anything else is not packed.
std::optional<std::string> packUid(std::string_view text);
std::optional<std::string> unpackUid(std::string_view bytes);

// A list of unique ids. decodeUids throws DamagedCard.
std::string encodeUids(const std::vector<std::string>& uids);
std::vector<std::string> decodeUids(std::string_view bytes);

// The number, 1 or more, that stands for a well-known label, key or property name in the database; 0 for any
// other.
int wordCode(std::string_view word);
// The word that a number stands for; empty when there is none.
std::string_view wordOf(std::uint64_t code);

} // namespace addressbook
