// Names that are given as a whole.

#include "frameworks/AddressBook/vcard/full_name.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

struct Row {
    std::string name, title, first, last, suffix;
};

TEST(FullNameTest, Table) {
    const Row rows[] = {
        {"Ida", "", "Ida", "", ""},
        {"Ida Berg", "", "Ida", "Berg", ""},
        {"Ida Maria Berg", "", "Ida Maria", "Berg", ""},
        {"Berg, Ida Maria", "", "Ida Maria", "Berg", ""},
        {"von der Heide, Ida", "", "Ida", "von der Heide", ""},
        {"Ida von der Heide", "", "Ida", "von der Heide", ""},
        {"Juan Carlos de la Cruz", "", "Juan Carlos", "de la Cruz", ""},
        {"Juan de la Cruz Garcia", "", "Juan", "de la Cruz Garcia", ""},
        {"Ludwig van Beethoven", "", "Ludwig", "van Beethoven", ""},
        {"Vincent Van Gogh", "", "Vincent", "Van Gogh", ""},
        {"Van Morrison", "", "Van", "Morrison", ""},
        {"van Gogh", "", "", "van Gogh", ""},
        {"Dr. Ida Berg", "Dr.", "Ida", "Berg", ""},
        {"Prof. Dr. Ida von Berg", "Prof. Dr.", "Ida", "von Berg", ""},
        {"Berg, Dr. Ida", "Dr.", "Ida", "Berg", ""},
        {"Dr. Berg", "Dr.", "", "Berg", ""},
        {"Dr.", "", "Dr.", "", ""},
        {"Ida Berg PhD", "", "Ida", "Berg", "PhD"},
        {"Ole Berg, Jr.", "", "Ole", "Berg", "Jr."},
        {"Mr. Ole Berg Jr., MD, PhD", "Mr.", "Ole", "Berg", "Jr., MD, PhD"},
        {"", "", "", "", ""},
        {" , ", "", "", "", ""},
        {"\xE8\xA1\xA8", "", "\xE8\xA1\xA8", "", ""},
    };
    for (const Row& row : rows) {
        const NameParts parts = splitFullName(row.name);
        EXPECT_EQ(parts.title, row.title) << row.name;
        EXPECT_EQ(parts.first, row.first) << row.name;
        EXPECT_EQ(parts.last, row.last) << row.name;
        EXPECT_EQ(parts.suffix, row.suffix) << row.name;
    }
}

} // namespace
} // namespace addressbook::vcard
