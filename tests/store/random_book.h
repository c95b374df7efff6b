#pragma once

// Random books: records, saves and queries for tests that compare what a store finds with what matches() finds.

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"
#include "tests/store/builders.h"

#include <array>
#include <limits>
#include <map>
#include <random>
#include <sstream>

namespace addressbook::test {
inline constexpr double kNow = 800'000'000;
inline constexpr double kDay = 86'400;

// Pieces that provoke: case pairs of unequal length, composed and decomposed forms, zero characters, lone
// surrogates, bytes that are no UTF-8, what the trigram index treats specially, quotes.
inline constexpr std::array<std::string_view, 40> kPieces{"an",
                                                          "An",
                                                          "AN",
                                                          "son",
                                                          "Son",
                                                          "er",
                                                          "Müller",
                                                          "MÜLLER",
                                                          "Mu\u0308ller",
                                                          "ß",
                                                          "SS",
                                                          "ss",
                                                          "İ",
                                                          "i̇",
                                                          "ΣΑΣ",
                                                          "σας",
                                                          "é",
                                                          "e\u0301",
                                                          "E\u0301",
                                                          "ǰ",
                                                          "J\u030C",
                                                          "ᾳ",
                                                          "日本",
                                                          "日本語",
                                                          "\U0001F600",
                                                          "\xED\xA0\xBD",
                                                          "\xED\xB8\x80",
                                                          "\xFF",
                                                          "\uFFFD",
                                                          "\uFFFE",
                                                          std::string_view("\0", 1),
                                                          "\x1F",
                                                          "\x1E",
                                                          "\"",
                                                          "'",
                                                          "%",
                                                          "*",
                                                          "+49 30",
                                                          " ",
                                                          "0"};
inline constexpr std::array<const char*, 5> kLabels{"_$!<Home>!$_", "_$!<Work>!$_", "Ferien", "", "0"};
inline constexpr std::array<const char*, 5> kKeys{"City", "Street", "own", "", "0"};
inline constexpr std::array<const char*, 16> kProperties{
    "First",  "Last",          "Note", "Phone",    "Email",        "Address",     "ABDate", "Birthday",
    "custom", "ABPersonFlags", "UID",  "Creation", "Modification", ".VCardLines", ".Image", "never"};

// Makes values, records and queries.
class Generator {
  public:
    explicit Generator(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t limit) { return random_() % limit; }
    bool oneIn(std::size_t number) { return below(number) == 0; }
    template <typename List>
    auto pick(const List& list) {
        return list[below(list.size())];
    }

    std::string text() {
        std::string out;
        if (oneIn(12)) {
            out.assign(60 + below(10), 'x'); // around the length at which terms are cut
        }
        for (std::size_t pieces = below(4); pieces > 0; --pieces) {
            out += pick(kPieces);
        }
        if (oneIn(20)) {
            out += std::string(70, 'y');
        }
        return out;
    }

    Value leaf() {
        switch (below(16)) {
        case 0:
            return std::int64_t(below(9)) - 2;
        case 1:
            return oneIn(5) ? std::numeric_limits<double>::quiet_NaN()
                            : static_cast<double>(below(9)) / 2 - 1;
        case 2:
        case 3:
            return date();
        case 4:
            return components();
        case 5:
            return Bytes{static_cast<std::uint8_t>(below(2))};
        case 6:
            return oneIn(2) ? Array{} : Array{text()};
        case 7:
            return oneIn(3) ? Value() : dictionary();
        default:
            return text();
        }
    }

    Value date() {
        const Date date{kNow + kDay * (static_cast<double>(below(21)) - 10) - (oneIn(3) ? 3.2e8 : 0)};
        return oneIn(2) ? Value(date) : Value(*clockAt(date));
    }

    Value components() {
        DateComponents parts;
        if (oneIn(2)) {
            parts.year = 2026;
        }
        parts.month = 1 + static_cast<int>(below(12));
        parts.day = 1 + static_cast<int>(below(31));
        return parts;
    }

    Value dictionary() {
        Dictionary fields;
        for (std::size_t number = below(4); number > 0; --number) {
            fields[pick(kKeys)] = oneIn(6) ? leaf() : text();
        }
        return fields;
    }

