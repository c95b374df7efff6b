#pragma once

// A property as callers name it, and what is known of it without asking an address book. Names are nearly
// always constants of the compiler, the framework's own or the caller's, which come again and again: each is
// looked up in the table of built-in properties once.

#include "frameworks/AddressBook/values/property.h"

#import <Foundation/Foundation.h>
#include <string>
#include <string_view>

namespace addressbook {

class PropertyName {
  public:
    // [name] must not be nil. Thread-safe.
    explicit PropertyName(NSString* name);
    PropertyName(const PropertyName&) = delete;
    PropertyName& operator=(const PropertyName&) = delete;

    // Returns the name, in memory that lives as long as this object.
    std::string_view text() const { return text_; }
    // Returns the type of a built-in property that is public, 0 for any other (publicType()).
    int publicType(Kind kind) const;

    // The name of a constant, and its types for people and groups.
    struct Known {
        std::string text;
        int types[2];
    };

  private:
    const Known* known_ = nullptr;
    std::string copy_; // of the name, when it is not known
    std::string_view text_;
};

} // namespace addressbook
