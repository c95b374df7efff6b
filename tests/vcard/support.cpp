#include "tests/vcard/support.h"

#include "frameworks/AddressBook/vcard/dates.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {

ReadResult readAll(std::string_view data) {
    ReadResult result;
    Reader reader(data);
    while (auto next = reader.next()) {
        if (auto* card = std::get_if<Card>(&*next)) {
            result.cards.push_back(std::move(*card));
        } else {
            result.problems.push_back(std::get<Problem>(std::move(*next)));
        }
    }
    return result;
}

Card readOne(std::string_view data) {
    ReadResult result = readAll(data);
    for (const Problem& problem : result.problems) {
        ADD_FAILURE() << "line " << problem.line << ": " << problem.reason;
    }
    EXPECT_EQ(result.cards.size(), 1u);
    return result.cards.empty() ? Card() : std::move(result.cards.front());
}

std::string cardText(const std::vector<std::string>& lines, const std::string& version) {
    std::string text = "BEGIN:VCARD\r\nVERSION:" + version + "\r\n";
    for (const std::string& line : lines) {
        text += line + "\r\n";
    }
    return text + "END:VCARD\r\n";
}

std::string describe(const Value& value) {
    if (const auto* text = value.as<std::string>()) {
        return *text;
    }
    if (const auto* number = value.as<std::int64_t>()) {
        return std::to_string(*number);
    }
    if (isDate(value)) {
        return dayText(value).value_or("?");
    }
    if (const auto* bytes = value.as<Bytes>()) {
        return std::to_string(bytes->size()) + " bytes";
    }
    std::string text;
    if (const auto* fields = value.as<Dictionary>()) {
        for (const auto& [key, each] : *fields) {
            text += (text.empty() ? "" : " ") + key + '=' + describe(each);
        }
        return '{' + text + '}';
    }
    if (const auto* array = value.as<Array>()) {
        for (const Value& each : *array) {
            text += (text.empty() ? "" : " | ") + describe(each);
        }
    }
    if (const auto* list = value.as<MultiValue>()) {
        for (const Entry& entry : list->entries) {
            std::string label = entry.label;
            if (label.starts_with("_$!<")) {
                label = label.substr(4, label.size() - 8);
            }
            text += (text.empty() ? "" : " ") + label + (entry.identifier == list->primary ? "*:" : ":") +
                    describe(entry.value);
        }
    }
    return '[' + text + ']';
}

std::string describe(const Card& card, std::string_view property) {
    const auto found = card.values.find(std::string(property));
    return found == card.values.end() ? "-" : describe(found->second);
}

std::vector<std::string> unknownLines(const Card& card) {
    std::vector<std::string> lines;
    if (const auto found = card.values.find(std::string(property::kUnknownLines));
        found != card.values.end()) {
        for (const Value& line : *found->second.as<Array>()) {
            lines.push_back(*line.as<std::string>());
        }
    }
    return lines;
}

std::vector<std::string> linesOf(const std::string& written) {
    std::string unfolded;
    for (std::size_t at = 0; at < written.size(); ++at) {
        if (written.compare(at, 3, "\r\n ") == 0) {
            at += 2;
        } else {
            unfolded += written[at];
        }
    }
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < unfolded.size();) {
        const std::size_t end = unfolded.find("\r\n", start);
        lines.push_back(unfolded.substr(start, end - start));
        start = end + 2;
    }
    EXPECT_GE(lines.size(), 3u);
    if (lines.size() < 3) {
        return {};
    }
    EXPECT_EQ(lines[0], "BEGIN:VCARD");
    EXPECT_TRUE(lines[1] == "VERSION:3.0" || lines[1] == "VERSION:4.0") << lines[1];
    EXPECT_EQ(lines.back(), "END:VCARD");
    return {lines.begin() + 2, lines.end() - 1};
}

bool sameContents(Card left, Card right) {
    for (Card* card : {&left, &right}) {
        for (auto& [property, value] : card->values) {
            if (auto* list = value.as<MultiValue>()) {
                for (std::size_t at = 0; at < list->entries.size(); ++at) {
                    Entry& entry = list->entries[at];
                    if (entry.identifier == list->primary) {
                        list->primary = std::to_string(at);
                    }
                    entry.identifier = std::to_string(at);
                }
            }
        }
    }
    return left.kind == right.kind && left.uid == right.uid && left.values == right.values &&
           left.memberUids == right.memberUids && left.categories == right.categories;
}

} // namespace addressbook::vcard
