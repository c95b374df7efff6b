#include "host/script/own_steps.h"

#include "host/calc/registry.h"
#include "host/script/steps/categories.h"

#include <algorithm>
#include <map>

namespace host {

namespace {

struct Category {
    std::string_view name;
    std::span<const StepRow> rows;
};

std::vector<OwnStep> makeSteps() {
    const Category categories[] = {
        {"Control", controlSteps()},
        {"Variables", variableSteps()},
        {"Files", fileSteps()},
        {"Data files", dataFileSteps()},
        {"Miscellaneous", miscellaneousSteps()},
        {"Not here", refusedSteps()},
    };
    std::vector<OwnStep> result;
    for (const Category& category : categories) {
        for (const StepRow& row : category.rows) {
            result.push_back({row, category.name, foldName(prototypeName(row.prototype)),
                              prototypeParameters(row.prototype)});
        }
    }
    return result;
}

} // namespace

std::span<const OwnStep> ownSteps() {
    static const std::vector<OwnStep> steps = makeSteps();
    return steps;
}

const OwnStep* findOwnStep(std::u16string_view key) {
    static const auto byKey = [] {
        std::map<std::u16string_view, const OwnStep*> result;
        for (const OwnStep& step : ownSteps()) {
            result.emplace(step.key, &step);
        }
        return result;
    }();
    const auto found = byKey.find(key);
    return found == byKey.end() ? nullptr : found->second;
}

bool isStepName(std::u16string_view key) {
    const OwnStep* step = findOwnStep(key);
    return step != nullptr && step->isSupported();
}

} // namespace host
