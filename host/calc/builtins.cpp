#include "host/calc/builtins.h"

#include "host/calc/external_function.h"
#include "host/calc/function_groups.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

namespace {

// The rows of all groups by folded name.
class Index {
  public:
    Index() {
        for (const auto group : {logicFunctions(), textFunctions(), listFunctions(), numberFunctions(),
                                 dateFunctions(), containerFunctions()}) {
            rows_.insert(rows_.end(), group.begin(), group.end());
        }
        std::sort(rows_.begin(), rows_.end(),
                  [](const Builtin& a, const Builtin& b) { return foldName(a.name()) < foldName(b.name()); });
        for (const Builtin& row : rows_) {
            byName_.emplace(foldName(row.name()), &row);
        }
    }

    std::span<const Builtin> rows() const { return rows_; }

    const Builtin* find(std::u16string_view key) const {
        const auto found = byName_.find(std::u16string(key));
        return found == byName_.end() ? nullptr : found->second;
    }

  private:
    std::vector<Builtin> rows_;
    std::unordered_map<std::u16string, const Builtin*> byName_;
};

const Index& index() {
    static const Index kIndex;
    return kIndex;
}

} // namespace

std::span<const Builtin> builtins() {
    return index().rows();
}

const Builtin* findBuiltin(std::u16string_view key) {
    return index().find(key);
}

const GetRow* findGet(std::u16string_view key) {
    const auto rows = getRows();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const GetRow& row) { return foldName(row.name) == key; });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace host
