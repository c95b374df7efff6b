#pragma once

// The tables of functions by category, and what the functions share. A function may throw NumberError for a
// computation without a result, which the evaluator makes "?".

#include "host/calc/builtin.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace host {

using Arguments = std::span<const Value>;
using Nodes = std::span<const Node>;

// A table of functions of a category; a large category has several tables.
struct FunctionGroup {
    std::string_view category;
    std::span<const Builtin> rows;
};

// Return all tables, in the order in which categories are listed.
std::span<const FunctionGroup> functionGroups();
std::span<const std::span<const GetRow>> getGroups();

std::span<const Builtin> textFunctions();
std::span<const Builtin> textWordFunctions();
std::span<const Builtin> textListFunctions();
std::span<const Builtin> textSortFunctions();
std::span<const Builtin> conversionFunctions();
std::span<const Builtin> styledTextFunctions();
std::span<const Builtin> textFormattingFunctions();
std::span<const Builtin> numberFunctions();
std::span<const Builtin> trigonometricFunctions();
std::span<const Builtin> financialFunctions();
std::span<const Builtin> aggregateFunctions();
std::span<const Builtin> repeatingFunctions();
std::span<const Builtin> dateFunctions();
std::span<const Builtin> timeFunctions();
std::span<const Builtin> logicalFunctions();
std::span<const Builtin> jsonFunctions();
std::span<const Builtin> containerFunctions();
std::span<const Builtin> encodingFunctions();
std::span<const Builtin> cryptFunctions();
std::span<const Builtin> japaneseFunctions();
std::span<const Builtin> designFunctions();
std::span<const Builtin> aiFunctions();
std::span<const Builtin> mobileFunctions();
std::span<const Builtin> miscellaneousFunctions();

std::span<const GetRow> clockGets();
std::span<const GetRow> sessionGets();
std::span<const GetRow> systemGets();
std::span<const GetRow> absentGets();

// Whether no argument is invalid ("?").
bool areValid(Arguments in);

// Returns the whole part of a value's number, or the nearest limit of 64 bits; 0 when it has none.
int64_t integer(const Value& value);

// Returns integer() as a count: 0 for negative numbers.
size_t count(const Value& value);

Value integerValue(int64_t number);

} // namespace host
