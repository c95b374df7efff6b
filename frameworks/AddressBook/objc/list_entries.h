#pragma once

// The entries of a multi-value as objects. Entries read from an address book stay bytes until a part of them is
// asked for: most lists are read for one part only.

#include "frameworks/AddressBook/store/record_codec.h"

#import <Foundation/Foundation.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// Retains an object while it lives.
class Retained {
  public:
    Retained() = default;
    explicit Retained(id object) : object_([object retain]) {}
    Retained(const Retained& other) : Retained(other.object_) {}
    Retained(Retained&& other) noexcept : object_(other.object_) { other.object_ = nil; }
    Retained& operator=(Retained other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Retained() { [object_ release]; }
    id get() const { return object_; }

  private:
    id object_ = nil;
};

// Returns a copy of the object when it can be copied, else the object itself.
Retained copied(id object);

// One entry: immutable, so that copies of a list share its objects.
class ListEntry {
  public:
    ListEntry(id value, NSString* label, NSString* identifier);
    // Makes an entry whose parts are decoded when they are asked for; the bytes must outlive it.
    ListEntry(const EncodedEntry& encoded) : encoded_(encoded) {}

    // An identifier to look for, as an object, as text and, where it can be, packed: each made once for all
    // entries that it is compared with.
    struct Sought {
        explicit Sought(NSString* identifier);
        NSString* object;
        std::string text;
        std::optional<std::string> packed;
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

    std::shared_ptr<const std::string> bytes; // what the entries were read from, if any
    std::vector<ListEntry> entries;
    Retained primary; // the identifier that was chosen, nil when none was
};

} // namespace addressbook
