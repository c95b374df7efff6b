#pragma once

#import <AddressBook/AddressBook.h>
#include <span>

namespace koru {

// A label as users write it and as the address book stores it: one of the framework's constants, given by its
// address since its value is known only once the framework is loaded, or a text of the plug-in's own.
struct Label {
    NSString* word; // lower case
    NSString* const* constant = nullptr;
    NSString* text = nil;

    [[nodiscard]] NSString* stored() const { return constant != nullptr ? *constant : text; }
};

// Return the framework's labels except those for instant messaging, those for instant messaging, and those
// that the synchronisation with an Exchange server writes.
[[nodiscard]] std::span<const Label> frameworkLabels();
[[nodiscard]] std::span<const Label> messagingLabels();
[[nodiscard]] std::span<const Label> exchangeLabels();

// Returns the label to store for a text: that of a word (StringToLabel), else the text itself; nil for nil.
[[nodiscard]] NSString* labelToStore(NSString* text);

} // namespace koru

// Returns the label to store for a word, in any letter case; nil for nil and for a word that is in none of
// the tables, which the caller then stores as it stands.
[[nodiscard]] NSString* StringToLabel(NSString* text);

// Returns the word for a stored label; nil for nil and for a label that is in none of the tables, which the
// caller then shows as it stands.
[[nodiscard]] NSString* LabelToString(NSString* label);
