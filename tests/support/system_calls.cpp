#include "tests/support/system_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <mutex>
#include <set>
#include <string>

namespace {

struct Calls {
    std::mutex lock;
    std::string folder; // on the read-only disk
    bool readOnly = false;
    int left = -1; // before this process is killed, or the call fails; negative: never
    int error = 0; // with which it fails; 0: the process is killed
    support::Failing failing = support::Failing::once;
    char failingKind = 'w';
    bool failed = false;
    bool plain = false; // neither hard links nor renaming without replacing
    std::string made;
    std::set<ino_t> unsynced;
};

// Made when it is first needed, which is before main(), and never destroyed.
Calls& state() {
    static Calls& calls = *new Calls;
    return calls;
}

// The function of this name that comes after ours.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isReadOnly(const char* path) {
    const std::lock_guard<std::mutex> guard(state().lock);
    return state().readOnly && strncmp(path, state().folder.c_str(), state().folder.size()) == 0;
}

// Notes a call that changes something; answers whether it is the last.
bool isLast(char kind) {
    if (state().left < 0) {
        return false;
    }
    if (state().failed) {
        return kind == state().failingKind;
    }
    state().made += kind;
    return state().left-- == 0;
}

int refuse(int error = EROFS) {
    errno = error;
    return -1;
}

// Notes a call that changes something; does not return from the last. Answers whether it fails, and sets errno.
bool fails(char kind) {
    if (!isLast(kind)) {
        return false;
    }
    if (state().error == 0) {
        kill(getpid(), SIGKILL);
    }
    state().failed = true;
    state().failingKind = kind;
    state().left = state().failing == support::Failing::once ? -1 : 0;
    refuse(state().error);
    return true;
}

ino_t identityOf(int file) {
    struct stat status{};
    return fstat(file, &status) == 0 ? status.st_ino : 0;
}

template <typename Write>
ssize_t writing(int file, size_t size, Write write) {
    {
        const std::lock_guard<std::mutex> guard(state().lock);
        state().unsynced.insert(identityOf(file));
    }
    if (state().left == 0 && !state().failed) {
        write(size / 2);
    }
    return fails('w') ? -1 : write(size);
}

int syncing(int (*real)(int), int file) {
    if (fails('w')) {
        return -1;
    }
    const int result = real(file);
    const std::lock_guard<std::mutex> guard(state().lock);
    state().unsynced.erase(identityOf(file));
    return result;
}

int opening(int (*real)(const char*, int, ...), const char* path, int flags, mode_t mode) {
    struct stat status{};
    const bool writes = (flags & O_ACCMODE) != O_RDONLY;
    const bool makes = (flags & O_CREAT) != 0 && stat(path, &status) != 0;
    if (isReadOnly(path) && (makes || (writes && stat(path, &status) == 0))) {
        return refuse();
    }
    return makes && fails('n') ? -1 : real(path, flags, mode);
}

