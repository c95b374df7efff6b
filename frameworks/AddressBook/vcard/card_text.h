#pragma once

// The text of one card, cut into its property lines, so that some of them can be left out and others put between them.

#include "frameworks/AddressBook/vcard/origin.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace addressbook::vcard {

// A property line, with all the lines of the text that belong to it.
struct Piece {
    std::string_view bytes;
    Origin origin;
    bool dropped = false;
};

class CardText {
  public:
    // Returns the card in [text], which must outlive it; nothing when there is none, or more than that.
    static std::optional<CardText> read(std::string_view text);

    const Card& card() const { return card_; }
    // Returns the value of VERSION; empty when there is none.
    std::string_view version() const;

    std::vector<Piece>& pieces() { return pieces_; }
    // Returns the indices of the lines of which a unit was read, in order; of an unknown line for kUnknownLines.
    const std::vector<std::size_t>& linesOf(std::string_view property, std::size_t entry) const;
    // Returns the index of the first line of which a unit of [property] was read.
    std::optional<std::size_t> firstLineOf(std::string_view property) const;

    // Adds lines before a piece; before the end where there is no piece [at].
    void insert(std::size_t at, std::string_view lines);
    // Returns the text without the dropped pieces, with what was inserted, by the line ends that it has.
    std::string join() const;

  private:
    void cut(const std::vector<Origin>& origins);

    std::string_view text_;
    Card card_;
    std::vector<Piece> pieces_;
    std::map<std::pair<std::string_view, std::size_t>, std::vector<std::size_t>> lines_;
    std::size_t end_ = 0;               // where the line of END:VCARD begins
    std::vector<std::string> inserted_; // before each piece, and before the end
};

} // namespace addressbook::vcard
