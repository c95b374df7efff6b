#include "host/loader/machine.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <elf.h>
#include <fstream>
#include <link.h>
#include <string_view>

namespace host {

namespace {

// The beginning of a file, up to the fields of ELF that name the machine; they are in the same place in both
// classes.
using Head = std::array<unsigned char, EI_NIDENT + 4>;

Head headOf(const std::filesystem::path& file) {
    Head head{};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(head.data()), head.size());
    return head;
}

struct Processor {
    uint16_t machine;
    std::string_view name;
};
constexpr Processor kProcessors[] = {
    {EM_386, "i386"},        {EM_X86_64, "x86-64"}, {EM_ARM, "arm"},       {EM_AARCH64, "arm64"},
    {EM_PPC64, "ppc64"},     {EM_S390, "s390"},     {EM_RISCV, "risc-v"},  {EM_MIPS, "mips"},
    {EM_LOONGARCH, "loong"}, {EM_PPC, "ppc"},       {EM_SPARCV9, "sparc"},
};

// Kinds of libraries of other systems, by their first bytes.
struct Format {
    std::string_view magic;
    std::string_view system;
};
constexpr Format kFormats[] = {
    {"\xCF\xFA\xED\xFE", "macOS"},
    {"\xCE\xFA\xED\xFE", "macOS"},
    {"\xCA\xFE\xBA\xBE", "macOS"},
    {"MZ", "Windows"},
};

bool isElf(const Head& head) {
    return std::memcmp(head.data(), ELFMAG, SELFMAG) == 0;
}

std::string elfMachine(const Head& head) {
    const unsigned char* field = head.data() + EI_NIDENT + 2; // e_machine, after e_type
    const bool bigEndian = head[EI_DATA] == ELFDATA2MSB;
    const auto machine =
        static_cast<uint16_t>(bigEndian ? field[0] << 8 | field[1] : field[1] << 8 | field[0]);
    const auto* known = std::find_if(std::begin(kProcessors), std::end(kProcessors),
                                     [&](const Processor& row) { return row.machine == machine; });
    return "Linux on " +
           (known != std::end(kProcessors) ? std::string(known->name)
                                           : "processor " + std::to_string(machine)) +
           (head[EI_CLASS] == ELFCLASS32 ? " (32 bit)" : " (64 bit)");
}

} // namespace

std::string ownMachine() {
    return elfMachine(headOf("/proc/self/exe"));
}

std::string foreignMachine(const std::filesystem::path& file) {
    const Head head = headOf(file);
    if (isElf(head)) {
        std::string machine = elfMachine(head);
        return machine == ownMachine() ? "" : machine;
    }
    for (const Format& format : kFormats) {
        if (std::memcmp(head.data(), format.magic.data(), format.magic.size()) == 0) {
            return std::string(format.system);
        }
    }
    return "";
}

bool isCutShort(const std::filesystem::path& file) {
    std::error_code error;
    const uintmax_t size = std::filesystem::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    ElfW(Ehdr) head{};
    if (error || !isElf(headOf(file)) || !stream.read(reinterpret_cast<char*>(&head), sizeof head) ||
        head.e_phentsize != sizeof(ElfW(Phdr)) || !stream.seekg(static_cast<std::streamoff>(head.e_phoff))) {
        return false; // not a library of this machine
    }
    ElfW(Phdr) segment{};
    for (int i = 0; i < head.e_phnum && stream.read(reinterpret_cast<char*>(&segment), sizeof segment); ++i) {
        if (segment.p_type == PT_LOAD &&
            (segment.p_offset > size || segment.p_filesz > size - segment.p_offset)) {
            return true;
        }
    }
    return false;
}

} // namespace host
