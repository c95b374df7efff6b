#pragma once

// The data files that scripts have opened, by the ids that Open Data File returns.

#include "host/calc/environment.h"
#include "host/values/container.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace host {

// The open data files of a session. All functions throw StepFailure.
class DataFiles {
  public:
    static constexpr size_t kMaxOpen = 25;

    // Keeps Environment::openDataFiles up to date.
    explicit DataFiles(Environment& environment) : environment_(environment) {}

    // Opens a file for reading and writing, at its start; returns its id, from 1 on.
    int64_t open(const std::filesystem::path& file);
    void close(int64_t id);

    // Reads [amount] bytes from the position on, or to the end without an amount.
    Bytes read(int64_t id, std::optional<int64_t> amount);

    // Writes at the position, overwriting what is there.
    void write(int64_t id, const Bytes& bytes);

    // Return and set the position in bytes, from 0.
    int64_t position(int64_t id) const;
    void setPosition(int64_t id, int64_t position);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct DataFile {
        std::filesystem::path path;
        std::unique_ptr<std::FILE, Close> stream;
    };

    std::FILE* stream(int64_t id) const;
    void listOpenFiles();

    Environment& environment_;
    std::map<int64_t, DataFile> files_;
};

} // namespace host
