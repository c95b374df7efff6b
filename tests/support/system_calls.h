#pragma once

// Doubles of the system calls that change files. All such calls of this process pass through them: those of
// the tests, of the code under test and of its libraries.

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>

namespace support {

// While it lives, the disk with this folder acts as if it was mounted read-only, also for the super-user.
class ReadOnlyDisk {
  public:
    explicit ReadOnlyDisk(const std::filesystem::path& folder);
    ~ReadOnlyDisk();
    ReadOnlyDisk(const ReadOnlyDisk&) = delete;
    ReadOnlyDisk& operator=(const ReadOnlyDisk&) = delete;

    // Runs [work] with the disk writable.
    void writable(const std::function<void()>& work) const;
};

// While it lives, the file system has neither hard links nor renaming without replacing, as some have not.
class PlainFileSystem {
  public:
    PlainFileSystem();
    ~PlainFileSystem();
    PlainFileSystem(const PlainFileSystem&) = delete;
    PlainFileSystem& operator=(const PlainFileSystem&) = delete;
};

// Makes the call after the next [calls] calls that change files fail with this error of <cerrno>, once or with all
// later ones of its kind (see callsMade); if it is a write, half of it is done. stopFailing() lets all succeed again and
// returns whether that call was made.
enum class Failing { once, fromThenOn };
void failAfterCalls(int calls, int error, Failing failing = Failing::once);
bool stopFailing();

// Kills this process at the call after the next [calls] calls that change files; if it is a write, half of it
// is done.
void killAfterCalls(int calls);
// Returns the calls since killAfterCalls(), one letter each: "w" for a write or a sync, "n" for one that
// gives or removes a name.
std::string callsMade();

// Whether this process has written to a file since it last synced it.
bool isUnsynced(const std::filesystem::path& file);

} // namespace support
