#include "host/editor/sheets.h"

#include "host/calc/builtins.h"
#include "host/calc/constants.h"
#include "host/script/own_steps.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

std::vector<Sheet> allSheets(const Vocabulary& known) {
    std::vector<Sheet> sheets;
    for (const Builtin& row : builtins()) {
        Sheet sheet{SheetKind::function,
                    toUtf8(row.name()),
                    {toUtf8(row.prototype)},
                    std::string(row.description),
                    std::string(row.category)};
        if (!row.listPrototype.empty()) {
            sheet.prototypes.push_back(toUtf8(row.listPrototype));
        }
        sheets.push_back(std::move(sheet));
    }
    for (const GetRow& row : getRows()) {
        const std::string name = toUtf8(row.name);
        sheets.push_back(
            {SheetKind::get, name, {"Get ( " + name + " )"}, std::string(row.description), "Get"});
    }
    for (const Constant& row : constants()) {
        const std::string name = toUtf8(row.name);
        sheets.push_back({SheetKind::constant, name, {name}, std::string(row.description), "Constants"});
    }
    for (const auto& [key, function] : known.functions.all()) {
        sheets.push_back(
            {SheetKind::function, toUtf8(function->name()), {toUtf8(function->prototype())}, "", ""});
    }
    for (const OwnStep& step : ownSteps()) {
        if (step.isSupported()) {
            sheets.push_back({SheetKind::step,
                              toUtf8(step.name()),
                              {toUtf8(step.row.prototype)},
                              std::string(step.row.description),
                              std::string(step.category)});
        }
    }
    for (const auto& [key, step] : known.steps.all()) {
        sheets.push_back({SheetKind::step,
                          toUtf8(step->name()),
                          {toUtf8(stepPrototype(step->name(), step->parameters()))},
                          "",
                          ""});
    }
    return sheets;
}

std::optional<Sheet> findSheet(std::string_view name, const Vocabulary& known) {
    const std::u16string key = foldName(fromUtf8(name));
    for (const Sheet& sheet : allSheets(known)) {
        if (foldName(fromUtf8(sheet.name)) == key) {
            return sheet;
        }
    }
    return std::nullopt;
}

std::vector<std::pair<size_t, size_t>> parameterPlaces(std::u16string_view prototype) {
    std::vector<std::pair<size_t, size_t>> places;
    for (size_t begin = prototype.find(u'('); begin < prototype.size();) {
        const size_t end = std::min(prototype.find_first_of(u";)", begin + 1), prototype.size());
        const size_t first = prototype.find_first_not_of(u" {;(", begin);
        const size_t last = prototype.find_last_not_of(u" {;)}", end);
        if (first < end && last != std::u16string::npos && last >= first) {
            places.emplace_back(first, last + 1);
        }
        begin = end < prototype.size() && prototype[end] == u';' ? end : prototype.size();
    }
    return places;
}

} // namespace host
