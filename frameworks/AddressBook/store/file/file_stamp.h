#pragma once

// Device, inode, size and modification time of the database and its sidecars. A book beside which no file can
// be made is opened in SQLite's immutable mode, which never notices outside changes; comparing stamps does.

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>

namespace addressbook {

// The state of a book's files when it was made.
class FileStamp {
  public:
    // Takes the state of the database [file] and its sidecars. Make it before they are opened.
    explicit FileStamp(std::filesystem::path file);

    // Whether the files may have changed since. False also when another file is in the database's place,
    // which Store::moved() reports.
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
    bool recent_; // changed so shortly before that a further change may leave the same time
};

} // namespace addressbook
