#include "host/calc/builtin.h"

#include <algorithm>

namespace host {

Value Fixed::value() const {
    if (answer == u"?") {
        return Value::invalid();
    }
    const bool isNumber = std::all_of(answer.begin(), answer.end(),
                                      [](char16_t c) { return c == u'-' || (c >= u'0' && c <= u'9'); });
    return isNumber && !answer.empty() ? Value::number(Number::fromText(answer)) : Value::text(answer);
}

} // namespace host
