#include "frameworks/AddressBook/vcard/version4.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/line_values.h"

#include <algorithm>
#include <array>

namespace addressbook::vcard {

namespace {

// A type of data: the TYPE of version 3.0 and the media type of 4.0.
struct Media {
    std::string_view type, media;
};
constexpr std::array kMedia{
    Media{"JPEG", "image/jpeg"},
    Media{"PNG", "image/png"},
    Media{"GIF", "image/gif"},
    Media{"BMP", "image/bmp"},
    Media{"TIFF", "image/tiff"},
    Media{"WEBP", "image/webp"},
    Media{"PGP", "application/pgp-keys"},
    Media{"X509", "application/pkix-cert"},
    Media{"BASIC", "audio/basic"},
};
constexpr std::string_view kAnyMedia = "application/octet-stream";

// Data is an address by itself; some readers look only at one that is called so.
constexpr std::string_view kUri = ";VALUE=uri";

// A property of 3.0 that 4.0 has not, and its name in 4.0.
struct Renamed {
    std::string_view version3, version4;
};
constexpr std::array kRenamed{
    Renamed{"AGENT", "X-VCARD3-AGENT"},
    Renamed{"CLASS", "X-VCARD3-CLASS"},
    Renamed{"LABEL", "X-VCARD3-LABEL"},
    Renamed{"MAILER", "X-VCARD3-MAILER"},
    Renamed{"NAME", "X-VCARD3-NAME"},
    Renamed{"SORT-STRING", "X-VCARD3-SORT-STRING"},
    Renamed{"X-ADDRESSBOOKSERVER-KIND", "KIND"},
    Renamed{"X-ADDRESSBOOKSERVER-MEMBER", "MEMBER"},
};

// What the standard does not allow, so that other readers may refuse the card, is the value of a line with this
// name: a line whose name is none, and a second line of these.
constexpr std::string_view kOddLine = "X-ODD-LINE";
constexpr std::array<std::string_view, 8> kOnlyOnce{"ANNIVERSARY", "BDAY",   "GENDER", "KIND",
                                                    "N",           "PRODID", "REV",    "UID"};

bool mayStandOnce(std::string_view name) {
    return std::find(kOnlyOnce.begin(), kOnlyOnce.end(), name) != kOnlyOnce.end();
}

// Whether a line with this name may be written; notes that it is.
bool takePlace(std::string_view name, OnlyLines& written) {
    return !mayStandOnce(name) || written.emplace(name).second;
}

// Returns "1980-03-22" or "1980-03-22T10:00:00Z" in the form of 4.0: without hyphens and colons, and without
// the year that stands for none. Two hyphens that say so already stay.
std::string dayOf(std::string_view day) {
    const std::size_t time = std::min(day.find_first_of("Tt"), day.size());
    std::string text(day.substr(0, time));
    std::erase(text, '-');
    text += day.substr(time);
    std::erase(text, ':');
    constexpr std::string_view kNoYearSign = "--";
    const std::string noYear = std::to_string(kNoYear);
    if (day.starts_with(kNoYearSign)) {
        text.insert(0, kNoYearSign);
    } else if (text.starts_with(noYear)) {
        text.replace(0, noYear.size(), kNoYearSign);
    }
    return text;
}

void writeRelation(CardLine& line) {
    line.name = "RELATED";
    line.params = ";VALUE=text";
    const auto types = std::find_if(line.extra.begin(), line.extra.end(),
                                    [](const Param& param) { return param.name == "TYPE"; });
    const std::string label = line.label.value_or(std::string(defaultLabel(*line.rule)));
    if (types != line.extra.end()) {
        if (relationLabel(types->values) == label) {
            line.label.reset();
        }
    } else if (const std::string_view type = relationType(label); !type.empty()) {
        line.types = {type};
        line.label.reset();
    }
}

void writePicture(CardLine& line) {
    std::string_view media = kAnyMedia;
    for (const Media& each : kMedia) {
        if (line.params.ends_with("TYPE=" + std::string(each.type))) {
            media = each.media;
        }
    }
    line.value = "data:" + std::string(media) + ";base64," + line.value;
    line.params = kUri;
}

// Makes a line whose value is the data in [uri] one of base64, as version 3.0 has them, where that has a form for it.
void takeData(ContentLine& line, const std::string& uri) {
    const std::size_t comma = uri.find(',');
    constexpr std::string_view kBase64 = ";base64";
    const std::string head = uri.substr(0, std::min(comma, uri.size()));
    if (comma == std::string::npos || !head.ends_with(kBase64) || line.transfer != Transfer::none) {
        return;
    }
    std::string data = withoutBlanks(uri.substr(comma + 1));
    const Rule* rule = ruleFor(line.key); // a line that is a text by its name is read as one in 3.0
    if (!decodeBase64(data).valid || (rule && rule->shape != Shape::picture)) {
        return;
    }
    const std::string_view media = std::string_view(head).substr(5, head.size() - 5 - kBase64.size());
    const auto* row =
        std::find_if(kMedia.begin(), kMedia.end(), [&](const Media& each) { return each.media == media; });
    std::erase_if(line.params, [](const Param& param) { return param.name == "VALUE"; });
    if ((row == kMedia.end() && media != kAnyMedia) || (row != kMedia.end() && !line.params.empty())) {
        return;
    }
    if (row != kMedia.end()) {
        line.params.push_back({"TYPE", {std::string(row->type)}});
    }
    line.value = std::move(data);
    line.transfer = Transfer::base64;
}

// Gives an unknown line its name in version 4.0.
void rename(ContentLine& line) {
    for (const Renamed& each : kRenamed) {
        if (line.key == each.version3 || line.key == each.version4) { // in whatever letter case
            line.name = each.version4;
            line.key = each.version4;
        }
    }
}

// Makes an unknown line one of version 4.0.
void convert(ContentLine& line) {
    rename(line);
    if (const std::string uri = line.text(); equalsIgnoringCase(schemeOf(uri), "data")) {
        takeData(line, uri); // so that it is written as when it is read again
    }
    if (line.transfer == Transfer::base64 && decodeBase64(line.value).valid) {
        std::string_view media = kAnyMedia;
        for (const Media& each : kMedia) {
            if (line.params.size() == 1 && line.params[0].name == "TYPE" &&
                line.params[0].values == std::vector{std::string(each.type)}) {
                media = each.media;
                line.params.clear();
                break;
            }
        }
        line.value = "data:" + std::string(media) + ";base64," + renderValue(line);
        line.transfer = Transfer::none;
        line.params.push_back({"VALUE", {"uri"}});
    } else if (line.key == "GEO" && line.params.empty()) {
        if (const auto parts = line.components(3); parts.size() == 2) {
            line.value = "geo:" + parts[0] + ',' + parts[1];
        }
    } else if (line.key == "UID" && schemeOf(line.value).empty()) {
        line.params.push_back({"VALUE", {"text"}});
    }
}

// Makes an unknown line of version 4.0 one of 3.0.
void convertBack(ContentLine& line) {
    for (const Renamed& each : kRenamed) {
        if (line.key == each.version4 && each.version4 != "KIND") { // 3.0 may have that as well
            line.name = each.version3;
            line.key = each.version3;
        }
    }
    const std::string uri = line.text();
    if (equalsIgnoringCase(schemeOf(uri), "data")) {
        takeData(line, uri);
    } else if (line.key == "GEO" && line.params.empty() && equalsIgnoringCase(schemeOf(uri), "geo") &&
               std::count(uri.begin(), uri.end(), ',') == 1 && uri.find(';') == std::string::npos) {
        const std::size_t comma = uri.find(',');
        line.value = uri.substr(4, comma - 4) + ';' + uri.substr(comma + 1);
    } else if (line.key == "UID") {
        std::erase_if(line.params, [](const Param& param) { return param.name == "VALUE"; });
    }
}

// Whether an unknown line is written in 4.0 as it is written again when it has been read.
bool comesBack(const ContentLine& line) {
    ContentLine written = line;
    convert(written);
    if (written.transfer == Transfer::base64) {
        return false; // 4.0 has no encodings
    }
    PropertyLine text;
    text.text = render(written);
    text.utf8 = true;
    auto read = parseContentLine(text);
    if (!read) {
        return false;
    }
    convertBack(*read);
    convert(*read);
    return render(*read) == text.text;
}

// Whether a line may have been put into another one, in all versions and in 4.0.
bool isOddInAll(const ContentLine& line) {
    return !isPlainName(line.name) || isOddLine(line);
}
bool isOddInVersion4(const ContentLine& line) {
    ContentLine named = line;
    rename(named);
    return mayStandOnce(named.key) || !comesBack(line);
}

} // namespace

void keepRepeatedDays(const std::vector<CardLine>& lines, OnlyLines& written) {
    std::set<std::string> days; // without the times that were read with them
    for (const CardLine& line : lines) {
        if (line.property == property::kOtherDates && line.rule->use != Use::beside && line.label &&
            sameLabel(*line.label, ruleFor("ANNIVERSARY")->label) &&
            !days.insert(dayOf(std::string_view(line.value).substr(0, line.value.find_first_of("Tt"))))
                 .second) {
            takePlace("ANNIVERSARY", written);
        }
    }
}

void toVersion4(CardLine& line, OnlyLines& written) {
    for (const Renamed& each : kRenamed) {
        if (line.name == each.version3) {
            line.name = each.version4;
        }
    }
    if (!line.rule) {
        takePlace(line.name, written);
        return;
    }
    switch (line.rule->shape) {
    case Shape::day:
        line.value = dayOf(line.value);
        line.params.clear();
        break;
    case Shape::days:
        if (line.rule->use == Use::beside) {
            break; // for readers that know no other form of it than that of 3.0
        }
        line.value = dayOf(line.value);
        line.params.clear();
        if (line.label == ruleFor("ANNIVERSARY")->label && takePlace("ANNIVERSARY", written)) {
            line.name = "ANNIVERSARY";
            line.label.reset();
        } else {
            line.params = ";VALUE=date-and-or-time";
        }
        break;
    case Shape::picture:
        writePicture(line);
        break;
    case Shape::company:
        line.name = "KIND";
        line.value = line.value == "COMPANY" ? "org" : "individual";
        break;
    default:
        if (line.name == "X-ABRELATEDNAMES") {
            writeRelation(line);
        }
    }
    takePlace(line.name, written);
}

bool isOddLine(const ContentLine& line) {
    return line.key == kOddLine;
}

void toOddLine(ContentLine& line) {
    ContentLine odd;
    odd.group = line.group; // stays in the value as well, or a name with a dot would be taken apart
    odd.name = kOddLine;
    odd.value = escape(render(line));
    line = std::move(odd);
}

void fromOddLine(ContentLine& line, WrittenVersion version) {
    PropertyLine inside;
    inside.text = line.text();
    inside.number = line.number;
    inside.utf8 = true;
    auto odd = parseContentLine(inside);
    if (odd && (isOddInAll(*odd) || (version == WrittenVersion::v4 && isOddInVersion4(*odd)))) {
        odd->group = std::move(line.group);
        line = *std::move(odd);
    }
}

void toVersion4(ContentLine& line, OnlyLines& written) {
    ContentLine converted = line;
    convert(converted);
    if (isOddInAll(line) || !comesBack(line) || !takePlace(converted.key, written)) {
        toOddLine(line);
    } else {
        line = std::move(converted);
    }
}

void fromVersion4(ContentLine& line) {
    if (isOddLine(line)) {
        fromOddLine(line, WrittenVersion::v4);
    } else {
        convertBack(line);
    }
}

} // namespace addressbook::vcard
