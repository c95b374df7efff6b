#pragma once

// A folder of its own for each test, and a clean environment to go with it.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace addressbook::test {

class Scratch : public testing::Test {
  protected:
    Scratch() {
        std::string pattern = (std::filesystem::temp_directory_path() / "store-test-XXXXXX").string();
        root_ = mkdtemp(pattern.data());
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
            setenv(name, root_.c_str(), 1);
        unsetenv("ADDRESSBOOK_HOME");
        setenv("TZ", "Europe/Berlin", 1);
    }
    ~Scratch() override {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    // The test's own folder.
    const std::filesystem::path& root() const { return root_; }
    // A folder for an address book in it; a store makes it.
    std::filesystem::path folder() const { return root_ / "book"; }

  private:
    std::filesystem::path root_;
};

} // namespace addressbook::test
