// Gives every file of the folders that the command line names to a door: a fuzzer without libFuzzer, for tests.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int count, char** arguments) {
    try {
        std::vector<std::filesystem::path> files;
        for (int i = 1; i < count; ++i) {
            std::copy(std::filesystem::directory_iterator(arguments[i]), {}, std::back_inserter(files));
        }
        std::sort(files.begin(), files.end());
        for (const auto& file : files) {
            (void)std::fprintf(stderr, "%s\n", file.c_str()); // the last one is at fault, when the door fails
            std::ifstream input(file, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(input), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        }
        (void)std::fprintf(stderr, "%zu inputs\n", files.size());
        return files.empty() ? 1 : 0;
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
