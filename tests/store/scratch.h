#pragma once

// A folder of its own for each test, and a clean environment to go with it.

#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace addressbook::test {

class Scratch : public testing::Test {
  protected:
    Scratch() { setenv("TZ", "Europe/Berlin", 1); }
    // The test's own folder.
    const std::filesystem::path& root() const { return home_.path(); }
    // A folder for an address book in it; a store makes it.
    std::filesystem::path folder() const { return root() / "book"; }

  private:
    support::TemporaryHome home_;
};

} // namespace addressbook::test
