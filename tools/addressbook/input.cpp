#include "tools/addressbook/input.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace addressbook::tool {

Input::Input(const std::string& file)
    : std::istream(this), name_(file == "-" ? "standard input" : file),
      descriptor_(file == "-" ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status{};
    const int error = descriptor_ < 0 || fstat(descriptor_, &status) != 0 ? errno
                      : S_ISDIR(status.st_mode)                           ? EISDIR
                                                                          : 0;
    if (error != 0) {
        release();
        throw Failure(name_ + ": " + std::strerror(error));
    }
    if (S_ISREG(status.st_mode)) {
        size_ = static_cast<std::uintmax_t>(status.st_size);
    }
    exceptions(std::ios::badbit); // so that the stream rethrows exceptions of underflow()
}

Input::~Input() {
    release();
}

void Input::release() const {
    if (descriptor_ > STDIN_FILENO) {
        close(descriptor_);
    }
}

// Reads into the buffer at offset [from]; returns the offset at which the bytes read end.
std::size_t Input::fill(std::size_t from) {
    for (;;) {
        waitForInput(descriptor_);
        const ssize_t count = ::read(descriptor_, buffer_.data() + from, buffer_.size() - from);
        if (count >= 0) {
            return from + static_cast<std::size_t>(count);
        }
        if (errno != EINTR && errno != EAGAIN) {
            throw Failure(name_ + ": cannot read: " + std::strerror(errno));
        }
    }
}

std::streambuf::int_type Input::underflow() {
    const std::size_t filled = fill(0);
    setg(buffer_.data(), buffer_.data(), buffer_.data() + filled);
    return filled == 0 ? std::streambuf::traits_type::eof()
                       : std::streambuf::traits_type::to_int_type(buffer_.front());
}

std::string_view Input::beginning() {
    std::size_t filled = 0;
    for (std::size_t now; filled < buffer_.size() && (now = fill(filled)) > filled;) {
        filled = now;
    }
    setg(buffer_.data(), buffer_.data(), buffer_.data() + filled);
    return {buffer_.data(), filled};
}

} // namespace addressbook::tool
