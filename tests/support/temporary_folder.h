#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

namespace support {

// A new temporary folder. The destructor removes it with its contents.
class TemporaryFolder {
  public:
    // Makes the folder. Throws std::runtime_error.
    TemporaryFolder() {
        std::string pattern = std::filesystem::temp_directory_path() / "velocard-test-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made");
        }
        path_ = pattern;
    }
    // Removes the folder. Tries for a second, as a program that is just ending may still remove files of its
    // own.
    ~TemporaryFolder() {
        std::error_code failed;
        for (int i = 0; i < 100; ++i) {
            std::filesystem::remove_all(path_, failed);
            if (!failed) {
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// A temporary folder that is the home of this process and of those it starts: they have their settings, data
// and caches in it, and find neither an address book nor a plug-in nor a session bus of the user. The
// environment is not restored.
class TemporaryHome {
  public:
    TemporaryHome() {
        for (const char* name :
             {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
            setenv(name, path().c_str(), 1);
        }
        setenv("GNUSTEP_USER_DEFAULTS_DIR", (path() / "defaults").c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + (path() / "no-bus").string()).c_str(), 1);
        for (const char* name :
             {"ADDRESSBOOK_HOME", "ADDRESSBOOK_APPLICATION", "FMHOST_PLUGIN", "XDG_RUNTIME_DIR"}) {
            unsetenv(name);
        }
    }

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

  private:
    TemporaryFolder folder_;
};

} // namespace support
