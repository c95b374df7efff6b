// The functions that plug-ins register, as the calculation language sees them.
#pragma once

#include "host/values/value.h"

#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

class Session;

// What a call that failed inside the plug-in throws: the message says how, without the function's name.
class ExternalFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One registered function. Argument counts are checked by the caller, before call() runs.
class ExternalFunction {
  public:
    static constexpr int kAnyNumber = -1; // as `maxArguments`

    ExternalFunction(std::u16string name, std::u16string prototype, int minArguments, int maxArguments)
        : name_(std::move(name)), prototype_(std::move(prototype)), minArguments_(minArguments),
          maxArguments_(maxArguments) {}
    virtual ~ExternalFunction() = default;
    ExternalFunction(const ExternalFunction&) = delete;
    ExternalFunction& operator=(const ExternalFunction&) = delete;

    // Runs the function. Throws ExternalFailure when it let an exception through.
    virtual Value call(Session& session, std::span<Value> arguments) = 0;

    const std::u16string& name() const { return name_; }
    const std::u16string& prototype() const { return prototype_; }
    int minArguments() const { return minArguments_; }
    int maxArguments() const { return maxArguments_; }
    bool accepts(size_t count) const {
        return static_cast<int>(count) >= minArguments_ &&
               (maxArguments_ == kAnyNumber || static_cast<int>(count) <= maxArguments_);
    }

    // False once the plug-in has unregistered it; whoever still holds it must not call it any more.
    bool registered() const { return registered_; }

  private:
    friend class FunctionRegistry;

    std::u16string name_;
    std::u16string prototype_;
    int minArguments_;
    int maxArguments_;
    bool registered_ = false;
};

using ExternalFunctionPtr = std::shared_ptr<ExternalFunction>;

// The registered functions by name; case does not count.
class FunctionRegistry {
  public:
    // Answers false, and changes nothing, when the name is taken.
    bool add(const ExternalFunctionPtr& function);
    void remove(const ExternalFunctionPtr& function);

    // [key] is a folded name; null when there is none.
    ExternalFunctionPtr find(std::u16string_view key) const;

    // All of them, ordered by their folded name.
    const std::map<std::u16string, ExternalFunctionPtr, std::less<>>& all() const { return functions_; }

  private:
    std::map<std::u16string, ExternalFunctionPtr, std::less<>> functions_;
};

// The form of a name that decides whether two names are the same.
std::u16string foldName(std::u16string_view name);

} // namespace host
