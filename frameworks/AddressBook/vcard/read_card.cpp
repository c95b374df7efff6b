// Going through the lines of a card; readCard() at the end. What the properties become is in read_values.cpp,
// read_entries.cpp and finish_card.cpp.

#include "frameworks/AddressBook/vcard/read_card.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/card_reader.h"
#include "frameworks/AddressBook/vcard/digest.h"
#include "frameworks/AddressBook/vcard/encoding.h"

#include <algorithm>

namespace addressbook::vcard {

std::string CardReader::run() {
    collectGroups();
    for (ContentLine& line : lines_) {
        if (origins_) {
            origins_->push_back({line.number, line.group, line.name});
        }
        const Rule* rule = ruleFor(line.key);
        if (rule && !decodeText(*rule, line)) {
            continue;
        }
        const std::size_t additions = additions_.size(), leftOut = card_.skipped.size();
        if (!rule || !(card_.kind == Kind::group ? readGroupLine(*rule, line) : readLine(*rule, line))) {
            unknown_.push_back(&line);
        } else if (origins_ && card_.skipped.size() == leftOut) {
            noteOrigin(*rule, line, additions_.size() > additions);
        }
    }
    return card_.kind == Kind::group ? finishGroup() : finishPerson();
}

// Collects labels and country codes by group, before anything is read: they come after the lines to which
// they belong.
void CardReader::collectGroups() {
    for (ContentLine& line : lines_) {
        const Rule* rule = ruleFor(line.key);
        if (!rule) {
            continue;
        }
        if (rule->shape == Shape::kind && equalsIgnoringCase(trim(line.value), "group")) {
            card_.kind = Kind::group;
        }
        if (line.key == "VERSION") {
            version_ = trim(line.value) == "2.1"           ? Version::v21
                       : trim(line.value).starts_with("4") ? Version::v4
                                                           : Version::v3;
        }
        if (line.group.empty()) {
            continue;
        }
        if (rule->shape == Shape::label) {
            labels_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
        } else if (rule->shape == Shape::country) {
            countries_.emplace(upperCase(line.group), LabelInGroup{&line, line.text(), false});
        }
    }
}

// Notes where a line went that is understood. [added]: an addition was made of it, which says what entry it is.
void CardReader::noteOrigin(const Rule& rule, const ContentLine& line, bool added) {
    Origin& origin = origins_->back();
    origin.went = Went::value;
    if (added) {
        origin.property = additions_.back().property;
        origin.entry = additions_.back().entry;
        return;
    }
    switch (rule.shape) {
    case Shape::label:
    case Shape::country:
        origin.went = Went::label;
        break;
    case Shape::uid:
    case Shape::addressBookUid:
    case Shape::derived:
        origin.went = Went::nowhere;
        break;
    case Shape::kind:
        origin.went = card_.kind == Kind::group ? Went::nowhere : Went::value;
        origin.property = property::kPersonFlags;
        break;
    case Shape::categories:
        origin.property = kCategoriesUnit;
        break;
    case Shape::member: {
        const std::string uuid = uuidOf(trim(line.text()));
        const auto& members = card_.memberUids;
        const auto found = std::find_if(members.rbegin(), members.rend(), // mostly the last
                                        [&](const std::string& member) { return uuidOf(member) == uuid; });
        if (found == members.rend()) {
            origin.went = Went::nowhere; // it is empty
        } else {
            origin.property = kMemberUnit;
            origin.entry = static_cast<std::size_t>(members.rend() - found - 1);
        }
        break;
    }
    default:
        origin.property = card_.kind == Kind::group ? property::kGroupName : rule.property;
    }
}

// Leaves a line out and says why.
void CardReader::leaveOut(const ContentLine& line, const std::string& reason) {
    card_.skipped.push_back({card_.number, line.number, reason + ": " + excerpt(render(line))});
}

// Decodes text in base64; returns false when it is not text.
bool CardReader::decodeText(const Rule& rule, ContentLine& line) {
    if (line.transfer != Transfer::base64 || rule.shape == Shape::picture) {
        return true;
    }
    const Base64 text = decodeBase64(line.value);
    if (!text.valid) {
        leaveOut(line, "no base64 data");
        return false;
    }
    line.value = toUtf8(std::string(text.bytes.begin(), text.bytes.end()), {});
    std::erase(line.value, '\0');              // as in other lines
    line.transfer = Transfer::quotedPrintable; // where "\n" is not an escape, either
    return true;
}

bool CardReader::readGroupLine(const Rule& rule, ContentLine& line) {
    switch (rule.shape) {
    case Shape::fullName:
        setText(property::kGroupName, line.text());
        keepOfGroup("FN", line, escape(line.text()));
        return true;
    case Shape::name:
        names_ = line.components(6);
        return true;
    case Shape::member:
        return readMember(line);
    case Shape::uid:
    case Shape::addressBookUid:
        return readUid(rule, line);
    case Shape::kind:
    case Shape::derived:
        return true;
    default:
        return false;
    }
}

bool CardReader::readLine(const Rule& rule, ContentLine& line) {
    switch (rule.shape) {
    case Shape::name:
        return readName(line);
    case Shape::phoneticName:
        return readPhoneticName(line);
    case Shape::organization:
        return readOrganization(line);
    case Shape::text:
        return readText(rule, line);
    case Shape::day:
        return readDay(rule, line);
    case Shape::picture:
        return readPicture(line);
    case Shape::company:
        company_ = equalsIgnoringCase(trim(line.value), "COMPANY");
        return true;
    case Shape::nameOrder:
        return readNameOrder(line);
    case Shape::kind:
        if (equalsIgnoringCase(trim(line.value), "org")) {
            company_ = true;
            return true;
        }
        if (equalsIgnoringCase(trim(line.value), "individual")) {
            company_ = company_.value_or(false);
            return true;
        }
        return false;
    case Shape::uid:
    case Shape::addressBookUid:
        return readUid(rule, line);
    case Shape::categories:
        for (const std::string_view name : splitEscaped(line.value, ',', kMaxCardBytes)) {
            if (std::string text(trim(unescape(name))); !text.empty()) {
                card_.categories.push_back(std::move(text));
            }
        }
        return true;
    case Shape::fullName:
        return readFullName(line);
    case Shape::label:
        return usedLabel(labels_, line);
    case Shape::country:
        return usedLabel(countries_, line);
    case Shape::derived:
        return true;
    case Shape::member:
        return false;
    default:
        return readEntry(rule, line);
    }
}

// Whether an entry has used the label in [line], or an equal one. For lines before their entry this is
// asked again at the end.
bool CardReader::usedLabel(const std::unordered_map<std::string, LabelInGroup>& lines,
                           const ContentLine& line) {
    const auto found = lines.find(upperCase(line.group));
    return found != lines.end() && found->second.used &&
           (found->second.line == &line || found->second.text == line.text());
}

const std::string& CardReader::text(std::string_view property) const {
    static const std::string kNone;
    const auto found = card_.values.find(std::string(property));
    const auto* string = found == card_.values.end() ? nullptr : found->second.as<std::string>();
    return string ? *string : kNone;
}

void CardReader::setText(std::string_view property, std::string text) {
    if (!text.empty()) {
        card_.values[std::string(property)] = std::move(text);
    }
}

bool CardReader::isSet(std::string_view property) const {
    return card_.values.contains(std::string(property));
}

// Preserves the parameters of a line whose property is no list.
void CardReader::keep(std::string_view property, ContentLine& line, std::string asRead) {
    if (line.params.empty() && line.group.empty() && asRead.empty()) {
        return;
    }
    additions_.push_back(
        {property, 0, kNotPreferred, line.group, line.key, std::move(line.params), std::move(asRead)});
}

std::variant<Card, Problem> readCard(std::vector<ContentLine>& lines, std::size_t number, std::size_t line,
                                     std::vector<Origin>* origins) {
    Card card;
    card.number = number;
    card.line = line;
    const std::string contents = contentsOf(lines); // before they are taken apart
    if (origins) {
        origins->clear();
    }
    CardReader reader(lines, card, origins);
    std::string reason = reader.run();
    card.digest = digestOf(contents, !card.uid.empty());
    if (!reason.empty()) {
        if (!card.skipped.empty()) {
            return Problem{number, card.skipped.front().line, reason + "; " + card.skipped.front().reason};
        }
        return Problem{number, line, std::move(reason)};
    }
    return card;
}

} // namespace addressbook::vcard
