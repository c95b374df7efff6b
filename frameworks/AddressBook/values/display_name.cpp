#include "frameworks/AddressBook/values/display_name.h"

#include "frameworks/AddressBook/values/property.h"

#include <initializer_list>

namespace addressbook {
namespace {

std::string textIn(const Value* value) {
    const auto* text = value ? value->as<std::string>() : nullptr;
    return text ? *text : "";
}

std::string textOf(const RecordView& record, std::string_view property) {
    return textIn(&record.value(property));
}

std::string firstEntryOf(const RecordView& record, std::string_view property) {
    const auto* list = record.value(property).as<MultiValue>();
    return textIn(list && !list->entries.empty() ? &list->entries.front().value : nullptr);
}

std::string joined(const RecordView& record, std::initializer_list<std::string_view> properties) {
    std::string whole;
    for (const auto property : properties) {
        if (const std::string part = textOf(record, property); !part.empty()) {
            whole += (whole.empty() ? "" : " ") + part;
        }
    }
    return whole;
}

} // namespace

std::string displayName(const RecordView& record) {
    namespace p = property;
    namespace flags = person_flags;
    if (record.kind() == Kind::group) {
        return textOf(record, p::kGroupName);
    }

    const auto* stored = record.value(p::kPersonFlags).as<std::int64_t>();
    const std::int64_t bits = stored ? *stored : 0;
    const bool isCompany = (bits & flags::kShowAsMask) == flags::kShowAsCompany;
    const bool lastFirst = (bits & flags::kNameOrderMask) == flags::kLastNameFirst;
    if (isCompany) {
        if (std::string company = textOf(record, p::kOrganization); !company.empty()) {
            return company;
        }
    }
    std::string names = lastFirst ? joined(record, {p::kTitle, p::kLast, p::kFirst, p::kMiddle, p::kSuffix})
                                  : joined(record, {p::kTitle, p::kFirst, p::kMiddle, p::kLast, p::kSuffix});
    if (!names.empty()) {
        return names;
    }
    for (const auto property : {p::kOrganization, p::kNickname}) {
        if (std::string name = textOf(record, property); !name.empty()) {
            return name;
        }
    }
    for (const auto property : {p::kEmail, p::kPhone}) {
        if (std::string name = firstEntryOf(record, property); !name.empty()) {
            return name;
        }
    }
    return "";
}

} // namespace addressbook
