#include "host/calc/json_path.h"

#include "host/values/text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace host {

namespace {

constexpr const char* kBadPath = "Incorrect key, index, or path";
constexpr size_t kMaxIndex = 10'000'000; // padding an array further could exhaust memory

[[noreturn]] void fail() {
    throw JsonError(kBadPath);
}

std::optional<size_t> indexIn(std::string_view digits) {
    size_t index = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    const bool whole = !digits.empty() && error == std::errc() && end == digits.data() + digits.size();
    return whole ? std::optional(index) : std::nullopt;
}

// Reads the step in brackets. [rest] begins after the opening bracket, and is moved past the closing one.
JsonStep bracketStep(std::string_view& rest) {
    const char quote = rest.empty() ? '\0' : rest.front();
    if (quote == '\'' || quote == '"') {
        const size_t close = rest.find(std::string{quote, ']'}, 1);
        if (close == std::string_view::npos) {
            fail();
        }
        JsonStep step{JsonStep::Kind::key, std::string(rest.substr(1, close - 1)), 0};
        rest.remove_prefix(close + 2);
        return step;
    }
    const size_t close = rest.find(']');
    if (close == std::string_view::npos) {
        fail();
    }
    std::string_view inside = rest.substr(0, close);
    rest.remove_prefix(close + 1);
    while (inside.starts_with(' ')) {
        inside.remove_prefix(1);
    }
    while (inside.ends_with(' ')) {
        inside.remove_suffix(1);
    }
    if (inside == ":") {
        return {JsonStep::Kind::last, {}, 0};
    }
    if (inside == "+") {
        return {JsonStep::Kind::append, {}, 0};
    }
    const auto index = indexIn(inside);
    if (!index) {
        fail();
    }
    return {JsonStep::Kind::index, {}, *index};
}

// Returns the place in an array that a step means; nothing for a key that is not made of digits.
std::optional<size_t> placeIn(const Json& array, const JsonStep& step) {
    switch (step.kind) {
    case JsonStep::Kind::index:
        return step.index;
    case JsonStep::Kind::last:
        return array.empty() ? 0 : array.size() - 1;
    case JsonStep::Kind::append:
        return array.size();
    default:
        return indexIn(step.key);
    }
}

} // namespace

std::vector<JsonStep> jsonPath(const Value& path) {
    std::vector<JsonStep> steps;
    const std::string text = toUtf8(path.asText());
    std::string_view rest = text;
    while (!rest.empty()) {
        if (rest.front() == '[') {
            rest.remove_prefix(1);
            steps.push_back(bracketStep(rest));
            continue;
        }
        if (rest.front() == '.') {
            rest.remove_prefix(1);
            if (rest.empty() && steps.empty()) {
                return steps;
            }
            if (rest.starts_with('[')) {
                continue;
            }
        }
        const size_t end = std::min(rest.find_first_of(".["), rest.size());
        if (end == 0) {
            fail();
        }
        steps.push_back({JsonStep::Kind::key, std::string(rest.substr(0, end)), 0});
        rest.remove_prefix(end);
    }
    return steps;
}

const Json* findJson(const Json& root, const std::vector<JsonStep>& path) {
    const Json* at = &root;
    for (const JsonStep& step : path) {
        if (at->is_object() && !step.isPlace()) {
            const auto found = at->find(step.key);
            if (found == at->end()) {
                return nullptr;
            }
            at = &*found;
            continue;
        }
        if (!at->is_array()) {
            return nullptr;
        }
        const auto place = placeIn(*at, step);
        if (!place || *place >= at->size()) {
            return nullptr;
        }
        at = &(*at)[*place];
    }
    return at;
}

Json& makeJson(Json& root, const std::vector<JsonStep>& path) {
    Json* at = &root;
    for (const JsonStep& step : path) {
        if (at->is_null()) {
            *at = step.isPlace() ? Json::array() : Json::object();
        }
        if (at->is_object() && !step.isPlace()) {
            at = &(*at)[step.key];
            continue;
        }
        const auto place = at->is_array() ? placeIn(*at, step) : std::nullopt;
        if (!place || *place > kMaxIndex) {
            fail();
        }
        at = &(*at)[*place]; // also pads the array
    }
    return *at;
}

void removeJson(Json& root, const std::vector<JsonStep>& path) {
    if (path.empty()) {
        root = nullptr;
        return;
    }
    auto* parent = const_cast<Json*>(findJson(root, {path.begin(), path.end() - 1}));
    const JsonStep& step = path.back();
    if (parent == nullptr || !parent->is_structured()) {
        return;
    }
    if (parent->is_object()) {
        if (!step.isPlace()) {
            parent->erase(step.key);
        }
        return;
    }
    const auto place = placeIn(*parent, step);
    if (place && *place < parent->size()) {
        parent->erase(*place);
    }
}

} // namespace host
