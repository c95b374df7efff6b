#pragma once

// The data files that scripts have open, by the numbers that Open Data File gives them.

#include "host/calc/environment.h"
#include "host/values/container.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace host {

class DataFiles {
  public:
    static constexpr size_t kMaxOpen = 25;

    // Keeps the list of the open files in [environment].
    explicit DataFiles(Environment& environment) : environment_(environment) {}

    // Opens a file for reading and writing, at its start; answers its number, from 1 on. All functions throw
    // StepFailure.
    int64_t open(const std::filesystem::path& file);
    void close(int64_t id);

    // Reads from the position, to the end without [amount] (in bytes).
    Bytes read(int64_t id, std::optional<int64_t> amount);

    // Writes at the position, over what is there.
    void write(int64_t id, const Bytes& bytes);

    // The position in bytes, from 0.
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
