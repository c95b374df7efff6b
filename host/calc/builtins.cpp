#include "host/calc/builtins.h"

#include "host/calc/external_function.h"
#include "host/calc/functions/groups.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

namespace {

std::u16string_view nameOf(const Builtin& row) {
    return row.name();
}
std::u16string_view nameOf(const GetRow& row) {
    return row.name;
}

// The rows of several tables, by folded name.
template <class Row>
class Index {
  public:
    explicit Index(std::vector<Row> rows) : rows_(std::move(rows)) {
        std::sort(rows_.begin(), rows_.end(),
                  [](const Row& a, const Row& b) { return foldName(nameOf(a)) < foldName(nameOf(b)); });
        for (const Row& row : rows_) {
            byName_.emplace(foldName(nameOf(row)), &row);
        }
    }

    std::span<const Row> rows() const { return rows_; }

    const Row* find(std::u16string_view key) const {
        const auto found = byName_.find(std::u16string(key));
        return found == byName_.end() ? nullptr : found->second;
    }

  private:
    std::vector<Row> rows_;
    std::unordered_map<std::u16string, const Row*> byName_;
};

const Index<Builtin>& functionIndex() {
    static const Index<Builtin> kIndex([] {
        std::vector<Builtin> all;
        for (const FunctionGroup& group : functionGroups()) {
            for (Builtin row : group.rows) {
                row.category = group.category;
                all.push_back(row);
            }
        }
        return all;
    }());
    return kIndex;
}

const Index<GetRow>& getIndex() {
    static const Index<GetRow> kIndex([] {
        std::vector<GetRow> all;
        for (const auto& group : getGroups()) {
            all.insert(all.end(), group.begin(), group.end());
        }
        return all;
    }());
    return kIndex;
}

} // namespace

std::span<const Builtin> builtins() {
    return functionIndex().rows();
}

std::span<const GetRow> getRows() {
    return getIndex().rows();
}

const Builtin* findBuiltin(std::u16string_view key) {
    return functionIndex().find(key);
}

const GetRow* findGet(std::u16string_view key) {
    return getIndex().find(key);
}

} // namespace host
