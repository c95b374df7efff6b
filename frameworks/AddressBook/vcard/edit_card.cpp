#include "frameworks/AddressBook/vcard/edit_card.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/card_text.h"
#include "frameworks/AddressBook/vcard/card_units.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/line_writer.h"
#include "frameworks/AddressBook/vcard/origin.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace addressbook::vcard {

namespace {

// What of the text stays: what has not changed, or only the lines that no property holds.
enum class Keep { unchanged, unknown };

using Place = std::pair<std::string_view, std::size_t>; // property and entry

// Puts the names that [before] has too into its order and spelling: members and categories are sets.
void takeOrder(std::vector<std::string>& now, const std::vector<std::string>& before, bool members) {
    const auto key = [&](const std::string& name) { return members ? uuidOf(name) : name; };
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t at = 0; at < before.size(); ++at) {
        places.try_emplace(key(before[at]), at);
    }
    std::map<std::size_t, std::string> known;
    std::vector<std::string> added;
    std::set<std::string> seen;
    for (std::string& name : now) {
        std::string id = key(name);
        if (!seen.insert(id).second) {
            continue;
        }
        if (const auto found = places.find(id); found != places.end()) {
            known.emplace(found->second, before[found->second]);
        } else {
            added.push_back(std::move(name));
        }
    }
    now.clear();
    for (auto& [place, name] : known) {
        now.push_back(std::move(name));
    }
    now.insert(now.end(), std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
}

// Returns [card] with the members and categories of [before] in the order and spelling that they have there.
Card ordered(Card card, const Card& before) {
    // Members that are not in the address book are members as well.
    if (auto found = card.values.find(std::string(property::kUnknownLines)); found != card.values.end()) {
        std::erase_if(*found->second.as<Array>(), [&](const Value& stored) {
            const auto* line = stored.as<std::string>();
            const bool is = line && isMemberLine(card, *line);
            if (is) {
                card.memberUids.push_back(*memberIn(*line));
            }
            return is;
        });
    }
    takeOrder(card.memberUids, before.memberUids, true);
    takeOrder(card.categories, before.categories, false);
    return card;
}

// Whether a stored line says how the full name (FN) was written.
bool isOfFullName(const std::string& stored) {
    return stored.starts_with("+FN");
}

// Returns what [card] reads as once it is written: text without white space around it, days without a time. Its full
// name is made of these, unless it had one of its own.
Card asRead(const Card& card, WrittenVersion version) {
    const std::string text = write(card, version);
    auto read = CardText::read(text);
    if (!read) {
        return card;
    }
    Card result = read->card();
    const std::vector<std::string> stored = storedLines(unknownLinesOf(card));
    const auto found = result.values.find(std::string(property::kUnknownLines));
    if (found != result.values.end() && std::none_of(stored.begin(), stored.end(), isOfFullName)) {
        std::erase_if(*found->second.as<Array>(), [](const Value& line) {
            const auto* written = line.as<std::string>();
            return written && isOfFullName(*written);
        });
    }
    return result;
}

// Changes the text of one card.
class Editor {
  public:
    Editor(CardText& text, WrittenVersion version) : text_(text), version_(version), writer_(version) {}

    std::string run(const std::vector<Unit>& before, const std::vector<Unit>& now, const Card& card,
                    Keep keep) {
        for (const Piece& piece : text_.pieces()) {
            writer_.groups().take(piece.origin.group);
        }
        std::vector<std::size_t> matches = matchUnits(before, now);
        if (keep == Keep::unknown) {
            for (std::size_t at = 0; at < now.size(); ++at) {
                matches[at] = now[at].property == property::kUnknownLines ? matches[at] : kNew;
            }
        }
        drop(before, now, matches, keep);
        insert(before, now, matches, outOfOrder(matches, now));
        const bool hasUid = std::any_of(text_.pieces().begin(), text_.pieces().end(), [](const Piece& piece) {
            return equalsIgnoringCase(piece.origin.name, "UID") ||
                   equalsIgnoringCase(piece.origin.name, "X-ABUID");
        });
        if (!hasUid && !card.uid.empty()) {
            writer_.append(uidLine(card.uid, version_));
            text_.insert(text_.pieces().size(), writer_.take());
        }
        return text_.join();
    }

