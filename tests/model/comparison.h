#pragma once

// Makes calls to the plug-in and to the model, and compares them call by call.

#include "tests/model/plugin_runner.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace model {

class Comparison {
  public:
    // Resets the plug-in to the state in which it is loaded, with an empty address book. [title] names the
    // test in reports.
    explicit Comparison(std::string title) : title_(std::move(title)) { resetPlugin(); }

    // Makes a call and compares the result, the error's number and text, and the plug-in's variables. When
    // anything differs, returns false and fails the test, with a list of all calls so far.
    bool make(const Function& function, const Arguments& arguments);
    // Compares the address book in memory, and the database, in the same way.
    bool books();
    bool databases();

    [[nodiscard]] const Model& model() const { return model_; }
    // Returns the result of the last call.
    [[nodiscard]] const std::string& answer() const { return answer_; }
    // Called with every identifier in a result.
    std::function<void(const std::string&)> learned;

  private:
    std::string compare(Expected& expected, const Answered& answered);
    [[nodiscard]] std::string line(const Function& function, const Arguments& arguments) const;
    bool report(const std::string& problem);

    std::string title_;
    Model model_;
    std::string answer_;
    std::vector<std::string> lines_;
    std::map<std::string, std::string> names_; // names of identifiers in printed calculations
};

} // namespace model
