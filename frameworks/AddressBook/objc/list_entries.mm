#include "frameworks/AddressBook/objc/list_entries.h"

#include "frameworks/AddressBook/objc/bridge.h"

#include <algorithm>

namespace addressbook {
Retained copied(id object) {
    return Retained([object respondsToSelector:@selector(copyWithZone:)] ? [[object copy] autorelease]
                                                                         : object);
}

ListEntry::ListEntry(id value, NSString* label, NSString* identifier)
    : value_(copied(value).get()), label_(copied(label).get()), identifier_(copied(identifier).get()) {}

ListEntry::Sought::Sought(NSString* identifier)
    : object(identifier), text(textFrom(identifier)), stored(text) {}

bool ListEntry::isNamed(const Sought& sought) const {
    const EncodedIdentifier& mine = encoded_.identifier;
    if (mine.bytes.empty() && identifier_.made() != nil) { // was not read from an address book
        return [identifier_.made() isEqualToString:sought.object];
    }
    return mine.packed ? sought.stored.isPacked() && mine.bytes == sought.stored.bytes()
                       : mine.bytes == sought.text;
}

id ListEntry::value() const {
    return value_.get([this] { return objectOrNull(objectFromEncoded(encoded_.value)); });
}

NSString* ListEntry::label() const {
    return label_.get([this] { return wordFrom(encoded_.label); });
}

NSString* ListEntry::identifier() const {
    return identifier_.get([this] { return stringFrom(encoded_.identifier.text()); });
}

ListEntries::ListEntries(std::string_view encoded) {
    const auto copy = std::make_shared<char[]>(encoded.size());
    std::copy(encoded.begin(), encoded.end(), copy.get());
    const EncodedIdentifier chosen =
        visitEntries({copy.get(), encoded.size()}, [this](const EncodedEntry& entry, std::size_t behind) {
            if (entries.empty()) {
                entries.reserve(behind + 1);
            }
            entries.emplace_back(entry);
        });
    if (!chosen.bytes.empty()) {
        primary = Retained(stringFrom(chosen.text()));
    }
    bytes = copy;
}

} // namespace addressbook
