#pragma once

// The entries of a multi-value as objects. Entries read from an address book stay bytes until a part of them
// is asked for: most lists are read for one part only.

#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

#import <Foundation/Foundation.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// What boost::intrusive_ptr calls to hold an object.
inline void intrusive_ptr_add_ref(id object) {
    [object retain];
}
inline void intrusive_ptr_release(id object) {
    [object release];
}

namespace addressbook {

// Retains an object while it lives.
using Retained = boost::intrusive_ptr<std::remove_pointer_t<id>>;

// Returns a copy of the object when it can be copied, else the object itself.
Retained copied(id object);

// One entry: immutable, so that copies of a list share its objects.
class ListEntry {
  public:
    ListEntry(id value, NSString* label, NSString* identifier);
    // Makes an entry whose parts are decoded when they are asked for; the bytes must outlive it.
    ListEntry(const EncodedEntry& encoded) : encoded_(encoded) {}

    // An identifier to look for, as an object, as text and as a list that was stored has it: each made once for
    // all entries that it is compared with.
    struct Sought {
        explicit Sought(NSString* identifier);
        NSString* object;
        std::string text;
        StoredUid stored;
    };
    bool isNamed(const Sought& sought) const;

    id value() const;
    NSString* label() const;
    NSString* identifier() const;

  private:
    EncodedEntry encoded_;
    mutable Retained value_, label_, identifier_; // nil until asked for
};

struct ListEntries {
    ListEntries() = default;
    // Decodes a list from these bytes, which it copies. Throws DamagedRecord.
    explicit ListEntries(std::string_view encoded);

    std::shared_ptr<const char[]> bytes; // what the entries were read from, if any
    std::vector<ListEntry> entries;
    Retained primary; // the identifier that was chosen, nil when none was
};

} // namespace addressbook
