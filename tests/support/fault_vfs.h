#pragma once

// A VFS for SQLite in which the n-th write, sync, truncation, opening or mapping of the log's index fails, as
// on a full or broken disk.

#include <sqlite3.h>
#include <unistd.h>

#include <list>

namespace support {

// While it lives, databases are opened by way of it.
class FaultVfs {
  public:
    FaultVfs() {
        state().base = sqlite3_vfs_find(nullptr);
        vfs_ = *state().base;
        vfs_.zName = "faults";
        vfs_.xOpen = &open;
        sqlite3_vfs_register(&vfs_, 1);
    }
    ~FaultVfs() {
        sqlite3_vfs_unregister(&vfs_);
        sqlite3_vfs_register(state().base, 1);
    }
    FaultVfs(const FaultVfs&) = delete;
    FaultVfs& operator=(const FaultVfs&) = delete;

    // Lets [good] calls succeed and makes all later ones fail with [code], or the usual code of their kind,
    // until disarm().
    void arm(int good, int code) {
        state().left = good;
        state().code = code;
    }
    void disarm() { state().code = SQLITE_OK; }

  private:
    // The methods of one kind of file, with some replaced. SQLite has a pointer to the first member.
    struct Patched {
        sqlite3_io_methods methods{};
        const sqlite3_io_methods* original = nullptr;
    };
    struct State {
        sqlite3_vfs* base = nullptr;
        std::list<Patched> patched;
        int left = 0;
        int code = SQLITE_OK;
    };
    static State& state() {
        static State instance;
        return instance;
    }
    static const sqlite3_io_methods* originalOf(sqlite3_file* file) {
        return reinterpret_cast<const Patched*>(file->pMethods)->original;
    }
    static bool fails() { return state().code != SQLITE_OK && state().left-- <= 0; }
    static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
        file->pMethods = nullptr;
        // On a full disk, existing files can still be opened.
        const bool works = state().code == SQLITE_FULL && (name == nullptr || ::access(name, F_OK) == 0);
        if (!works && fails()) {
            return SQLITE_CANTOPEN;
        }
        const int result = state().base->xOpen(state().base, name, file, flags, outFlags);
        if (result == SQLITE_OK && file->pMethods != nullptr) {
            Patched& patched = state().patched.emplace_back();
            patched.original = file->pMethods;
            patched.methods = *file->pMethods;
            patched.methods.xWrite = &write;
            patched.methods.xSync = &sync;
            patched.methods.xTruncate = &truncate;
            patched.methods.xShmMap = &mapIndex;
            file->pMethods = &patched.methods;
        }
        return result;
    }
    static int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
        return fails() ? state().code : originalOf(file)->xWrite(file, data, size, offset);
    }
    static int sync(sqlite3_file* file, int flags) {
        return fails() ? SQLITE_IOERR_FSYNC : originalOf(file)->xSync(file, flags);
    }
    static int truncate(sqlite3_file* file, sqlite3_int64 size) {
        return fails() ? SQLITE_IOERR_TRUNCATE : originalOf(file)->xTruncate(file, size);
    }
    static int mapIndex(sqlite3_file* file, int page, int size, int extend, void volatile** memory) {
        return fails() ? SQLITE_IOERR_SHMMAP : originalOf(file)->xShmMap(file, page, size, extend, memory);
    }

    sqlite3_vfs vfs_{};
};

} // namespace support
