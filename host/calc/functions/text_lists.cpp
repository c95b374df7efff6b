#include "host/calc/functions/groups.h"
#include "host/calc/lists.h"
#include "host/calc/styled_text.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

Value getValue(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const auto values = listValues(text.text());
    const int64_t wanted = integer(in[1]);
    return wanted >= 1 && static_cast<size_t>(wanted) <= values.size()
               ? text.slice(values[static_cast<size_t>(wanted) - 1])
               : Value();
}

Value valueCount(Session& /*session*/, Arguments in) {
    return integerValue(static_cast<int64_t>(listValues(StyledText(in[0]).text()).size()));
}

// Returns the values of a list from [start] (counted from 0) up to but without [end], each followed by a
// carriage return.
Value part(const Value& from, size_t start, size_t end) {
    const StyledText text(from);
    auto values = listValues(text.text());
    values.resize(std::min(values.size(), end));
    values.erase(values.begin(),
                 values.begin() + static_cast<std::ptrdiff_t>(std::min(values.size(), start)));
    return terminatedList(text, values);
}

Value leftValues(Session& /*session*/, Arguments in) {
    return part(in[0], 0, count(in[1]));
}

Value rightValues(Session& /*session*/, Arguments in) {
    const size_t size = listValues(StyledText(in[0]).text()).size();
    return part(in[0], size - std::min(size, count(in[1])), size);
}

Value middleValues(Session& /*session*/, Arguments in) {
    const int64_t start = std::max<int64_t>(integer(in[1]), 1) - 1;
    const size_t wanted = count(in[2]);
    const auto from = static_cast<size_t>(start);
    return part(in[0], from, wanted > SIZE_MAX - from ? SIZE_MAX : from + wanted);
}

// Returns the values of a list that are also in another one, without regard to letter case.
Value filterValues(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const std::u16string allowedText = foldCase(in[1].asText());
    auto allowed = listValues(allowedText);
    std::sort(allowed.begin(), allowed.end());
    std::vector<std::u16string_view> kept;
    for (const std::u16string_view value : listValues(text.text())) {
        if (std::binary_search(allowed.begin(), allowed.end(), std::u16string_view(foldCase(value)))) {
            kept.push_back(value);
        }
    }
    return terminatedList(text, kept);
}

constexpr Builtin kFunctions[] = {
    {u"FilterValues ( textToFilter ; filterValues )", filterValues,
     "Returns the values of a list that also stand in another."},
    {u"GetValue ( listOfValues ; valueNumber )", getValue, "Returns one value of a list."},
    {u"LeftValues ( text ; numberOfValues )", leftValues, "Returns the first values of a list."},
    {u"MiddleValues ( text ; startingValue ; numberOfValues )", middleValues,
     "Returns values from the middle of a list."},
    {u"RightValues ( text ; numberOfValues )", rightValues, "Returns the last values of a list."},
    {u"ValueCount ( text )", valueCount, "Counts the values of a list."},
};

} // namespace

std::span<const Builtin> textListFunctions() {
    return kFunctions;
}

} // namespace host
