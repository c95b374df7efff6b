#include "tools/addressbook/explain.h"

#include "frameworks/AddressBook/store/explain.h"
#include "tools/addressbook/condition.h"

#include <array>

namespace addressbook::tool {
namespace {

struct PlanText {
    Plan plan;
    const char* text;
};
constexpr std::array kPlans{
    PlanText{Plan::nothing, "no look-up, nothing can match"},
    PlanText{Plan::uid, "look-up of the unique id"},
    PlanText{Plan::exact, "exact look-up in the value index"},
    PlanText{Plan::prefix, "range of the value index (prefix)"},
    PlanText{Plan::trigram, "trigram index of texts"},
    PlanText{Plan::range, "range of the value index"},
    PlanText{Plan::interval, "range of the value index (interval)"},
    PlanText{Plan::scan, "scan of the values of the property"},
    PlanText{Plan::everyUid, "scan of all unique ids"},
};

constexpr bool inOrder() {
    for (std::size_t i = 0; i < kPlans.size(); ++i)
        if (static_cast<std::size_t>(kPlans[i].plan) != i)
            return false;
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
    if (const auto* condition = std::get_if<Condition>(&query.node))
        return conditionText(*condition);
    return std::get<Query::Compound>(query.node).join == Query::Join::all ? "all of these" : "any of these";
}

std::string answer(const SearchStep& step) {
    if (step.way == SearchStep::Way::skipped)
        return "not looked up, nothing was left";
    std::string text;
    if (step.way == SearchStep::Way::oneByOne)
        text = "what was left, record by record";
    else if (std::holds_alternative<Condition>(step.query->node))
        text = kPlans[static_cast<std::size_t>(step.plan)].text +
               number(step.indexRows, "index row", "index rows");
    else
        text = "searched in this order";
    if (step.records > 0)
        text += number(step.records, "record read", "records read");
    if (step.everyone > 0)
        text += "; taken away from all " + std::to_string(step.everyone);
    return text + number(step.hits, "hit", "hits") + milliseconds(step.time);
}

void write(const SearchStep& step, const std::string& indent, const std::string& mark, Output& output) {
    const std::string below = indent + std::string(mark.empty() ? 2 : mark.size(), ' ');
    output.write(indent + mark + heading(*step.query) + '\n' + below + answer(step) + '\n');
    for (std::size_t i = 0; i < step.parts.size(); ++i)
        write(step.parts[i], below, std::to_string(i + 1) + ". ", output);
}

} // namespace

void explainSearch(const Store& store, const Query& query, Date now, Output& output) {
    write(store.explain(query, now), "", "", output);
}

} // namespace addressbook::tool
