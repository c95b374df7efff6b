// What of a card depends on all of its lines: the name of one that has FN alone, the unique id, unknown lines.

#include "frameworks/AddressBook/vcard/card_reader.h"

#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/full_name.h"
#include "frameworks/AddressBook/vcard/version4.h"

#include <algorithm>

namespace addressbook::vcard {

std::string CardReader::finishGroup() {
    if (!isSet(property::kGroupName) && !names_.empty()) {
        setText(property::kGroupName, names_[0].empty() && names_.size() > 1 ? names_[1] : names_[0]);
    }
    if (!isSet(property::kGroupName) && card_.memberUids.empty() && unknown_.empty()) {
        return "the group has neither name nor members";
    }
    finishUid();
    keepUnknown(std::move(groupAdditions_));
    return {};
}

std::string CardReader::finishPerson() {
    finishName();
    if (card_.values.size() == (isSet(property::kPersonFlags) ? 1 : 0) && unknown_.empty() &&
        card_.categories.empty()) {
        return "the card has nothing in it";
    }
    setPrimaries(additions_, card_);
    finishUid();
    std::set<std::string> groups;
    for (const ContentLine* line : unknown_) {
        if (!line->group.empty() && !isUsedLabel(*line)) {
            groups.insert(upperCase(line->group));
        }
    }
    keepUnknown(additionLines(additions_, card_, groups, groupNames_));
    return {};
}

void CardReader::finishName() {
    const bool named =
        std::any_of(names_.begin(), names_.end(), [](const auto& part) { return !part.empty(); });
    if (!named && !fullName_.empty()) {
        if (fullName_ == text(property::kOrganization)) {
            company_ = company_.value_or(true);
        } else if (isSaidElsewhere(fullName_)) {
            // no name of its own
        } else if (company_.value_or(false) && !isSet(property::kOrganization)) {
            setText(property::kOrganization, fullName_);
        } else {
            NameParts parts = splitFullName(fullName_);
            setText(property::kTitle, std::move(parts.title));
            setText(property::kFirst, std::move(parts.first));
            setText(property::kLast, std::move(parts.last));
            setText(property::kSuffix, std::move(parts.suffix));
        }
    }
    if (const std::int64_t flags = (company_.value_or(false) ? person_flags::kShowAsCompany : 0) | order_) {
        card_.values[std::string(property::kPersonFlags)] = flags;
    }
    if (fullNameLine_) {
        keep({}, *fullNameLine_, fullName_ == shownName(card_) ? std::string() : escape(fullName_));
    }
}

// Whether a text, which is the name of a card without a name, is also the value of another property.
bool CardReader::isSaidElsewhere(const std::string& name) const {
    if (text(property::kNickname) == name) {
        return true;
    }
    for (const std::string_view property : {property::kEmail, property::kPhone}) {
        const auto found = card_.values.find(std::string(property));
        const auto* list = found == card_.values.end() ? nullptr : found->second.as<MultiValue>();
        if (list && !list->entries.empty() && list->entries.front().value == Value(name)) {
            return true;
        }
    }
    return false;
}

void CardReader::finishUid() {
    std::string uuid = abUuid_;
    if (!uid_.empty()) {
        const std::string other = uuidOf(uid_);
        if (uuid.empty()) {
            uuid = other;
        } else if (uuid != other) {
            card_.otherUuid = other;
        }
    }
    if (uuid.empty()) {
        return;
    }
    card_.uid = uuid + (card_.kind == Kind::group ? ":ABGroup" : ":ABPerson");
    // The UID is kept as read only if it would be written differently.
    const bool plain = uid_ == uuid || (version_ == Version::v4 && uid_ == "urn:uuid:" + uuid);
    keepUid_ = keepUid_ || (!uid_.empty() && !plain);
}

bool CardReader::isUsedLabel(const ContentLine& line) {
    return (line.key == "X-ABLABEL" && usedLabel(labels_, line)) ||
           (line.key == "X-ABADR" && usedLabel(countries_, line));
}

void CardReader::keepUnknown(std::vector<std::string> lines) {
    for (ContentLine* line : unknown_) {
        if (version_ == Version::v4) {
            fromVersion4(*line);
        } else if (isOddLine(*line)) {
            fromOddLine(*line, WrittenVersion::v3);
        }
        // A second one, which is not to be taken for the first.
        keepUid_ = keepUid_ || (!uid_.empty() && line->key == "UID");
    }
    if (keepUid_) {
        lines.push_back("UID:" + escapeUri(uid_));
    }
    for (ContentLine* line : unknown_) {
        const bool used = isUsedLabel(*line);
        if (origins_) {
            Origin& origin = (*origins_)[static_cast<std::size_t>(line - lines_.data())];
            origin.went = used ? Went::label : Went::unknown;
            origin.entry = lines.size();
        }
        if (!used) {
            line->group = groupNames_.renamed(line->group);
            lines.push_back(render(*line));
        }
    }
    if (lines.empty()) {
        return;
    }
    Array array;
    for (std::string& line : lines) {
        array.emplace_back(std::move(line));
    }
    card_.values[std::string(property::kUnknownLines)] = std::move(array);
}

} // namespace addressbook::vcard
