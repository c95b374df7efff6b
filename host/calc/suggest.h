#pragma once

// Finds the candidate that is most similar to a misspelt name.

#include <string>
#include <string_view>

namespace host {

class Suggestion {
  public:
    explicit Suggestion(std::u16string_view misspelt);

    // Keeps [candidate] if it is more similar than all before it.
    void consider(std::u16string_view candidate);

    // Returns "; did you mean Name?" with the best candidate; empty when none is similar enough.
    std::string question() const;

  private:
    std::u16string misspelt_;
    std::u16string best_;
    size_t bestDistance_;
};

} // namespace host
