#pragma once

#include "fuzz/support/input.h"
#include "fuzz/support/other_process.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <string>

namespace fuzz {

// The address book of this process, which another process changes as well. Make it before this process opens an address
// book or has threads.
class SharedBook {
  public:
    SharedBook();

    // Puts the book back as it was made: people and groups whose identifiers are AAAAAAAA-0000-4000-8000-000000000001 and
    // so on. This process must have it closed.
    void renew();

    // Lets the other process save something, or restore a backup.
    void change(unsigned what, Input& input);

    // Whether nothing is wrong with it.
    [[nodiscard]] bool isSound() const;

  private:
    support::TemporaryHome home_;
    std::filesystem::path folder_;
    std::string bytes_; // of the file as it was made
    OtherProcess other_;
};

} // namespace fuzz
