#include "bench/generate/card_file.h"

#include "bench/generate/people.h"

#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bench {
namespace {

constexpr std::size_t kWidth = 75;

// Appends a line, folded where it is longer than kWidth bytes, not inside a character.
void appendLine(std::string& out, std::string_view line) {
    while (line.size() > kWidth) {
        std::size_t cut = kWidth;
        while ((static_cast<unsigned char>(line[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        out.append(line.substr(0, cut)).append("\r\n ");
        line.remove_prefix(cut);
    }
    out.append(line).append("\r\n");
}

std::string dayText(double noon) {
    using namespace std::chrono;
    const year_month_day day(sys_days(2001y / January / 1) + floor<days>(duration<double>(noon)));
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    return text;
}

std::string_view typeOf(std::string_view label) {
    return label == "_$!<Mobile>!$_" ? "CELL" : label == "_$!<Home>!$_" ? "HOME" : "WORK";
}

std::string cardOf(const Person& person) {
    std::string card;
    const auto line = [&card](std::string text) { appendLine(card, text); };
    line("BEGIN:VCARD");
    line("VERSION:3.0");
    line("N:" + person.last + ";" + person.first + ";;;");
    line("FN:" + person.first + " " + person.last);
    line("ORG:" + person.organization);
    line("TITLE:" + person.jobTitle);
    for (const LabelledText& phone : person.phones) {
        line("TEL;TYPE=" + std::string(typeOf(phone.label)) + ":" + phone.value);
    }
    line("EMAIL;TYPE=" + std::string(typeOf(person.email.label)) + ":" + person.email.value);
    const Address& address = person.address;
    line("item1.ADR;TYPE=" + std::string(typeOf(address.label)) + ":;;" + address.street + ";" +
         address.city + ";;" + address.zip + ";" + address.country);
    line("item1.X-ABADR:" + address.countryCode);
    line("BDAY:" + dayText(person.birthday));
    line("NOTE:" + person.note);
    line("UID:" + person.uid.substr(0, person.uid.find(':')));
    line("END:VCARD");
    return card;
}

} // namespace

void writeCardFile(const std::filesystem::path& file, std::size_t people) {
    std::ofstream out(file, std::ios::binary);
    for (std::size_t place = 0; place < people; ++place) {
        out << cardOf(person(place));
    }
    if (!out.flush()) {
        throw std::runtime_error(file.string() + " can not be written");
    }
}

} // namespace bench
