#pragma once

// The entries of a multi-value as objects. What is read from an address book stays bytes until somebody asks
// for it, part by part: most lists are read for one thing only.

#include "frameworks/AddressBook/store/record_codec.h"

#import <Foundation/Foundation.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// An object that is retained while this lives.
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

// An object, or its copy when it can be copied.
Retained copied(id object);

// One entry; it never changes, so that copies of a list share its objects.
class ListEntry {
  public:
    ListEntry(id value, NSString* label, NSString* identifier);
    // One whose parts are made of bytes, which must outlive it.
    ListEntry(const EncodedEntry& encoded) : encoded_(encoded) {}

    // Whether this is the entry's identifier, which is given as an object, as text and, where it can be,
    // packed.
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
    // The list with these bytes, which it copies. Throws DamagedRecord.
    explicit ListEntries(std::string_view encoded);

    std::shared_ptr<const std::string> bytes; // what the entries were read from, if any
    std::vector<ListEntry> entries;
    Retained primary; // the identifier that was chosen, nil when none was
};

} // namespace addressbook
