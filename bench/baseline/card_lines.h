#pragma once

// The baseline of reading vCards: joins folded lines, splits each at its first colon and semicolons, and knows
// no properties, parameters, character sets or mistakes but those of the benchmark's own file.

#include "bench/generate/people.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace bench {

// Reads the people of a file that writeCardFile() wrote.
class CardLines {
  public:
    explicit CardLines(const std::filesystem::path& file) : in_(file, std::ios::binary) {}

    // Returns the next person; nothing at the end.
    std::optional<Person> next();

  private:
    bool nextLine();

    std::ifstream in_;
    std::string line_, ahead_;
    bool hasAhead_ = false;
};

} // namespace bench
