#include "host/calc/lists.h"

namespace host {

std::vector<std::u16string_view> listValues(std::u16string_view list) {
    std::vector<std::u16string_view> values;
    size_t start = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        if (list[i] != u'\r' && list[i] != u'\n') {
            continue;
        }
        values.push_back(list.substr(start, i - start));
        i += list[i] == u'\r' && i + 1 < list.size() && list[i + 1] == u'\n' ? 1 : 0;
        start = i + 1;
    }
    if (start < list.size()) {
        values.push_back(list.substr(start));
    }
    return values;
}

} // namespace host
