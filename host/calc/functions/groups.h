#pragma once

// The tables that the list of functions is put together from, and what their functions share. A function
// whose computation has no answer may throw NumberError: the evaluator makes it "?".

#include "host/calc/builtin.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace host {

using Arguments = std::span<const Value>;
using Nodes = std::span<const Node>;

// Some functions of a category; a large category has several.
struct FunctionGroup {
    std::string_view category;
    std::span<const Builtin> rows;
};

// Every table, in the order in which categories are listed.
std::span<const FunctionGroup> functionGroups();
std::span<const std::span<const GetRow>> getGroups();

std::span<const Builtin> textFunctions();
std::span<const Builtin> textWordFunctions();
std::span<const Builtin> textListFunctions();
std::span<const Builtin> textSortFunctions();
std::span<const Builtin> conversionFunctions();
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

// The whole part of a value's number; beyond 64 bits the nearest number that fits.
int64_t integer(const Value& value);

// The whole part as a count: nothing below 0.
size_t count(const Value& value);

Value integerValue(int64_t number);

} // namespace host
