#include "host/loader/step_definition.h"

#include "host/script/step_parameter.h"
#include "host/values/text.h"

#include <algorithm>
#include <charconv>
#include <libxml/parser.h>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace host {

namespace {

using Kind = StepParameter::Kind;

// The largest ID of a parameter. A larger one is taken for a mistake.
constexpr int kMaxIndex = 255;

template <class Meaning>
struct Word {
    std::string_view word;
    Meaning meaning;
};
constexpr Word<Kind> kKinds[] = {
    {"calc", Kind::calculation}, {"bool", Kind::flag}, {"list", Kind::choice}, {"target", Kind::target}};
constexpr Word<ValueType> kTypes[] = {
    {"text", ValueType::text}, {"number", ValueType::number},       {"date", ValueType::date},
    {"time", ValueType::time}, {"timestamp", ValueType::timestamp}, {"container", ValueType::container}};
constexpr Word<int> kFlags[] = {{"true", 1}, {"1", 1}, {"false", 0}, {"0", 0}};

std::string lower(const std::string& text) {
    return toUtf8(foldCase(fromUtf8(text)));
}

// Returns the meaning of a word in any letter case. Throws DefinitionError, with all words, for another text.
template <class Meaning, size_t size>
Meaning meaningOf(const Word<Meaning> (&words)[size], const std::string& text, const char* attribute) {
    std::string known;
    for (const auto& [word, meaning] : words) {
        if (lower(text) == word) {
            return meaning;
        }
        known += (known.empty() ? "" : ", ") + std::string(word);
    }
    throw DefinitionError(std::string(attribute) + " is \"" + text + "\"; expected one of " + known);
}

std::string owned(xmlChar* text) {
    const std::unique_ptr<xmlChar, decltype(xmlFree)> owner(text, xmlFree);
    return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

const xmlChar* xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

// Returns an attribute; empty when there is none.
std::string attribute(const xmlNode* node, const char* name) {
    return owned(xmlGetProp(node, xml(name)));
}

std::optional<int> number(const xmlNode* node, const char* name, int most) {
    const std::string text = attribute(node, name);
    if (text.empty()) {
        return std::nullopt;
    }
    int value = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > most) {
        throw DefinitionError(std::string(name) + " is \"" + text + "\"; expected a number from 0 to " +
                              std::to_string(most));
    }
    return value;
}

template <class Work>
void forEachChild(const xmlNode* node, const char* name, Work work) {
    for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && xmlStrEqual(child->name, xml(name)) != 0) {
            work(child);
        }
    }
}

// Returns a parameter's label as scripts write it: with single spaces and without a colon at its end.
std::u16string labelOf(const xmlNode* node) {
    std::u16string label = normalName(fromUtf8(attribute(node, "Label")));
    while (label.ends_with(u':') || label.ends_with(u' ')) {
        label.pop_back();
    }
    return label;
}

void readChoices(const xmlNode* node, StepParameter& parameter) {
    int next = 0;
    forEachChild(node, "Value", [&](const xmlNode* value) {
        const int id = number(value, "ID", std::numeric_limits<int>::max() - 1).value_or(next);
        parameter.choices.push_back({normalName(fromUtf8(owned(xmlNodeGetContent(value)))), id});
        next = id + 1;
    });
    if (parameter.choices.empty()) {
        throw DefinitionError("a parameter of the type list has no Value");
    }
    parameter.standard = number(node, "Default", std::numeric_limits<int>::max() - 1)
                             .value_or(parameter.choices.front().value);
}

StepParameter readParameter(const xmlNode* node, int next) {
    StepParameter parameter;
    parameter.kind = meaningOf(kKinds, attribute(node, "Type"), "Type");
    parameter.index = static_cast<size_t>(number(node, "ID", kMaxIndex).value_or(next));
    parameter.label = labelOf(node);
    if (parameter.kind == Kind::choice) {
        readChoices(node, parameter);
    } else if (parameter.kind == Kind::flag && !attribute(node, "Default").empty()) {
        parameter.standard = meaningOf(kFlags, attribute(node, "Default"), "Default");
    } else if (parameter.kind == Kind::calculation && !attribute(node, "DataType").empty()) {
        parameter.type = meaningOf(kTypes, attribute(node, "DataType"), "DataType");
    }
    return parameter;
}

void add(std::vector<StepParameter>& parameters, StepParameter parameter) {
    for (const StepParameter& other : parameters) {
        if (other.index == parameter.index) {
            throw DefinitionError("two parameters have the ID " + std::to_string(parameter.index));
        }
        if (!parameter.label.empty() && foldName(other.label) == foldName(parameter.label)) {
            throw DefinitionError("two parameters have the label " + toUtf8(parameter.label));
        }
        if (other.kind == Kind::target && parameter.kind == Kind::target) {
            throw DefinitionError("two parameters have the type target");
        }
    }
    parameters.push_back(std::move(parameter));
}

} // namespace

std::vector<StepParameter> parseStepDefinition(std::u16string_view text) {
    std::vector<StepParameter> parameters;
    if (normalName(text).empty()) {
        return parameters;
    }
    const std::string bytes = toUtf8(text);
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), "definition", "UTF-8",
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    if (document == nullptr) {
        const xmlError* error = xmlGetLastError();
        std::string reason = error == nullptr ? "it can not be read"
                                              : "line " + std::to_string(error->line) + ": " + error->message;
        reason.erase(reason.find_last_not_of("\r\n") + 1);
        throw DefinitionError(reason);
    }
    int next = 0;
    forEachChild(xmlDocGetRootElement(document.get()), "Parameter", [&](const xmlNode* node) {
        StepParameter parameter = readParameter(node, next);
        next = static_cast<int>(parameter.index) + 1;
        add(parameters, std::move(parameter));
    });
    return parameters;
}

} // namespace host
