#pragma once

// A temporary folder for each test, with a clean environment.

#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>

namespace addressbook::test {

class Scratch : public testing::Test {
  protected:
    Scratch() { moveTo("Europe/Berlin"); }
    // Sets the clock of this process to a time zone.
    static void moveTo(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    // Returns the test's folder.
    const std::filesystem::path& root() const { return home_.path(); }
    // Returns a folder in it for an address book, which a store makes.
    std::filesystem::path folder() const { return root() / "book"; }

  private:
    support::TemporaryHome home_;
};

} // namespace addressbook::test
