#pragma once

// Random calls of every function. The arguments are mostly those of a typical solution; others are empty,
// wrong, of another type, of deleted records, or in odd letter case.

#include "tests/model/model.h"

#include <random>

namespace model {

struct Call {
    const Function* function;
    Arguments arguments;
};

class Generator {
  public:
    Generator(std::uint64_t seed, const Model& model) : random_(seed), model_(model) {}

    // Returns the next call, which depends on those before.
    Call next();
    // Returns a call of a function.
    Call callOf(const Function& function);
    // Returns the next of the calls that fill an address book to work on; none when it is filled.
    std::optional<Call> preparation();

    int number(int limit) { return static_cast<int>(random_() % static_cast<std::uint64_t>(limit)); }
    bool chance(int percent) { return number(100) < percent; }

    // Keeps an identifier for later arguments.
    void learn(const std::string& id) { ids_.push_back(id); }

    // --- For the table of arguments.

    std::string pick(std::initializer_list<const char*> texts);
    std::string odd(std::string word);
    std::string wrong();
    std::string typeWord();
    std::string property(bool list);
    std::string text();
    std::string valueFor(const std::string& property);
    std::string recordId(bool group);
    std::string label();
    std::string key();
    std::string customName();
    std::string comparison();
    // Returns a list property of the current person, and the identifier of one of its entries.
    std::pair<std::string, std::string> entry();

  private:
    std::mt19937_64 random_;
    const Model& model_;
    std::vector<std::string> ids_;
    std::vector<Call> prepared_;
    bool preparing_ = false;
};

} // namespace model
