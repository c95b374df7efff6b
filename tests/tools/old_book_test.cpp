// A book of an earlier version: every command, those that only read and dry runs included, brings it up to date
// where it may be written, and refuses it with the same words where it may not.

#include "frameworks/AddressBook/store/schema.h"
#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path kBooks = STORE_BOOKS_FOLDER;

class OldBookTest : public testing::TestWithParam<std::string>, public Sandbox {
  protected:
    OldBookTest() {
        fs::create_directories(book());
        fs::copy_file(kBooks / "version5.db", file_);
        fs::permissions(file_, fs::perms::owner_read | fs::perms::owner_write);
        fs::copy_file(kBooks / "book.vcf", folder() / "book.vcf");
    }

    // The schema version in the header of the file, as a number of 4 bytes of which the first are 0.
    int version() const {
        constexpr int kPlace = 63;
        std::ifstream in(file_, std::ios::binary);
        in.seekg(kPlace);
        return in.get();
    }

    const fs::path file_ = book() / "AddressBook.db";
};

TEST_P(OldBookTest, IsBroughtUpToDateWhereItMayBeWritten) {
    ASSERT_EQ(version(), 5);
    const Outcome outcome = shell("\"$A\" " + GetParam());
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(version(), static_cast<int>(kSchemaVersion));
    const Outcome check = run({"check"});
    EXPECT_EQ(check.status, 0) << check.err;
    EXPECT_THAT(check.err, HasSubstr("sound, 3 people and 3 groups"));
}

TEST_P(OldBookTest, IsRefusedAndLeftWhereItMayNot) {
    const Outcome outcome = shell("chmod -R a-w book; [ $(id -u) -ne 0 ] || set -- setpriv "
                                  "--bounding-set=-dac_override; \"$@\" \"$A\" " +
                                  GetParam() + "; status=$?; chmod -R u+w book; exit $status");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err,
                HasSubstr("is of an older version and may not be written: open it once where it may be "
                          "written.\n"));
    EXPECT_EQ(version(), 5);
    EXPECT_EQ(std::distance(fs::directory_iterator(book()), {}), 1);
}

INSTANTIATE_TEST_SUITE_P(Commands, OldBookTest,
                         testing::Values("list", "groups", "find berg",
                                         "show AAAAAAAA-0000-4000-8000-000000000001:ABPerson", "me",
                                         "export -", "export --format csv -", "check",
                                         "check --explain 'Last = \"a\"'", "import --dry-run book.vcf",
                                         "backup copy.backup", "repair",
                                         "delete --dry-run AAAAAAAA-0000-4000-8000-000000000001:ABPerson"));

} // namespace
} // namespace addressbook
