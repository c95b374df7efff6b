#include "host/script/file_bytes.h"

#include "host/script/script_library.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <optional>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(std::string_view what, const fs::path& file, int error) {
    throw FileError("can not " + std::string(what) + " " + file.string() + ": " + std::strerror(error));
}

// An open file, closed at the end.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int operator*() const { return number_; }
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

// Throws FileError for an empty name, and for one with a zero character, at which a system call would stop.
void requireName(const fs::path& file) {
    if (file.empty() || file.native().find('\0') != std::string::npos) {
        throw FileError(file.empty() ? "the path is empty" : "the path holds a zero character");
    }
}

// Reads from the file until [bytes] are full or the file ends; returns how many were read.
size_t fill(std::span<unsigned char> bytes, int descriptor, const fs::path& file) {
    size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            fail("read", file, errno);
        }
        filled += count > 0 ? static_cast<size_t>(count) : 0;
    }
    return filled;
}

void writeAll(std::span<const unsigned char> bytes, int descriptor, const fs::path& file) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            fail("write", file, errno);
        }
        bytes = bytes.subspan(count > 0 ? static_cast<size_t>(count) : 0);
    }
}

// A temporary file beside the one that it will replace; removed by the destructor unless it was put in place.
class Replacement {
  public:
    explicit Replacement(const fs::path& file) : file_(file), descriptor_(create()) {}
    ~Replacement() {
        if (!name_.empty()) {
            unlink(name_.c_str());
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    // Writes the contents; with the given mode, else with that of a new file.
    void write(const Bytes& bytes, std::optional<mode_t> mode) {
        writeAll(bytes, *descriptor_, file_);
        if ((mode && fchmod(*descriptor_, *mode) != 0) || fsync(*descriptor_) != 0 || !descriptor_.close() ||
            rename(name_.c_str(), file_.c_str()) != 0) {
            fail("write", file_, errno);
        }
        name_.clear();
    }

  private:
    // Makes and opens a file with a name that is not taken, for instance by a file that a killed process
    // left.
    int create() {
        constexpr int kTries = 100;
        const std::string prefix =
            (file_.parent_path() / ".fmhost-").string() + std::to_string(getpid()) + "-";
        int error = EEXIST;
        for (int i = 0; i < kTries && error == EEXIST; ++i) {
            const std::string name = prefix + std::to_string(i);
            const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (descriptor >= 0) {
                name_ = name;
                return descriptor;
            }
            error = errno;
        }
        fail("write", file_, error);
    }

    fs::path file_;
    std::string name_;
    Descriptor descriptor_;
};

} // namespace

Bytes readBytes(const fs::path& file) {
    requireName(file);
    const Descriptor descriptor(
        open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // so that a pipe does not block
    struct stat status{};
    if (*descriptor < 0 || fstat(*descriptor, &status) != 0) {
        fail("read", file, errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw FileError(file.string() + " is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        throw FileError(file.string() + " is no regular file");
    }
    const auto size = static_cast<size_t>(status.st_size);
    if (size == 0) {
        throw FileError(file.string() + " is empty");
    }
    if (size > kMaxFileBytes) {
        throw FileError(file.string() + " is larger than 2 GB");
    }
    try {
        Bytes bytes(size);
        if (fill(bytes, *descriptor, file) != size) {
            throw FileError(file.string() + " became shorter while it was read");
        }
        return bytes;
    } catch (const std::bad_alloc&) {
        throw FileError("there is not enough memory for " + file.string());
    }
}

void writeBytes(const fs::path& file, const Bytes& bytes) {
    requireName(file);
    struct stat status{};
    std::optional<mode_t> mode;
    fs::path target = file;
    if (stat(file.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) {
            throw FileError(file.string() +
                            (S_ISDIR(status.st_mode) ? " is a folder" : " is no regular file"));
        }
        std::error_code error;
        if (fs::is_symlink(file, error)) {
            target = fs::canonical(file, error);
        }
        if (error) {
            fail("write", file, error.value());
        }
        mode = status.st_mode & 07777;
    } else if (errno != ENOENT) {
        fail("write", file, errno);
    }
    Replacement(target).write(bytes, mode);
}

} // namespace host