  private:
    // Returns which matched units stand in another order than those that can stay: all but the longest rising
    // sequence of each property.
    static std::set<std::size_t> outOfOrder(const std::vector<std::size_t>& matches,
                                            const std::vector<Unit>& now) {
        std::set<std::size_t> moved;
        std::map<std::string_view, std::vector<std::size_t>> byProperty;
        for (std::size_t at = 0; at < now.size(); ++at) {
            if (matches[at] != kNew && now[at].property != property::kUnknownLines) {
                byProperty[now[at].property].push_back(at);
            }
        }
        for (const auto& [property, units] : byProperty) {
            std::vector<std::size_t> tails; // the last unit of the best sequence of each length
            std::map<std::size_t, std::size_t> previous;
            for (const std::size_t unit : units) {
                const auto place =
                    std::lower_bound(tails.begin(), tails.end(), unit,
                                     [&](std::size_t a, std::size_t b) { return matches[a] < matches[b]; });
                previous[unit] = place == tails.begin() ? kNew : *(place - 1);
                if (place == tails.end()) {
                    tails.push_back(unit);
                } else {
                    *place = unit;
                }
            }
            moved.insert(units.begin(), units.end());
            for (std::size_t unit = tails.empty() ? kNew : tails.back(); unit != kNew;
                 unit = previous[unit]) {
                moved.erase(unit);
            }
        }
        return moved;
    }

    // Drops the lines of units that are not there any more.
    void drop(const std::vector<Unit>& before, const std::vector<Unit>& now,
              const std::vector<std::size_t>& matches, Keep keep) {
        std::set<Place> kept, gone;
        for (std::size_t at = 0; at < now.size(); ++at) {
            if (matches[at] != kNew) {
                kept.insert({before[matches[at]].property, before[matches[at]].entry});
            }
        }
        for (const Unit& unit : before) {
            if (!kept.contains({unit.property, unit.entry})) {
                gone.insert({unit.property, unit.entry});
            }
        }
        for (std::size_t at = 0; at < now.size(); ++at) {
            const Place place{now[at].property,
                              0}; // the line of a value that the text has, and would not be written
            if (matches[at] == kNew && !kept.contains(place) && now[at].property != property::kUnknownLines) {
                gone.insert(place);
            }
        }
        for (Piece& piece : text_.pieces()) {
            const bool value = piece.origin.went == Went::value;
            if (value || piece.origin.went == Went::unknown) {
                piece.dropped = (value && keep == Keep::unknown) ||
                                gone.contains({piece.origin.property, piece.origin.entry});
            }
        }
        dropLabels();
    }

    // Drops the labels of groups that no value is left in.
    void dropLabels() {
        std::map<std::string, bool> left; // by group: whether a value is left
        for (const Piece& piece : text_.pieces()) {
            if (piece.origin.went == Went::value && !piece.origin.group.empty()) {
                bool& some = left[upperCase(piece.origin.group)];
                some = some || !piece.dropped;
            }
        }
        for (Piece& piece : text_.pieces()) {
            if (piece.origin.went == Went::label) {
                const auto found = left.find(upperCase(piece.origin.group));
                piece.dropped = found != left.end() && !found->second;
            }
        }
    }

    // Puts the new units in, near what they stand beside.
    void insert(const std::vector<Unit>& before, const std::vector<Unit>& now,
                const std::vector<std::size_t>& matches, const std::set<std::size_t>& moved) {
        keepGroupNames(before, now, matches);
        const auto stays = [&](std::size_t at) { return matches[at] != kNew && !moved.contains(at); };
        std::map<std::string_view, std::size_t> last; // property -> where the next of its units goes
        std::size_t anywhere = kNew;
        for (std::size_t at = 0; at < now.size(); ++at) {
            const Unit& unit = now[at];
            if (stays(at)) {
                if (const auto& lines = linesOf(before[matches[at]]); !lines.empty()) {
                    anywhere = last[unit.property] = behind(lines.back());
                }
                continue;
            }
            if (!last.contains(unit.property)) {
                last[unit.property] = firstPlace(before, now, matches, at, stays)
                                          .value_or(anywhere == kNew ? text_.pieces().size() : anywhere);
            }
            anywhere = last[unit.property];
            if (matches[at] != kNew && moveBytes(before[matches[at]], anywhere)) {
                continue;
            }
            write(unit);
            text_.insert(anywhere, writer_.take());
        }
    }

    // The place behind a line and the labels of its group.
    std::size_t behind(std::size_t piece) {
        const std::vector<Piece>& pieces = text_.pieces();
        std::size_t next = piece + 1;
        while (next < pieces.size() && pieces[next].origin.went == Went::label &&
               equalsIgnoringCase(pieces[next].origin.group, pieces[piece].origin.group)) {
            ++next;
        }
        return next;
    }

