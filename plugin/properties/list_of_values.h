#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// Writes into the host's result the groups that the current person or group belongs to ([what] is "groups"),
// or the people in the current group ("members"), by identifier ([field] is "UID") or name ("name"), in the
// framework's order and separated by carriage returns. The words may be in any letter case. Empty when there
// are none. Writes nothing when it fails the call: kInvalidParameterCount when both words are nil,
// kInvalidParameterValue for other words, and for the members of a person.
[[nodiscard]] Answer listOfValues(NSString* what, NSString* field, fmx::Data& result);

} // namespace koru
