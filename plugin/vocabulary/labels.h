#pragma once

#import <AddressBook/AddressBook.h>
#include <span>

namespace koru {

// A label as users write it and as the address book stores it: one of the framework's constants, given by its
// address since its value is known only once the framework is loaded, or a text of its own.
struct Label {
    NSString* word; // lower case
    NSString* const* constant = nullptr;
    NSString* text = nil;

    [[nodiscard]] NSString* stored() const { return constant != nullptr ? *constant : text; }
};

// Return the framework's labels but for instant messaging; those for instant messaging; those that the
// synchronisation with an Exchange server writes.
[[nodiscard]] std::span<const Label> frameworkLabels();
[[nodiscard]] std::span<const Label> messagingLabels();
[[nodiscard]] std::span<const Label> exchangeLabels();

// Returns the label to store for a text: a word's (StringToLabel), any other text as it stands. nil for nil.
[[nodiscard]] NSString* labelToStore(NSString* text);

} // namespace koru

// Returns the label to store for a word, in any letter case; nil when the word is none of the tables', and
// for nil. The caller then stores the word itself.
[[nodiscard]] NSString* StringToLabel(NSString* text);

// Returns the word for a stored label; nil when the label is none of the tables', and for nil. The caller
// then shows the label itself.
[[nodiscard]] NSString* LabelToString(NSString* label);
