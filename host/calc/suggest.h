#pragma once

// Finds the candidate that was meant by a misspelt name: the shortest that begins with it, or else the one that
// the fewest typing mistakes turn into it.

#include <string>
#include <string_view>

namespace host {

class Suggestion {
  public:
    explicit Suggestion(std::u16string_view misspelt);

    // Keeps [candidate] if it is more likely than all before it.
    void consider(std::u16string_view candidate);

    // Returns the best candidate; empty when none is similar enough.
    const std::u16string& best() const { return best_; }

    // Returns "; did you mean Name?" with the best candidate; empty when none is similar enough.
    std::string question() const;

  private:
    std::u16string misspelt_;
    std::u16string best_;
    bool bestIsLonger_ = false; // it begins with the misspelt name; its length is then the distance
    size_t bestDistance_;
};

} // namespace host
