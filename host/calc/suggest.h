#pragma once

// Finds the known name that is nearest to a misspelt one.

#include <string>
#include <string_view>

namespace host {

class Suggestion {
  public:
    explicit Suggestion(std::u16string_view misspelt);

    // Keeps [candidate] when it is nearer than all before it.
    void consider(std::u16string_view candidate);

    // "; did you mean Name?", or nothing when no candidate is near enough to be meant.
    std::string question() const;

  private:
    std::u16string misspelt_;
    std::u16string best_;
    size_t bestDistance_;
};

} // namespace host