    Value list() {
        MultiValue list;
        for (std::size_t number = below(4); number > 0; --number) {
            list.entries.push_back({newUuid(), pick(kLabels), oneIn(2) ? leaf() : Value(text())});
        }
        if (oneIn(3) && !list.entries.empty()) {
            list.primary = list.entries.back().identifier;
        }
        return list;
    }

    Value value(std::string_view property) {
        if (property == "Address" && !oneIn(4)) {
            MultiValue list;
            for (std::size_t number = below(3); number > 0; --number) {
                list.entries.push_back({newUuid(), pick(kLabels), dictionary()});
            }
            return list;
        }
        if (property == "Phone" || property == "Email" || property == "ABDate" || property == "Address") {
            return list();
        }
        if (property == "First" || property == "Last" || property == "Note") {
            return oneIn(10) ? leaf() : Value(text());
        }
        if (property == "Birthday") {
            return oneIn(2) ? date() : components();
        }
        if (property == "ABPersonFlags") {
            return std::int64_t(below(64));
        }
        if (property == ".VCardLines") {
            return Array{text()};
        }
        return oneIn(2) ? leaf() : list();
    }

    Values values() {
        Values values;
        for (const char* property : kProperties) {
            if (!oneIn(3) && builtInType(Kind::person, property) != static_cast<int>(Type::data) &&
                std::string_view(property) != "UID" && std::string_view(property) != "Creation" &&
                std::string_view(property) != "Modification" && std::string_view(property) != "never") {
                values[property] = value(property);
            }
        }
        return values;
    }

    // Something that is near the leaves of a record: one of them, a part of a text, another case.
    Value wanted(const Values& record) {
        if (oneIn(12)) {
            return {};
        }
        if (oneIn(8) || record.empty()) {
            return leaf();
        }
        Value near = std::next(record.begin(), static_cast<std::ptrdiff_t>(below(record.size())))->second;
        for (int depth = 0; depth < 2; ++depth) {
            if (const auto* list = near.as<MultiValue>(); list != nullptr && !list->entries.empty()) {
                near = Value(pick(list->entries).value);
            } else if (const auto* fields = near.as<Dictionary>();
                       fields != nullptr && !fields->empty() && !oneIn(5)) {
                near = Value(
                    std::next(fields->begin(), static_cast<std::ptrdiff_t>(below(fields->size())))->second);
            }
        }
        if (const auto* text = near.as<std::string>()) {
            return part(*text);
        }
        if (near.as<Date>() != nullptr && oneIn(2)) {
            return oneIn(2) ? days(std::int64_t(below(30)) - 8) : Value(std::int64_t(below(2000000)));
        }
        return near;
    }

    std::string part(std::string_view text) {
        std::string out(text);
        if (!out.empty() && oneIn(2)) {
            const std::size_t from = below(out.size());
            out = oneIn(3)   ? out.substr(from)
                  : oneIn(2) ? out.substr(0, from)
                             : out.substr(from, 1 + below(6));
        }
        if (oneIn(4)) {
            out = fold(out);
        }
        if (oneIn(4)) {
            for (char& c : out) {
                if (c >= 'a' && c <= 'z') {
                    c = static_cast<char>(c - 'a' + 'A');
                }
            }
        }
        return out;
    }

    Condition condition(const Values& record) {
        Condition condition;
        condition.kind = oneIn(5) ? Kind::group : Kind::person;
        condition.property = pick(kProperties);
        if (oneIn(4)) {
            condition.label = pick(kLabels);
        }
        if (oneIn(4)) {
            condition.key = pick(kKeys);
        }
        condition.comparison = static_cast<Comparison>(below(kComparisonCount));
        aim(condition);
        const auto own = record.find(condition.property);
        condition.value = own != record.end() && !oneIn(3) ? wanted({*own}) : wanted(record);
        return condition;
    }

    // Comparisons that only few properties can meet are mostly tried on those.
    void aim(Condition& condition) {
        if (oneIn(3)) {
            return;
        }
        if (condition.comparison == Comparison::bitsInBitFieldMatch) {
            condition.property = "ABPersonFlags";
        }
        if (condition.comparison >= Comparison::withinIntervalAroundToday) {
            condition.property = oneIn(2) ? "Birthday" : oneIn(2) ? "ABDate" : "Modification";
        }
    }

