#pragma once

// What a script writes between the brackets of a step, of the language or of a plug-in.

#include "host/values/value.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct StepParameter {
    enum class Kind : uint8_t {
        calculation, // its result
        flag,        // On or Off: 1 or 0
        choice,      // one of several words: the word's number
        target,      // the variable that takes the result of the step
        word,        // an option that is given or not: its label alone
        script       // the name of a script, with or without its file
    };
    struct Choice {
        std::u16string word;
        int value;
    };

    Kind kind = Kind::calculation;
    size_t index = 0;                 // the place among the values that a plug-in gets
    std::u16string label;             // may be empty
    ValueType type = ValueType::text; // calculation: what its result is made for a plug-in
    std::vector<Choice> choices;      // choice: at least one
    int standard = 0;                 // flag, choice: the value when the script gives none
    bool isRequired = false;          // a script that leaves it out has a mistake
    bool needsLabel = false;          // only its label tells it from others
    std::u16string olderLabel = {};   // what older scripts write instead
};

// The parameters of a prototype, which reads as stepPrototype() writes it, with optional ones in braces:
// "Name [ {Option} ; $variable ; {Older|Label: calculation} ; {Label: A/B} ]". Choices count from 0.
std::vector<StepParameter> prototypeParameters(std::u16string_view prototype);

// The name that a prototype begins with.
std::u16string_view prototypeName(std::u16string_view prototype);

// How scripts write a step: "Name [ Label: calculation ; Label: On/Off ; Label: Red/Green ; $variable ]".
std::u16string stepPrototype(std::u16string_view name, const std::vector<StepParameter>& parameters);

// White space within a line.
bool isSpace(char16_t c);

// The words of a name with single spaces between them.
std::u16string normalName(std::u16string_view text);

} // namespace host
