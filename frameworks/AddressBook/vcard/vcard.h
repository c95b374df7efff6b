#pragma once

// vCards: files and data of versions 2.1, 3.0 and 4.0, in the dialects that programs really write, into the
// values of an address book and back. Written here and not taken from the vCard library of the desktop's
// address book, because that one splits unescaped ';' and ',' in notes and links, loses the difference
// between the two in names and addresses, leaves "\:" as it is, reads no UTF-16 and names no line for what it
// refuses.

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/value.h"

#include <cstddef>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace addressbook::vcard {

// A card larger than this, or with more properties than that, is refused: no real card comes near, and
// reading stays linear in time and bounded in memory whatever the file holds.
inline constexpr std::size_t kMaxCardBytes = std::size_t{32} * 1024 * 1024;
inline constexpr std::size_t kMaxCardLines = 20'000;

// Fields of the dictionaries in these properties; those of addresses are in the framework's own constants.
inline constexpr std::string_view kInstantMessageService = "InstantMessageService";
inline constexpr std::string_view kInstantMessageUsername = "InstantMessageUsername";
inline constexpr std::string_view kSocialProfileUrl = "url";
inline constexpr std::string_view kSocialProfileUsername = "username";
inline constexpr std::string_view kSocialProfileIdentifier = "userIdentifier";
inline constexpr std::string_view kSocialProfileService = "serviceName";

// Why a card was refused, or what was left out of it.
struct Problem {
    std::size_t number = 0; // of the card in the file, from 1
    std::size_t line = 0;   // in the file, from 1
    std::string reason;     // a clause without full stop
};

// One card: what it says about a person or a group.
struct Card {
    Kind kind = Kind::person;
    // The unique id "<UUID>:ABPerson" or "<UUID>:ABGroup" from X-ABUID, else from UID (a UID that is no UUID
    // is hashed into one, always the same); empty when the card has neither.
    std::string uid;
    // The UUID of a UID that differs from uid's; group cards may name the card by it. Mostly empty.
    std::string otherUuid;
    // Property -> value; the picture is property::kImage, content lines that no property holds are
    // property::kUnknownLines. Entries of multi-values have fresh identifiers; `primary` is empty when it is
    // the first.
    std::map<std::string, Value> values;
    // A group's members, persons and subgroups, as its card names them: addresses, mostly "urn:uuid:" and what
    // the member's UID says; uuidOf() tells which record is meant.
    std::vector<std::string> memberUids;
    std::vector<std::string> categories; // a person's groups by name
    std::vector<Problem> skipped;        // lines that could not be read and were left out
    std::string unended;                 // how the card ends without END:VCARD; mostly empty
    std::size_t number = 0;              // of the card in the file, from 1
    std::size_t line = 0;                // where its BEGIN:VCARD is, from 1
};

// Reads card after card. A bad card gives a Problem and reading goes on after it.
class Reader {
  public:
    // [input] and the bytes of [data] must live as long as the reader.
    explicit Reader(std::istream& input);
    explicit Reader(std::string_view data);
    ~Reader();
    Reader(Reader&&) noexcept;
    Reader& operator=(Reader&&) noexcept;

    // The next card or what is wrong with it; nothing at the end.
    std::optional<std::variant<Card, Problem>> next();

    // How many bytes were read so far.
    std::size_t bytesRead() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The versions that can be written.
enum class WrittenVersion { v3, v4 };

// The card as a vCard: UTF-8, CRLF, lines of at most 75 bytes. [card]'s uid may be empty; number, line and
// skipped are not looked at.
std::string write(const Card& card, WrittenVersion version = WrittenVersion::v3);

// How a group's card names the record [uid] as a member: by the UID that write() gives the record's own card,
// which has these kUnknownLines.
std::string memberName(std::string_view uid, const Value& unknownLines);

// The line by which a group keeps a member that is not in the address book among its kUnknownLines; and the
// member in such a line.
std::string memberLine(const std::string& member);
std::optional<std::string> memberIn(std::string_view line);

// The full name (FN) that the card came with, when it says something else than the names of the record and
// they have not changed since.
std::optional<std::string> keptFullName(const Card& card);

// The UUID, upper case, that stands for a UID: the UID itself when it is a UUID (with or without "urn:uuid:"
// before and ":ABPerson" or ":ABGroup" behind it), else a hash of it.
std::string uuidOf(std::string_view uid);

} // namespace addressbook::vcard
