#pragma once

// Calls made of the plug-in and of the model, and compared one by one.

#include "tests/model/plugin_runner.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace model {

class Comparison {
  public:
    // Begins with the plug-in just loaded and an empty address book. The title says in reports which test it
    // is.
    explicit Comparison(std::string title) : title_(std::move(title)) { resetPlugin(); }

    // Makes a call and compares the answer, the error's number and text, and the plug-in's variables. False,
    // and a failure of the test with all calls so far, when something differs.
    bool make(const Function& function, const Arguments& arguments);
    // The same for what is in the address book, and for the database.
    bool books();
    bool databases();

    [[nodiscard]] const Model& model() const { return model_; }
    // The last call's answer.
    [[nodiscard]] const std::string& answer() const { return answer_; }
    // Called with every identifier that an answer has told.
    std::function<void(const std::string&)> learned;

  private:
    std::string compare(Expected& expected, const Answered& answered);
    [[nodiscard]] std::string line(const Function& function, const Arguments& arguments) const;
    bool report(const std::string& problem);

    std::string title_;
    Model model_;
    std::string answer_;
    std::vector<std::string> lines_;
    std::map<std::string, std::string> names_; // identifiers, as the printed calculations call them
};

} // namespace model
