// A CSV file of contacts. The people who are read can be written, and are then read as they were.

#include "frameworks/AddressBook/csv/layout.h"
#include "frameworks/AddressBook/csv/person.h"
#include "frameworks/AddressBook/csv/table.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"

#include <cstdint>
#include <sstream>

namespace {

using namespace addressbook;
using namespace addressbook::csv;

using People = std::vector<Person>;

const std::vector<PropertyDefinition> kOwn{
    {Kind::person, "Shoe size", static_cast<int>(Type::integer)},
    {Kind::person, "Boats", static_cast<int>(Type::string) + kMultiValue}};

// Returns the people in a file, as far as it can be read.
People peopleIn(const std::string& text, const std::string& charset, char separator, DateOrder order) {
    People people;
    std::istringstream stream(text);
    TableReader table(stream, charset, separator);
    const Row* header = table.next();
    if (header == nullptr) {
        return people;
    }
    std::vector<Column> columns;
    columns.reserve(header->cells.size());
    for (const std::string& name : header->cells) {
        columns.push_back(columnNamed(name, kOwn).value_or(Column()));
    }
    while (const Row* row = table.next()) {
        people.push_back(personFrom(*row, columns, kOwn, order));
    }
    return people;
}

std::string written(const People& people) {
    Layout layout(kOwn);
    for (const Person& person : people) {
        layout.measure(person.values);
    }
    std::string text = line(layout.headers());
    for (const Person& person : people) {
        text += line(layout.cells(person.id, person.values, person.groups));
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    // The first line has the separator, the order of dates and the character set; mostly it is empty.
    const std::string_view first = input.until('\n');
    const char separator = first.empty() ? '\0' : first[0];
    const DateOrder order = first.size() > 1 && first[1] == 'd' ? DateOrder::dayFirst : DateOrder::monthFirst;
    const std::string charset(first.size() > 2 ? first.substr(2) : "");
    try {
        const People people = peopleIn(std::string(input.rest()), charset, separator, order);
        const std::string once = written(people);
        fuzz::claim(written(peopleIn(once, "UTF-8", ',', DateOrder::monthFirst)) == once,
                    "people who were written, read and written are as before");
    } catch (const TableError&) {
        return 0; // a quote or a text without its end
    } catch (const std::invalid_argument&) {
        return 0; // no such character set
    }
    return 0;
}