    Query query(const Values& record, int depth = 0) {
        if (depth == 2 || !oneIn(4)) {
            return {condition(record)};
        }
        Query::Compound compound;
        compound.join = oneIn(2) ? Query::Join::any : Query::Join::all;
        for (std::size_t number = below(4); number > 0; --number) {
            compound.children.push_back(query(record, depth + 1));
        }
        return {compound};
    }

  private:
    std::mt19937 random_;
};

inline std::string shown(std::string_view text) {
    std::ostringstream out;
    for (const char c : text) {
        if (c > ' ' && c < 127) {
            out << c;
        } else {
            out << "\\x" << std::hex << (static_cast<unsigned>(c) & 0xFF);
        }
    }
    return '"' + out.str() + '"';
}

inline std::string described(const Query& query) {
    if (const auto* compound = std::get_if<Query::Compound>(&query.node)) {
        std::string out = compound->join == Query::Join::all ? "all(" : "any(";
        for (const Query& child : compound->children) {
            out += described(child) + " ";
        }
        return out + ")";
    }
    const auto& condition = std::get<Condition>(query.node);
    const auto* text = condition.value.as<std::string>();
    return std::string(condition.kind == Kind::person ? "person." : "group.") + condition.property + "[" +
           (condition.label ? shown(*condition.label) : "-") + "," +
           (condition.key ? shown(*condition.key) : "-") + "] comparison " +
           std::to_string(static_cast<int>(condition.comparison)) + " with " +
           (text != nullptr ? shown(*text) : "type " + std::to_string(condition.value.index()));
}

// A book as it should be, beside those on disk, which are all saved alike.
class Model {
  public:
    explicit Model(std::vector<Store*> stores) : stores_(std::move(stores)) {}

    void save(Generator& generator, double seconds) {
        ChangeSet changes = changesAt(seconds);
        for (auto& [row, record] : records_) {
            const std::string uid = *record.value("UID").as<std::string>();
            if (generator.oneIn(10)) {
                changes.removed.push_back(uid);
            } else if (generator.oneIn(2)) {
                Values values = generator.values();
                if (generator.oneIn(3)) {
                    values["Note"] = Value();
                }
                changes.records.push_back(updated(uid, values, record.kind()));
            }
        }
        for (int i = 0; i < 60; ++i) {
            const Kind kind = generator.oneIn(5) ? Kind::group : Kind::person;
            const std::string uid =
                generator.oneIn(8) ? "odd " + generator.text() + std::to_string(seconds + i) : newUid(kind);
            changes.records.push_back(inserted(uid, generator.values(), kind));
        }
        apply(changes);
    }

    // Changes a few records and adds one, too few for the save to write the search indexes.
    void saveFew(Generator& generator, double seconds) {
        ChangeSet changes = changesAt(seconds);
        for (int i = 0; i < 3; ++i) {
            const auto& [row, record] =
                *std::next(records_.begin(), static_cast<std::ptrdiff_t>(generator.below(records_.size())));
            changes.records.push_back(
                updated(*record.value("UID").as<std::string>(), generator.values(), record.kind()));
        }
        changes.records.push_back(inserted(newUid(Kind::person), generator.values()));
        apply(changes);
    }

    const std::map<RowId, MemoryRecord>& records() const { return records_; }

    std::vector<RowId> matching(const Query& query) const {
        std::vector<RowId> rows;
        for (const auto& [row, record] : records_) {
            if (matches(query, record, Date{kNow})) {
                rows.push_back(row);
            }
        }
        return rows;
    }

  private:
    void apply(const ChangeSet& changes) {
        for (Store* store : stores_) {
            store->save(changes);
        }
        for (const std::string& uid : changes.removed) {
            std::erase_if(records_, [&](const auto& item) { return item.second.value("UID") == Value(uid); });
        }
        for (const RecordChange& change : changes.records) {
            const RowId row = stores_.front()->find(change.uid)->row;
            auto& record =
                records_
                    .try_emplace(row, change.kind, Values{{"UID", change.uid}, {"Creation", changes.time}})
                    .first->second;
            for (const auto& [name, value] : change.values) {
                record.values()[name] = value;
            }
            record.values()["Modification"] = changes.time;
        }
    }

    std::vector<Store*> stores_;
    std::map<RowId, MemoryRecord> records_;
};

} // namespace addressbook::test
