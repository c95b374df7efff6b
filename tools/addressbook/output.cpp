#include "tools/addressbook/output.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace addressbook::tool {

namespace fs = std::filesystem;

Output::Output() : stream_(stdout) {}

Output::Output(fs::path file) : stream_(nullptr), target_(std::move(file)) {
    std::error_code none;
    if (fs::is_symlink(target_, none)) {
        if (fs::path real = fs::weakly_canonical(target_, none); !none) {
            target_ = std::move(real);
        }
    }
    const fs::file_status status = fs::status(target_, none);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        stream_ = std::fopen(target_.c_str(), "wb"); // a pipe or a device is written in place
        if (!stream_) {
            fail(errno);
        }
        return;
    }
    std::string name = target_.string() + ".XXXXXX";
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) {
        fail(errno);
    }
    temporary_ = name;
    if (fs::exists(status)) {
        mode_ = static_cast<mode_t>(status.permissions()) & 0777;
    }
    stream_ = fdopen(descriptor, "wb");
    if (!stream_) {
        close(descriptor);
        unlink(name.c_str());
        fail(errno);
    }
}

Output::~Output() {
    if (stream_ && stream_ != stdout) {
        std::fclose(stream_);
    }
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
    }
}

void Output::fail(int error) const {
    if (target_.empty() && error == EPIPE) {
        throw OutputClosed();
    }
    throw Failure((target_.empty() ? std::string("standard output") : target_.string()) +
                  ": cannot write: " + std::strerror(error));
}

void Output::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) {
        fail(errno);
    }
}

void Output::finish() {
    if (std::fflush(stream_) != 0) {
        fail(errno);
    }
    if (target_.empty()) {
        return;
    }
    if (!temporary_.empty()) {
        fchmod(fileno(stream_), mode_);
        if (fsync(fileno(stream_)) != 0) {
            fail(errno);
        }
    }
    std::FILE* stream = stream_;
    stream_ = nullptr;
    if (std::fclose(stream) != 0) {
        fail(errno);
    }
    if (!temporary_.empty()) {
        if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
            fail(errno);
        }
        temporary_.clear();
    }
}

void complain(std::string_view message) {
    const std::string line = "addressbook: " + std::string(message) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

std::string escaped(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (const char byte : text) {
        switch (byte) {
        case '\t':
            line += "\\t";
            break;
        case '\n':
            line += "\\n";
            break;
        case '\r':
            line += "\\r";
            break;
        case '\\':
            line += "\\\\";
            break;
        default:
            if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F) {
                constexpr char kDigits[] = "0123456789ABCDEF";
                line += "\\x";
                line += kDigits[byte >> 4 & 15];
                line += kDigits[byte & 15];
            } else {
                line += byte;
            }
        }
    }
    return line;
}

} // namespace addressbook::tool
