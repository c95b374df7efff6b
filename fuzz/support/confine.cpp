#include "fuzz/support/confine.h"

#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace fuzz {

namespace {

// All that the first version of Landlock knows, but for reading and executing.
constexpr uint64_t kWriting = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                              LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                              LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                              LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                              LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;

} // namespace

// The C library has no names for these calls yet.
bool confineWrites(std::initializer_list<std::filesystem::path> folders) {
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = kWriting;
    const int rules = static_cast<int>(syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
    if (rules < 0) {
        return false;
    }
    bool fine = true;
    for (const auto& folder : folders) {
        landlock_path_beneath_attr allowed{};
        allowed.allowed_access = kWriting;
        allowed.parent_fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        fine = fine && allowed.parent_fd >= 0 &&
               syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &allowed, 0) == 0;
        close(allowed.parent_fd);
    }
    fine = fine && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(SYS_landlock_restrict_self, rules, 0) == 0;
    close(rules);
    return fine;
}

} // namespace fuzz
