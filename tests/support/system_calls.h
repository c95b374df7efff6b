#pragma once

// What becomes of this process's calls to the system that change files: every call of the tests, of what they
// test and of the libraries below goes through here.

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>

namespace support {

// While it lives, the disk that holds this folder is mounted for reading only, for the super-user as well.
class ReadOnlyDisk {
  public:
    explicit ReadOnlyDisk(const std::filesystem::path& folder);
    ~ReadOnlyDisk();
    ReadOnlyDisk(const ReadOnlyDisk&) = delete;
    ReadOnlyDisk& operator=(const ReadOnlyDisk&) = delete;

    // Does something as one for whom it is mounted for writing.
    void writable(const std::function<void()>& work) const;
};

// Kills this process at the call after so many that change files; a write is done in half by then.
void killAfterCalls(int calls);
// What these calls were since killAfterCalls(), one letter each: "w" is a write or a sync, "n" gives or takes
// a name.
std::string callsMade();

// Whether what was last written to this file by this process was not brought to the disk since.
bool isUnsynced(const std::filesystem::path& file);

} // namespace support
