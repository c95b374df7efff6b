#include "frameworks/AddressBook/sync/links.h"

namespace addressbook::sync {

namespace {

constexpr std::string_view kUnsent = "new:";
constexpr std::string_view kCategory = "category:";
constexpr std::string_view kUnreadable = "unreadable:";
constexpr std::string_view kElsewhere = "elsewhere:";

} // namespace

SyncLink unsentLink(std::int64_t collection, const std::string& uid) {
    return {collection, std::string(kUnsent) + uid, uid, {}, {}, false};
}

bool isOfRecord(const SyncLink& link) {
    return !link.uid.starts_with(kUnreadable) && !link.uid.starts_with(kElsewhere) && !categoryOf(link.href);
}

std::string categoryHref(const std::string& name) {
    return std::string(kCategory) + name;
}

std::optional<std::string> categoryOf(std::string_view href) {
    if (!href.starts_with(kCategory)) {
        return std::nullopt;
    }
    return std::string(href.substr(kCategory.size()));
}

std::string unreadableId(std::string_view href) {
    return std::string(kUnreadable) + std::string(href);
}

std::string elsewhereId(std::string_view uid, std::int64_t collection) {
    return std::string(kElsewhere) + std::to_string(collection) + ':' + std::string(uid);
}

} // namespace addressbook::sync
