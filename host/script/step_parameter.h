#pragma once

// The parameters of steps, both of the language and of plug-ins, and their prototypes.

#include "host/values/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct StepParameter {
    enum class Kind : uint8_t {
        calculation, // a calculation; the value is its result
        flag,        // On or Off; the value is 1 or 0
        choice,      // one of several words; the value is the word's number
        target,      // the variable that gets the step's result
        word,        // an option that is given or not, by its label alone
        script       // the name of a script, with or without its file
    };
    struct Choice {
        std::u16string word;
        int value;
    };

    Kind kind = Kind::calculation;
    size_t index = 0;                 // the index among the values that a plug-in gets
    std::u16string label;             // may be empty
    ValueType type = ValueType::text; // calculation: the type to which its result is converted for a plug-in
    std::vector<Choice> choices;      // choice: at least one
    int standard = 0;                 // flag, choice: the default value
    bool isRequired = false;          // leaving it out is an error
    bool needsLabel = false;          // it must be written with its label
    std::u16string olderLabel = {};   // the label in older scripts, which is accepted as well
};

// Returns the parameters of a prototype, which is in the form of stepPrototype(), with optional parameters in
// braces: "Name [ {Option} ; $variable ; {Older|Label: calculation} ; {Label: A/B} ]". Choices are numbered
// from 0.
std::vector<StepParameter> prototypeParameters(std::u16string_view prototype);

// Returns the name with which a prototype begins.
std::u16string_view prototypeName(std::u16string_view prototype);

// Returns how scripts write a step:
// "Name [ Label: calculation ; Label: On/Off ; Label: Red/Green ; $variable ]".
std::u16string stepPrototype(std::u16string_view name, const std::vector<StepParameter>& parameters);

// Whether a character is white space within a line.
bool isSpace(char16_t c);

// Returns the words of a name, separated by single spaces.
std::u16string normalName(std::u16string_view text);

} // namespace host
