#pragma once

// vCards: conversion between files of versions 2.1, 3.0 and 4.0, in the dialects that programs really write,
// and the values of an address book. Written here, since the desktop's vCard library splits notes and links
// at unescaped ';' and ',', does not distinguish the two in names and addresses, leaves "\:" as it is, does
// not read UTF-16, and gives no line numbers for errors.

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

// The largest size of a card in bytes, and number of properties. Larger cards are refused, so that reading
// any file takes linear time and bounded memory; no real card comes near.
inline constexpr std::size_t kMaxCardBytes = std::size_t{32} * 1024 * 1024;
inline constexpr std::size_t kMaxCardLines = 20'000;

// Keys of the dictionaries in kInstantMessage and kSocialProfile.
inline constexpr std::string_view kInstantMessageService = "InstantMessageService";
inline constexpr std::string_view kInstantMessageUsername = "InstantMessageUsername";
inline constexpr std::string_view kSocialProfileUrl = "url";
inline constexpr std::string_view kSocialProfileUsername = "username";
inline constexpr std::string_view kSocialProfileIdentifier = "userIdentifier";
inline constexpr std::string_view kSocialProfileService = "serviceName";

// The reason why a card, or a line of it, was refused.
struct Problem {
    std::size_t number = 0; // the number of the card in the file, from 1
    std::size_t line = 0;   // the line in the file, from 1
    std::string reason;     // a clause without full stop
};

// The contents of a card: a person or a group.
struct Card {
    Kind kind = Kind::person;
    // The unique id "<UUID>:ABPerson" or "<UUID>:ABGroup" from X-ABUID, else from UID (a UID that is no UUID
    // is hashed into one, always the same); empty when the card has neither.
    std::string uid;
    // The UUID of a UID that differs from that of uid, by which group cards may refer to this card; mostly
    // empty.
    std::string otherUuid;
    // Property -> value; the picture is property::kImage, content lines that no property holds are
    // property::kUnknownLines. Entries of multi-values have fresh identifiers; `primary` is empty when it is
    // the first.
    std::map<std::string, Value> values;
    // A group's members, people and subgroups, as its card names them: URIs, mostly "urn:uuid:" with the UID
    // of the member's card. uuidOf() returns the UUID of the record that is meant.
    std::vector<std::string> memberUids;
    std::vector<std::string> categories; // a person's groups by name
    // A digest of what is written in the card: cards that say the same have the same, be they written in another
    // order, encoding or version. A UUID for a card without uid; empty for a card that was not read.
    std::string digest;
    std::vector<Problem> skipped; // lines that could not be read and were left out
    std::string unended;          // how the card ends without END:VCARD; mostly empty
    std::size_t number = 0;       // of the card in the file, from 1
    std::size_t line = 0;         // where its BEGIN:VCARD is, from 1
};

// The character set of what is in a file and names none.
struct Charset {
    std::string name;     // empty: UTF-8; what is no UTF-8 the reader guesses
    bool guessed = false; // only for cards that are no UTF-8
};

// Where a line of a card went (origin.h).
struct Origin;

// Reads card after card. A bad card gives a Problem, and reading continues after it. Not thread-safe.
class Reader {
  public:
    // [input] and the bytes of [data] must outlive the reader.
    explicit Reader(std::istream& input, Charset charset = {});
    explicit Reader(std::string_view data, Charset charset = {});
    ~Reader();
    Reader(Reader&&) noexcept;
    Reader& operator=(Reader&&) noexcept;

    // Notes, for each card from now on, where its lines went; [origins] must outlive the reading, and holds those
    // of the card that was read last.
    void noteOrigins(std::vector<Origin>& origins);

    // Returns the next card, or what is wrong with it; nothing at the end.
    std::optional<std::variant<Card, Problem>> next();

    // Returns the character set in which a card so far was read by guess; empty when there was none.
    const std::string& guessed() const;

    // Returns the number of bytes read so far.
    std::size_t bytesRead() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The versions that can be written.
enum class WrittenVersion { v3, v4 };

// Returns a vCard: UTF-8, CRLF, lines of at most 75 bytes. [card]'s uid may be empty; its digest, number, line
// and skipped are ignored.
std::string write(const Card& card, WrittenVersion version = WrittenVersion::v3);

// Returns how a group's card names the record [uid] as a member: by the UID that write() gives the record's
// own card. The record has these kUnknownLines.
std::string memberName(std::string_view uid, const Value& unknownLines);

// Returns the UID in a record's kUnknownLines: that of its card when it differs from the record's own id.
std::optional<std::string> keptUid(const Value& unknownLines);

// Return the line by which a group keeps, in its kUnknownLines, a member that is not in the address book, and
// the member in such a line; nothing for any other line.
std::string memberLine(const std::string& member);
std::optional<std::string> memberIn(std::string_view line);

// Returns the full name (FN) with which the card was read, if it differs from the names of the record, and
// these have not changed since.
std::optional<std::string> keptFullName(const Card& card);

// Returns the UUID, in upper case, for a UID: the UID itself when it is a UUID (with or without "urn:uuid:"
// before and ":ABPerson" or ":ABGroup" after it), else a hash of it.
std::string uuidOf(std::string_view uid);

} // namespace addressbook::vcard
