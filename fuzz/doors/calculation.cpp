// The text of a calculation: evaluated, formatted, checked.

#include "fuzz/support/calculator.h"
#include "fuzz/support/formatting.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    host::Session session;
    fuzz::evaluate(session, text);
    fuzz::formatAndCheck(text, host::FileKind::calculation);
    return 0;
}
