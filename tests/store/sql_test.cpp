// The layer over SQLite.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/sql/sql.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <memory>

namespace addressbook::test {
namespace {

using testing::HasSubstr;

class SqlTest : public Scratch {
  protected:
    sql::Connection connection_{root() / "file", databaseUri(root() / "file"),
                                SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI,
                                std::chrono::milliseconds(0)};
};

// SQLite counts bytes with 31 bits. The memory is asked for, but never touched.
TEST_F(SqlTest, AValueOfGigabytesIsRefused) {
    constexpr std::size_t kSize = std::size_t{3} << 30;
    const auto memory = std::make_unique_for_overwrite<char[]>(kSize);
    const std::string_view large(memory.get(), kSize);
    for (const auto bind : {&sql::Statement::bindText, &sql::Statement::bindBlob}) {
        auto statement = connection_.prepare("SELECT ?");
        try {
            (statement.*bind)(large);
            ADD_FAILURE() << "was not refused";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), StoreError::Reason::refused);
            EXPECT_THAT(error.what(), HasSubstr("cannot keep a value of this size"));
            EXPECT_THAT(error.what(), testing::EndsWith("use a smaller one."));
        }
    }
    auto statement = connection_.prepare("SELECT ?"); // can be used again
    statement.bindText("small");
    ASSERT_TRUE(statement.step());
    EXPECT_EQ(statement.text(0), "small");
}

TEST_F(SqlTest, TheFirstNumberOfNoRowIsZero) {
    EXPECT_EQ(connection_.prepare("SELECT 7").firstNumber(), 7);
    EXPECT_EQ(connection_.prepare("SELECT 7 WHERE false").firstNumber(), 0);
}

} // namespace
} // namespace addressbook::test
