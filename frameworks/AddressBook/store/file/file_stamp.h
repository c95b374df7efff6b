#pragma once

// A book beside which no file can be made is read without locks, as it was when it was opened: SQLite looks
// at its files no more. This does, to see whether others changed them.

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>

namespace addressbook {

// The state in which a book's files were.
class FileStamp {
  public:
    // The state of the database [file] and what lies beside it. Take it before opening them.
    explicit FileStamp(std::filesystem::path file);

    // Whether the same database may say something else now.
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
