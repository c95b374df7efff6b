#pragma once

// A parsed calculation: a tree of nodes that the evaluator walks. It is parsed once and can be evaluated many
// times; names are looked up when parsing, so that evaluating compares no function names.

#include "host/calc/builtin.h"
#include "host/calc/external_function.h"
#include "host/calc/operators.h"
#include "host/calc/source.h"
#include "host/values/value.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace host {

struct Node;
using NodePtr = std::unique_ptr<Node>;

// A number, a text, or a paragraph mark.
struct Literal {
    Value value;
};

// A $local or a $$global variable; the key is the folded name with its dollar signs.
struct Variable {
    std::u16string key;
    NodePtr repetition;  // $x[n]; null for the first
    bool isLast = false; // as of a Slot
};

// A name that a Let or While of the calculation defines: its index among the evaluator's slots.
struct Slot {
    uint32_t index;
    bool isLast = false; // nothing reads the value behind this place, which may take it
};

struct Unary {
    Operator op; // subtract, add or logicalNot
    NodePtr operand;
};

// Operators of one level, from left to right: first op value op value ... A chain and not a tree of pairs, so
// that a sum of a hundred thousand terms is no deeper than one of two.
struct Chain {
    struct Link;
    NodePtr first;
    std::vector<Link> rest;
};

struct BuiltinCall {
    const Builtin* function;
    std::vector<Node> arguments;
};

// A call of a registered function. [function] is looked up again by name once it has been unregistered.
struct ExternalCall {
    std::u16string key;
    mutable ExternalFunctionPtr function;
    std::vector<Node> arguments;
};

// A bracketed argument: [ a ; b ].
struct Brackets {
    std::vector<Node> items;
};

struct Assignment;

struct Let {
    std::vector<Assignment> assignments;
    NodePtr result;
};

struct While {
    std::vector<Assignment> start;
    NodePtr condition;
    std::vector<Assignment> logic;
    NodePtr result;
};

// Get ( Something ).
struct Get {
    const GetRow* row;
};

using NodeVariant =
    std::variant<Literal, Variable, Slot, Unary, Chain, BuiltinCall, ExternalCall, Brackets, Let, While, Get>;

struct Node {
    size_t begin = 0; // the offset in the source that an error about this node names
    NodeVariant form;
};

struct Chain::Link {
    Operator op;
    Node operand;
};

struct Assignment {
    std::variant<Variable, Slot> target;
    Node value;
};

// The result of parsing: the tree, and the text that it was parsed from.
struct Calculation {
    SourcePtr source;
    Node root;
    uint32_t slots = 0; // the number of slots for names of Let and While
};

} // namespace host
