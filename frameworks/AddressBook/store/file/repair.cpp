#include "frameworks/AddressBook/store/file/repair.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/replace_file.h"
#include "frameworks/AddressBook/store/file/rescue.h"
#include "frameworks/AddressBook/store/file/sidecars.h"
#include "frameworks/AddressBook/store/file/staging.h"
#include "frameworks/AddressBook/store/impl.h"

#include <cerrno>
#include <chrono>
#include <fstream>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr std::chrono::seconds kBusyTimeout{10};
constexpr const char* kRestore = "restore it from a backup";
// Which share of the time a repair has taken when it has looked for damage, and read what can be read.
constexpr double kLookShare = 0.3, kRescueShare = 0.8;

// Copies [file], which is open as [source]. Throws StoreError when not all of it can be read or written: what a disk
// refuses for the moment is not lost.
void copyWhole(std::ifstream& source, const fs::path& file, const fs::path& copy) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    errno = 0;
    std::ofstream(copy, std::ios::binary) << source.rdbuf();
    const int reason = errno != 0 ? errno : EIO;
    if (error || fs::file_size(copy, error) < size || error) {
        throw systemError("Could not copy the file", file, reason,
                          "make room in its folder, check the disk and try again");
    }
}

bool isSound(const fs::path& folder, const Progress& progress) {
    try {
        return Store(folder).check(Store::Depth::everything, progress).empty();
    } catch (const StoreError& error) {
        if (error.reason() == Reason::damaged || error.reason() == Reason::notADatabase) {
            return false;
        }
        throw; // missing, newer or locked, which no repair can change
    }
}

} // namespace

RepairReport repair(const fs::path& folder, const Progress& progress) {
    RepairReport report;
    std::error_code error;
    const fs::path file = folder / kFileName;
    if (!fs::is_regular_file(file, error)) {
        throw StoreError(Reason::missingFolder, "There is no address book in " + folder.string() + ".");
    }
    if (isSound(folder, share(progress, 0, kLookShare))) {
        return report;
    }
    report.needed = true;
    std::ifstream source(file, std::ios::binary); // closed last: closing it drops this process's locks
    const bool foreignJournal = !journalBelongsTo(file);
    LockedBook book(folder);
    const StagingFolder staging(folder);
    {
        const fs::path damaged = staging.folder() / "damaged";
        copyWhole(source, file, damaged);
        const fs::path log = sidecarPath(file, "-wal");
        const bool logged = hasSidecar(file, "-wal");
        const bool foreign = logged && !walBelongsTo(file);
        if (logged && !foreign) {
            std::ifstream saves(log, std::ios::binary);
            copyWhole(saves, log, sidecarPath(damaged, "-wal"));
        }
        Store::Impl made(staging.folder(), Store::Access::readWrite, kBusyTimeout);
        report.lost = rescue(file, damaged, made, share(progress, kLookShare, kRescueShare));
        if (foreign) {
            report.lost.emplace_back("The log beside the file belongs to another and is left out.");
        }
        if (foreignJournal) {
            report.lost.emplace_back("The journal beside the file belongs to another and is left out.");
        }
    }
    {
        const Store made(staging.folder());
        if (const auto problems = made.check(Store::Depth::records, share(progress, kRescueShare, 1));
            !problems.empty()) {
            throw StoreError(Reason::damaged, file, "cannot be repaired (" + problems.front() + ")",
                             kRestore);
        }
        report.people = made.count(Kind::person);
        report.groups = made.count(Kind::group);
    }
    if (report.people + report.groups == 0 && !report.lost.empty()) {
        throw StoreError(Reason::damaged, file, "cannot be repaired, no record in it can be read", kRestore);
    }
    report.kept = book.replaceWith(staging.file());
    return report;
}

} // namespace addressbook
