#pragma once

#include "tests/plugin/support.h"

#import "plugin/support/retained.h"
#include <map>
#include <vector>

// A call of a function with arguments that let it succeed, and the calls that must come before it. Words in <> stand
// for identifiers and for a picture.
struct GoodCall {
    HandlerFunction* handler;
    std::vector<std::string> arguments;
    std::vector<GoodCall> before = {};

    // Returns the function's id in the function table.
    [[nodiscard]] short id() const;
};

// A test that makes a good call of every function, again and again, on the same small address book: a person
// with a picture, entries and a custom property, in a group that has a subgroup.
class GoodCallsTest : public PluginTest {
  protected:
    void SetUp() override;

    // Returns a good call of each function that is registered; of some of them several.
    [[nodiscard]] static std::vector<GoodCall> calls();

    // Makes address book and plug-in what the calls expect, whatever was done before, and makes the calls
    // that come before the given one.
    void prepare(const GoodCall& good);

    // Returns the arguments of a call.
    [[nodiscard]] OwnedDataVect argumentsOf(const GoodCall& good) const;

    // Returns all that the plug-in keeps from one call to the next, objects by their addresses.
    [[nodiscard]] static std::string kept();

    // Returns the number of living Objective-C objects of each class, with what the plug-in keeps released.
    using Objects = std::map<std::string, int>;
    [[nodiscard]] static Objects livingObjects();

  private:
    void fillBook();
    [[nodiscard]] bool isFilled() const;

    [[nodiscard]] ABRecord* record(const std::string& name) const;

    std::map<std::string, std::string>
        identifiers_; // of records and entries, by the words that stand for them
    Retained<ABMultiValue> phones_, dates_, addresses_;
};
