#include "tools/addressbook/table_import.h"

#include "frameworks/AddressBook/csv/labels.h"
#include "frameworks/AddressBook/csv/table.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/property_path.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace addressbook::tool {
namespace {

using csv::Column;
using csv::Role;

// The columns of one file, and those that say nothing though they hold something.
class Columns {
  public:
    Columns(const csv::Row& header, const TableForm& form, const std::vector<PropertyDefinition>& own)
        : names_(header.cells) {
        columns_.reserve(names_.size());
        for (const std::string& name : names_) {
            const auto column = csv::columnNamed(name, own);
            columns_.push_back(column.value_or(Column()));
            unknown_.push_back(!column);
        }
        for (std::size_t at = 0; at < form.maps.size(); ++at) {
            map(form.maps[at], at, own);
        }
    }

    const std::vector<Column>& all() const { return columns_; }

    bool meansAnything() const {
        return std::any_of(columns_.begin(), columns_.end(), [](const Column& column) {
            return column.role == Role::value || column.role == Role::fullName;
        });
    }

    std::string names() const { return listed(names_); }

    // Notes which unknown columns hold something.
    void look(const csv::Row& row) {
        for (std::size_t at = 0; at < std::min(row.cells.size(), unknown_.size()); ++at) {
            if (unknown_[at] && !row.cells[at].empty()) {
                leftOut_.insert(at);
            }
        }
    }

    // Returns a digest of what a row says and under which headers: by it who has no id is known again, whatever
    // the columns mean and in which order they are.
    std::string digestOf(const csv::Row& row) const {
        std::vector<std::string> cells;
        for (std::size_t at = 0; at < std::min(row.cells.size(), names_.size()); ++at) {
            if (!row.cells[at].empty()) {
                cells.push_back(csv::squeezed(names_[at]) + '=' + row.cells[at] + '\n');
            }
        }
        std::sort(cells.begin(), cells.end());
        std::string all;
        for (const std::string& cell : cells) {
            all += cell;
        }
        return vcard::uuidOf(all);
    }

    std::string leftOut() const {
        std::vector<std::string> names;
        names.reserve(leftOut_.size());
        for (const std::size_t at : leftOut_) {
            names.push_back(escaped(names_[at]));
        }
        return listed(names);
    }

  private:
    // Takes a map: "Column=" leaves it out, "Column=property/label" says what it is.
    void map(const std::string& text, std::size_t number, const std::vector<PropertyDefinition>& own) {
        const std::size_t equals = text.rfind('=');
        if (equals == std::string::npos) {
            throw std::invalid_argument("--map " + text +
                                        ": expected Column=property, as \"Mobil=phones/mobile\"");
        }
        const std::string name = text.substr(0, equals);
        const auto found = std::find_if(names_.begin(), names_.end(), [&](const std::string& each) {
            return each == name || csv::squeezed(each) == csv::squeezed(name);
        });
        if (found == names_.end()) {
            throw std::invalid_argument("--map " + text + ": no column is named \"" + name +
                                        "\"; columns: " + names());
        }
        const auto at = static_cast<std::size_t>(found - names_.begin());
        unknown_[at] = false;
        columns_[at] = Column();
        if (equals + 1 == text.size()) {
            return;
        }
        const std::string_view meaning = std::string_view(text).substr(equals + 1);
        if (meaning == "name" || meaning == "groups" || meaning == "id") {
            columns_[at].role = meaning == "name" ? Role::fullName
                                : meaning == "id" ? Role::identifier
                                                  : Role::groups;
            return;
        }
        try {
            const PropertyPath path = parsePath(meaning, Kind::person, own);
            if (path.entryType() == Type::dictionary && path.field.empty()) {
                throw std::invalid_argument("say which field, as addresses/home/street");
            }
            // Columns of one label are one address, but several phones.
            const std::size_t entry = path.entryType() == Type::dictionary ? 0 : 1'000 + number;
            columns_[at] = {Role::value, path.property, path.label, path.field, entry};
        } catch (const std::invalid_argument& error) {
            throw std::invalid_argument("--map " + text + ": " + error.what());
        }
    }

    std::vector<std::string> names_;
    std::vector<Column> columns_;
    std::vector<bool> unknown_;
    std::set<std::size_t> leftOut_;
};

vcard::Card cardFrom(csv::Person person, const csv::Row& row, std::size_t number, std::string digest) {
    vcard::Card card;
    if (!person.id.empty()) {
        card.uid = vcard::uuidOf(person.id) + ":ABPerson";
    }
    card.values = std::move(person.values);
    card.categories = std::move(person.groups);
    for (std::string& problem : person.problems) {
        card.skipped.push_back({number, row.line, std::move(problem)});
    }
    card.digest = std::move(digest);
    card.number = number;
    card.line = row.line;
    return card;
}

} // namespace

bool looksLikeTable(std::string_view beginning) {
    std::string text(beginning); // of any character set, as far as it matters here
    std::erase(text, '\0');
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    if (text.find("BEGIN:VCARD") != std::string::npos) {
        return false;
    }
    const std::string_view line = std::string_view(text).substr(0, text.find_first_of("\r\n"));
    return line.find_first_of(",;\t|") != std::string_view::npos &&
           line.find("VERSION:") == std::string_view::npos;
}

void importTable(Input& input, const TableForm& form, const std::vector<PropertyDefinition>& own,
                 Importer& importer, const std::function<void(const std::string&)>& note,
                 const std::function<void(std::size_t line, const vcard::Card&)>& preview) {
    try {
        csv::TableReader reader(input, form.charset);
        const csv::Row* header = reader.next();
        if (header == nullptr) {
            throw Failure(input.name() + ": no CSV in it");
        }
        Columns columns(*header, form, own);
        if (!columns.meansAnything()) {
            throw Failure(input.name() + ": none of its columns is known: " + escaped(columns.names()) +
                          "; --map \"Column=property\" tells what one is");
        }
        importer.begin();
        bool ambiguous = false;
        for (std::size_t number = 1; const csv::Row* row = reader.next(); ++number) {
            columns.look(*row);
            csv::Person person = csv::personFrom(*row, columns.all(), own, form.dates);
            if (person.ambiguousDate && !ambiguous && !form.datesAreGiven) {
                ambiguous = true;
                note("dates as 3/4/1980 are read with the month first; --dates dmy reads the day first");
            }
            if (person.values.empty()) {
                importer.refuse({number, row->line, "nothing in it is known"}, input.name(),
                                reader.bytesRead());
                continue;
            }
            vcard::Card card = cardFrom(std::move(person), *row, number, columns.digestOf(*row));
            preview(row->line, card);
            importer.add(card, input.name(), reader.bytesRead());
        }
        if (!reader.guessedCharset().empty()) {
            note("read as " + reader.guessedCharset() + ", which is a guess; --charset NAME tells it");
        }
        if (const std::string names = columns.leftOut(); !names.empty()) {
            note("columns left out: " + names + "; --map \"Column=property\" takes one in");
        }
    } catch (const csv::TableError& error) {
        throw Failure(input.name() + ": " + error.what());
    }
}

} // namespace addressbook::tool
