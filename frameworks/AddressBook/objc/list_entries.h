#pragma once

// The entries of a multi-value as objects. Entries read from an address book stay bytes until a part of them
// is asked for: most lists are read for one part only.

#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

#import <Foundation/Foundation.h>
#include <atomic>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
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

// An object that is made when it is first asked for. Thread-safe, as lists share their entries.
class MadeOnce {
  public:
    MadeOnce() = default;
    explicit MadeOnce(id object) : object_([object retain]) {}
    MadeOnce(const MadeOnce& other) : MadeOnce(other.made()) {}
    MadeOnce(MadeOnce&& other) noexcept : object_(other.object_.exchange(nil)) {}
    MadeOnce& operator=(MadeOnce other) noexcept {
        other.object_ = object_.exchange(other.object_);
        return *this;
    }
    ~MadeOnce() { [made() release]; }

    // Return the object: nil as long as it is not made, and made by [make] unless it is.
    id made() const { return static_cast<id>(object_.load(std::memory_order_acquire)); }
    template <typename Make>
    id get(Make make) const {
        if (id object = made(); object != nil) {
            return object;
        }
        id object = [make() retain];
        void* before = nil;
        if (object_.compare_exchange_strong(before, object)) {
            return object;
        }
        [object release]; // another thread was first
        return static_cast<id>(before);
    }

  private:
    mutable std::atomic<void*> object_{nil}; // retained; clang has no atomic id
};

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
    MadeOnce value_, label_, identifier_;
};

// The entries of one list, or of several as long as none of them is changed.
struct ListEntries : boost::intrusive_ref_counter<ListEntries> {
    ListEntries() = default;
    // Decodes a list from these bytes, which it copies. Throws DamagedRecord.
    explicit ListEntries(std::string_view encoded);

    std::shared_ptr<const char[]> bytes; // what the entries were read from, if any
    std::vector<ListEntry> entries;
    Retained primary; // the identifier that was chosen, nil when none was
};
using ListEntriesPtr = boost::intrusive_ptr<ListEntries>;

} // namespace addressbook