mode_t modeIn(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// The program's own definitions win over the libraries', also for the libraries themselves.
#pragma GCC visibility push(default)
extern "C" {

int open(const char* path, int flags, ...) {
    static const auto real = next<int(const char*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opening(real, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    static const auto real = next<int(const char*, int, ...)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opening(real, path, flags, mode);
}

int access(const char* path, int rights) noexcept {
    static const auto real = next<int(const char*, int)>("access");
    return (rights & W_OK) != 0 && isReadOnly(path) ? refuse() : real(path, rights);
}

int mkdir(const char* path, mode_t mode) noexcept {
    static const auto real = next<int(const char*, mode_t)>("mkdir");
    if (isReadOnly(path)) {
        return refuse();
    }
    return fails('n') ? -1 : real(path, mode);
}

char* mkdtemp(char* pattern) noexcept {
    static const auto real = next<char*(char*)>("mkdtemp");
    if (isReadOnly(pattern)) {
        errno = EROFS;
        return nullptr;
    }
    return fails('n') ? nullptr : real(pattern);
}

int link(const char* from, const char* to) noexcept {
    static const auto real = next<int(const char*, const char*)>("link");
    if (state().plain) {
        return refuse(EPERM);
    }
    return fails('n') ? -1 : real(from, to);
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = next<int(const char*, const char*)>("rename");
    return fails('n') ? -1 : real(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    static const auto real = next<int(int, const char*, int, const char*, unsigned)>("renameat2");
    if (state().plain && flags != 0) {
        return refuse(EINVAL);
    }
    return fails('n') ? -1 : real(fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) noexcept {
    static const auto real = next<int(const char*)>("unlink");
    return fails('n') ? -1 : real(path);
}

int ftruncate(int file, off_t size) noexcept {
    static const auto real = next<int(int, off_t)>("ftruncate");
    return fails('w') ? -1 : real(file, size);
}

int ftruncate64(int file, off64_t size) noexcept {
    static const auto real = next<int(int, off64_t)>("ftruncate64");
    return fails('w') ? -1 : real(file, size);
}

int fsync(int file) {
    static const auto real = next<int(int)>("fsync");
    return syncing(real, file);
}

int fdatasync(int file) {
    static const auto real = next<int(int)>("fdatasync");
    return syncing(real, file);
}

ssize_t write(int file, const void* data, size_t size) {
    static const auto real = next<ssize_t(int, const void*, size_t)>("write");
    return writing(file, size, [&](size_t part) { return real(file, data, part); });
}

ssize_t writev(int file, const struct iovec* parts, int count) {
    static const auto real = next<ssize_t(int, const struct iovec*, int)>("writev");
    return writing(file, static_cast<size_t>(count),
                   [&](size_t some) { return real(file, parts, static_cast<int>(some)); });
}

ssize_t pwrite(int file, const void* data, size_t size, off_t offset) {
    static const auto real = next<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    return writing(file, size, [&](size_t part) { return real(file, data, part, offset); });
}

ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset) {
    static const auto real = next<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    return writing(file, size, [&](size_t part) { return real(file, data, part, offset); });
}

ssize_t sendfile(int to, int from, off_t* offset, size_t size) noexcept {
    static const auto real = next<ssize_t(int, int, off_t*, size_t)>("sendfile");
    return writing(to, size, [&](size_t part) { return real(to, from, offset, part); });
}

ssize_t sendfile64(int to, int from, off64_t* offset, size_t size) noexcept {
    static const auto real = next<ssize_t(int, int, off64_t*, size_t)>("sendfile64");
    return writing(to, size, [&](size_t part) { return real(to, from, offset, part); });
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size,
                        unsigned flags) {
    static const auto real = next<ssize_t(int, off64_t*, int, off64_t*, size_t, unsigned)>("copy_file_range");
    return writing(to, size, [&](size_t part) { return real(from, fromOffset, to, toOffset, part, flags); });
}

} // extern "C"
#pragma GCC visibility pop

namespace support {

ReadOnlyDisk::ReadOnlyDisk(const std::filesystem::path& folder) {
    const std::lock_guard<std::mutex> guard(state().lock);
    state().folder = folder.string();
    state().readOnly = true;
}

ReadOnlyDisk::~ReadOnlyDisk() {
    const std::lock_guard<std::mutex> guard(state().lock);
    state().readOnly = false;
}

void ReadOnlyDisk::writable(const std::function<void()>& work) const {
    const auto mount = [](bool readOnly) {
        const std::lock_guard<std::mutex> guard(state().lock);
        state().readOnly = readOnly;
    };
    mount(false);
    work();
    mount(true);
}

PlainFileSystem::PlainFileSystem() {
    state().plain = true;
}

PlainFileSystem::~PlainFileSystem() {
    state().plain = false;
}

void killAfterCalls(int count) {
    failAfterCalls(count, 0);
}

void failAfterCalls(int count, int error, Failing failing) {
    state().left = count;
    state().error = error;
    state().failing = failing;
    state().failed = false;
    state().made.clear();
}

bool stopFailing() {
    state().left = -1;
    return state().failed;
}

std::string callsMade() {
    return state().made;
}

bool isUnsynced(const std::filesystem::path& file) {
    struct stat status{};
    const std::lock_guard<std::mutex> guard(state().lock);
    return stat(file.c_str(), &status) == 0 && state().unsynced.contains(status.st_ino);
}

} // namespace support
