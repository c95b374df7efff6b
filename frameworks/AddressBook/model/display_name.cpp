#include "frameworks/AddressBook/model/display_name.h"

namespace addressbook {

namespace {

constexpr std::int64_t kShowAsMask = 7;
constexpr std::int64_t kShowAsCompany = 1;
constexpr std::int64_t kNameOrderMask = 070;
constexpr std::int64_t kLastNameFirst = 020;

std::string text(Book& book, LiveRecord& record, std::string_view property) {
    const Value& value = book.value(record, property);
    if (const auto* string = value.as<std::string>())
        return *string;
    if (const auto* list = value.as<MultiValue>(); list && !list->entries.empty())
        if (const auto* first = list->entries.front().value.as<std::string>())
            return *first;
    return "";
}

std::string joined(std::initializer_list<std::string> parts) {
    std::string whole;
    for (const auto& part : parts) {
        if (part.empty())
            continue;
        if (!whole.empty())
            whole += ' ';
        whole += part;
    }
    return whole;
}

} // namespace

std::string displayName(Book& book, LiveRecord& record) {
    if (record.kind == Kind::group)
        return text(book, record, property::kGroupName);

    const auto* stored = book.value(record, property::kPersonFlags).as<std::int64_t>();
    const std::int64_t flags = stored ? *stored : 0;
    const auto of = [&](std::string_view property) { return text(book, record, property); };
    std::string names = (flags & kNameOrderMask) == kLastNameFirst
                            ? joined({of(property::kLast), of(property::kFirst), of(property::kMiddle)})
                            : joined({of(property::kFirst), of(property::kMiddle), of(property::kLast)});
    if (!names.empty() && (flags & kShowAsMask) != kShowAsCompany)
        return names;
    if (auto company = of(property::kOrganization); !company.empty())
        return company;
    if (!names.empty())
        return names;
    for (const auto property : {property::kNickname, property::kEmail, property::kPhone})
        if (auto name = of(property); !name.empty())
            return name;
    return "";
}

} // namespace addressbook
