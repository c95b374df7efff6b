#include "tools/addressbook/explain.h"

#include "frameworks/AddressBook/store/explain.h"
#include "tools/addressbook/condition.h"

#include <array>

namespace addressbook::tool {
namespace {

struct PathText {
    AccessPath path;
    const char* text;
};
constexpr std::array kPaths{
    PathText{AccessPath::nothing, "no look-up, nothing can match"},
    PathText{AccessPath::uid, "look-up of the unique id"},
    PathText{AccessPath::exact, "exact look-up in the value index"},
    PathText{AccessPath::prefix, "range of the value index (prefix)"},
    PathText{AccessPath::ending, "range of the value index (ending)"},
    PathText{AccessPath::trigram, "trigram index of texts"},
    PathText{AccessPath::range, "range of the value index"},
    PathText{AccessPath::interval, "range of the value index (interval)"},
    PathText{AccessPath::scan, "scan of the values of the property"},
    PathText{AccessPath::everyUid, "scan of all unique ids"},
};

constexpr bool inOrder() {
    for (std::size_t i = 0; i < kPaths.size(); ++i) {
        if (static_cast<std::size_t>(kPaths[i].path) != i) {
            return false;
        }
    }
    return true;
}
static_assert(inOrder());

std::string number(std::int64_t count, const char* one, const char* several) {
    return "; " + std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string milliseconds(std::chrono::nanoseconds time) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "; %.3f ms",
                  std::chrono::duration<double, std::milli>(time).count());
    return text.data();
}

std::string heading(const Query& query) {
    if (const auto* condition = std::get_if<Condition>(&query.node)) {
        return conditionText(*condition);
    }
    return std::get<Query::Compound>(query.node).join == Query::Join::all ? "all of these" : "any of these";
}

std::string answer(const SearchStep& step) {
    if (step.execution == SearchStep::Execution::skipped) {
        return "not looked up, nothing was left";
    }
    std::string text;
    if (step.execution == SearchStep::Execution::verified) {
        text = "what was left, record by record";
    } else if (std::holds_alternative<Condition>(step.query->node)) {
        text = kPaths[static_cast<std::size_t>(step.path)].text +
               number(step.indexRows, "index row", "index rows");
    } else {
        text = "searched in this order";
    }
    if (step.records > 0) {
        text += number(step.records, "record read", "records read");
    }
    if (step.everyone > 0) {
        text += "; taken away from all " + std::to_string(step.everyone);
    }
    return text + number(step.hits, "hit", "hits") + milliseconds(step.time);
}

void write(const SearchStep& step, const std::string& indent, const std::string& mark, Output& output) {
    const std::string below = indent + std::string(mark.empty() ? 2 : mark.size(), ' ');
    output.write(indent + mark + heading(*step.query) + '\n' + below + answer(step) + '\n');
    for (std::size_t i = 0; i < step.parts.size(); ++i) {
        write(step.parts[i], below, std::to_string(i + 1) + ". ", output);
    }
}

} // namespace

void explainSearch(const Store& store, const Query& query, Date now, Output& output) {
    write(store.explain(query, now), "", "", output);
}

} // namespace addressbook::tool