    // Where the first of a property's units goes that has none before it: before the next one that stays, else to
    // where the first of them was.
    template <typename Stays>
    std::optional<std::size_t> firstPlace(const std::vector<Unit>& before, const std::vector<Unit>& now,
                                          const std::vector<std::size_t>& matches, std::size_t from,
                                          const Stays& stays) const {
        for (std::size_t at = from + 1; at < now.size(); ++at) {
            if (now[at].property == now[from].property && stays(at)) {
                if (const auto& lines = linesOf(before[matches[at]]); !lines.empty()) {
                    return lines.front();
                }
            }
        }
        return text_.firstLineOf(now[from].property);
    }

    const std::vector<std::size_t>& linesOf(const Unit& unit) const {
        return text_.linesOf(unit.property, unit.entry);
    }

    // Moves the lines of a unit as they are to [place]; false when it has none. Labels need not be near.
    bool moveBytes(const Unit& unit, std::size_t place) {
        for (const std::size_t at : linesOf(unit)) {
            Piece& piece = text_.pieces()[at];
            text_.insert(place, piece.bytes);
            piece.dropped = true;
        }
        return !linesOf(unit).empty();
    }

    void write(const Unit& unit) {
        if (unit.property == property::kUnknownLines) {
            writer_.addStored(unit.stored);
        } else if (unit.property == kCategoriesUnit) {
            writer_.append(unit.text);
        } else {
            for (const CardLine& line : unit.lines) {
                CardLine& written = written_.emplace_back(line);
                if (unit.property == kMemberUnit && !memberName_.empty()) {
                    written.name = memberName_;
                }
                writer_.add(written);
            }
        }
    }

    // Has new lines use the text's names for groups of lines that stay, and for members.
    void keepGroupNames(const std::vector<Unit>& before, const std::vector<Unit>& now,
                        const std::vector<std::size_t>& matches) {
        for (std::size_t at = 0; at < now.size(); ++at) {
            if (now[at].property != property::kUnknownLines || matches[at] == kNew) {
                continue;
            }
            const std::vector<std::size_t>& lines = linesOf(before[matches[at]]);
            const auto stored = parseStored(now[at].stored);
            if (lines.empty() || !stored || stored->group.empty()) {
                continue;
            }
            const std::vector<Piece>& pieces = text_.pieces();
            const std::string& group = pieces[lines.front()].origin.group;
            const bool taken = std::any_of(pieces.begin(), pieces.end(), [&](const Piece& piece) {
                return piece.origin.went == Went::value && !piece.dropped &&
                       equalsIgnoringCase(piece.origin.group, group);
            });
            if (!taken) {
                writer_.groups().rename(stored->group, group);
            }
        }
        for (const Piece& piece : text_.pieces()) {
            if (piece.origin.property == kMemberUnit) {
                memberName_ = piece.origin.name;
            }
        }
    }

    CardText& text_;
    WrittenVersion version_;
    LineWriter writer_;
    std::deque<CardLine> written_; // which the writer looks at again
    std::string memberName_;       // as the text's lines of members are named
};

} // namespace

std::string editCard(std::string_view text, const Card& card) {
    const std::optional<CardText> read = CardText::read(text);
    if (!read || read->card().kind != card.kind) {
        return write(card);
    }
    const std::string_view number = read->version();
    const WrittenVersion version = number.starts_with('4') ? WrittenVersion::v4 : WrittenVersion::v3;
    const std::vector<Unit> before = unitsOf(read->card(), version);
    const bool needsUid = read->card().uid.empty() && !card.uid.empty();
    if (!needsUid && saySame(before, unitsOf(ordered(card, read->card()), version))) {
        return std::string(text);
    }
    const Card wanted = ordered(asRead(card, version), read->card());
    const std::vector<Unit> now = unitsOf(wanted, version);
    if (!needsUid && saySame(before, now)) {
        return std::string(text);
    }
    const auto readsAsWanted = [&](const std::string& edited) {
        const auto again = CardText::read(edited);
        return again && saySame(unitsOf(again->card(), version), now);
    };
    std::string whole = write(card, version);
    if (number == "2.1") {
        return whole;
    }
    std::string least;
    for (const Keep keep : {Keep::unchanged, Keep::unknown}) {
        CardText edited = *read;
        std::string result = Editor(edited, version).run(before, now, wanted, keep);
        if (readsAsWanted(result)) {
            return result;
        }
        if (keep == Keep::unchanged) {
            least = std::move(result);
        }
    }
    return readsAsWanted(whole) ? whole : least;
}

bool sayTheSame(const Card& left, const Card& right) {
    constexpr WrittenVersion kVersion = WrittenVersion::v3;
    const auto same = [](const Card& one, const Card& other) {
        return saySame(unitsOf(one, kVersion), unitsOf(ordered(other, one), kVersion));
    };
    return left.kind == right.kind &&
           (same(left, right) || same(asRead(left, kVersion), asRead(right, kVersion)));
}

} // namespace addressbook::vcard
