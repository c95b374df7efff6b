#pragma once

// A parsed calculation: a tree of nodes that the evaluator walks. Parsed once, evaluated as often as wanted;
// names are already looked up, so an evaluation compares no function name.

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

// A number, a text, a paragraph mark.
struct Literal {
    Value value;
};

// A $local or a $$global variable; the key is the folded name with its dollar signs.
struct Variable {
    std::u16string key;
    NodePtr repetition; // $x[n]; null for the first
};

// A name that a Let or While of the same calculation defined: its place in the frame.
struct Slot {
    uint32_t index;
};

struct Unary {
    Operator op; // subtract, add or logicalNot
    NodePtr operand;
};

// Operators of one level, from left to right: first op value op value ... A chain, not a pair, so that a sum
// of a hundred thousand terms needs no deeper a tree than one of two.
struct Chain {
    struct Link;
    NodePtr first;
    std::vector<Link> rest;
};

struct BuiltinCall {
    const Builtin* function;
    std::vector<Node> arguments;
};

// A call of a registered function. [function] is looked up again by name when it has been unregistered since.
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

// What parsing answers: the tree, and the text that it came from.
struct Calculation {
    SourcePtr source;
    Node root;
    uint32_t slots = 0; // how many names its frame holds
};

} // namespace host
