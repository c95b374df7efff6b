#pragma once

// Device, inode, size and modification time of the database and its sidecars. A book beside which no file can
// be made is opened in SQLite's immutable mode, which never notices outside changes; comparing stamps does.

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>

namespace addressbook {

// The state of a book's files at one moment.
class FileStamp {
  public:
    // Takes the state of the database [file] and of what lies beside it. Do so before opening them.
    explicit FileStamp(std::filesystem::path file);

    // Whether the database may say something else now. False also when another file is in its place: see
    // Store::moved().
    bool outdated() const;

  private:
    struct Part {
        dev_t device = 0;
        ino_t number = 0; // 0: no such file
        off_t size = 0;
        std::int64_t changed = 0; // in nanoseconds since 1970
        bool operator==(const Part&) const = default;
    };
    using Parts = std::array<Part, 4>;
    Parts look() const;

    std::filesystem::path file_;
    Parts parts_;
    bool recent_; // changed so shortly before that a change right after need not show in the times
};

} // namespace addressbook
