#include "frameworks/AddressBook/objc/list_entries.h"

#include "frameworks/AddressBook/objc/bridge.h"

#include <algorithm>

namespace addressbook {
namespace {

// Returns the object in [held], which [make] makes at the first call.
template <typename Make>
id madeOnce(Retained& held, Make make) {
    if (held.get() == nil) {
        held = Retained(make());
    }
    return held.get();
}

} // namespace

Retained copied(id object) {
    return Retained([object respondsToSelector:@selector(copyWithZone:)] ? [[object copy] autorelease]
                                                                         : object);
}

ListEntry::ListEntry(id value, NSString* label, NSString* identifier)
    : value_(copied(value)), label_(copied(label)), identifier_(copied(identifier)) {}

ListEntry::Sought::Sought(NSString* identifier)
    : object(identifier), text(textFrom(identifier)), stored(text) {}

bool ListEntry::isNamed(const Sought& sought) const {
    if (identifier_.get() != nil) {
        return [identifier_.get() isEqualToString:sought.object];
    }
    const EncodedIdentifier& mine = encoded_.identifier;
    return mine.packed ? sought.stored.isPacked() && mine.bytes == sought.stored.bytes()
                       : mine.bytes == sought.text;
}

id ListEntry::value() const {
    return madeOnce(value_, [this] { return objectOrNull(objectFromEncoded(encoded_.value)); });
}

NSString* ListEntry::label() const {
    return madeOnce(label_, [this] { return wordFrom(encoded_.label); });
}

NSString* ListEntry::identifier() const {
    return madeOnce(identifier_, [this] { return stringFrom(encoded_.identifier.text()); });
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
