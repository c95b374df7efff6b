#include "bench/baseline/card_lines.h"

#include <array>
#include <charconv>
#include <chrono>
#include <string_view>

namespace bench {
namespace {

// Returns the parts of a text between semicolons, at most as many as there is room for.
std::array<std::string_view, 8> parts(std::string_view text) {
    std::array<std::string_view, 8> found;
    for (std::string_view& part : found) {
        const std::size_t end = text.find(';');
        part = text.substr(0, end);
        if (end == std::string_view::npos) {
            break;
        }
        text.remove_prefix(end + 1);
    }
    return found;
}

std::string labelOf(std::string_view header) {
    return header.ends_with("CELL")   ? "_$!<Mobile>!$_"
           : header.ends_with("HOME") ? "_$!<Home>!$_"
                                      : "_$!<Work>!$_";
}

double noonOf(std::string_view text) {
    using namespace std::chrono;
    const auto number = [&](std::size_t at, std::size_t count) {
        int value = 0;
        std::from_chars(text.data() + at, text.data() + at + count, value);
        return value;
    };
    const sys_days day = year(number(0, 4)) / number(5, 2) / number(8, 2);
    return duration<double>(day - sys_days(2001y / January / 1)).count() + 43'200;
}

} // namespace

// Reads the next line with what is folded.
bool CardLines::nextLine() {
    if (!hasAhead_ && !std::getline(in_, ahead_)) {
        return false;
    }
    std::swap(line_, ahead_);
    line_.pop_back();
    while ((hasAhead_ = static_cast<bool>(std::getline(in_, ahead_))) && ahead_.front() == ' ') {
        line_.append(ahead_, 1, ahead_.size() - 2);
    }
    return true;
}

std::optional<Person> CardLines::next() {
    std::optional<Person> person;
    while (nextLine()) {
        const std::string_view line = line_;
        const std::size_t colon = line.find(':');
        const std::string_view header = line.substr(0, colon);
        const std::string_view value = line.substr(colon + 1);
        if (header == "BEGIN") {
            person.emplace();
        } else if (header == "END") {
            break;
        } else if (header == "N") {
            const auto names = parts(value);
            person->last = names[0];
            person->first = names[1];
        } else if (header == "ORG") {
            person->organization = value;
        } else if (header == "TITLE") {
            person->jobTitle = value;
        } else if (header.starts_with("TEL")) {
            person->phones.push_back({labelOf(header), std::string(value)});
        } else if (header.starts_with("EMAIL")) {
            person->email = {labelOf(header), std::string(value)};
        } else if (header.starts_with("item1.ADR")) {
            const auto fields = parts(value);
            Address& address = person->address;
            address.label = labelOf(header);
            address.street = fields[2];
            address.city = fields[3];
            address.zip = fields[5];
            address.country = fields[6];
        } else if (header == "item1.X-ABADR") {
            person->address.countryCode = value;
        } else if (header == "BDAY") {
            person->birthday = noonOf(value);
        } else if (header == "NOTE") {
            person->note = value;
        } else if (header == "UID") {
            person->uid = std::string(value) + ":ABPerson";
        }
    }
    return person;
}

} // namespace bench
