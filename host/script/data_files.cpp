#include "host/script/data_files.h"

#include "host/script/file_bytes.h"
#include "host/script/step_failure.h"
#include "host/values/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace host {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(int code, const std::string& doing, const fs::path& file) {
    throw StepFailure(code, "can not " + doing + " " + file.string() + ": " + std::strerror(errno));
}

} // namespace

int64_t DataFiles::open(const fs::path& file) {
    if (files_.size() == kMaxOpen) {
        throw StepFailure(kFileUnreadable, "at most " + std::to_string(kMaxOpen) + " data files can be open");
    }
    std::error_code error;
    if (fs::exists(file, error) && !fs::is_regular_file(file, error)) {
        throw StepFailure(kFileUnreadable, file.string() + " is no regular file");
    }
    std::unique_ptr<std::FILE, Close> stream(std::fopen(file.c_str(), "r+b"));
    if (stream == nullptr && errno == EACCES) {
        stream.reset(std::fopen(file.c_str(), "rb"));
    }
    if (stream == nullptr) {
        fail(errno == ENOENT ? kFileMissing : kFileUnreadable, "open", file);
    }
    int64_t id = 1;
    while (files_.contains(id)) {
        ++id;
    }
    files_.emplace(id, DataFile{file, std::move(stream)});
    listOpenFiles();
    return id;
}

void DataFiles::close(int64_t id) {
    stream(id);
    files_.erase(id);
    listOpenFiles();
}

Bytes DataFiles::read(int64_t id, std::optional<int64_t> amount) {
    std::FILE* file = stream(id);
    const fs::path& path = files_.at(id).path;
    std::error_code error;
    const auto size = static_cast<int64_t>(fs::file_size(path, error));
    const int64_t there = std::max<int64_t>(size - position(id), 0);
    const int64_t wanted = std::clamp<int64_t>(amount.value_or(there), 0, there);
    if (wanted > static_cast<int64_t>(kMaxFileBytes)) {
        throw StepFailure(kFileUnreadable, path.string() + " is too large to be read at once");
    }
    Bytes bytes(static_cast<size_t>(wanted));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    if (std::ferror(file) != 0) {
        std::clearerr(file);
        fail(kFileUnreadable, "read", path);
    }
    return bytes;
}

void DataFiles::write(int64_t id, const Bytes& bytes) {
    std::FILE* file = stream(id);
    std::fseek(file, 0, SEEK_CUR); // required by stdio between reading and writing
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (!written || std::fflush(file) != 0) {
        std::clearerr(file);
        fail(kFileUnreadable, "write", files_.at(id).path);
    }
}

int64_t DataFiles::position(int64_t id) const {
    return std::ftell(stream(id));
}

void DataFiles::setPosition(int64_t id, int64_t position) {
    if (std::fseek(stream(id), position, SEEK_SET) != 0) {
        fail(kFileUnreadable, "go to that position of", files_.at(id).path);
    }
}

std::FILE* DataFiles::stream(int64_t id) const {
    const auto found = files_.find(id);
    if (found == files_.end()) {
        throw StepFailure(kFileMissing, "there is no open data file with the number " + std::to_string(id));
    }
    return found->second.stream.get();
}

void DataFiles::listOpenFiles() {
    environment_.openDataFiles.clear();
    for (const auto& [id, file] : files_) {
        environment_.openDataFiles += (environment_.openDataFiles.empty() ? u"" : u"\r") +
                                      fromUtf8(std::to_string(id) + ";" + file.path.string());
    }
}

} // namespace host
