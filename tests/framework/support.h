#pragma once

// Support for the tests of the framework: an address book in a temporary folder, and short helper functions.

#include "frameworks/AddressBook/store/store.h"
#include "tests/support/raised.h"
#include "tests/support/temporary_folder.h"

#import <AddressBook/AddressBook.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// Whether the lambda raises NSInvalidArgumentException.
template <typename Work>
bool raisesInvalidArgument(Work work) {
    return [[raised(work) name] isEqual:NSInvalidArgumentException];
}

// Returns a readable text for any object; "nil" for nil.
std::string text(id object);

// A test with an empty address book in a temporary folder, and an autorelease pool around it.
class AddressBookTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    ABAddressBook* book() { return [ABAddressBook sharedAddressBook]; }
    // Saves, closes and opens the address book, so that what is read next comes from the disk.
    void reopen();
    // Returns another connection to the database, like that of another process.
    addressbook::Store store() { return addressbook::Store(folder_); }

    ABPerson* person(NSString* first, NSString* last);
    ABGroup* group(NSString* name);
    static NSNumber* number(double value) { return [NSNumber numberWithDouble:value]; }
    static ABMultiValue* list(std::vector<std::pair<NSString*, id>> labelsAndValues);

    // Returns the first names of the people that a search finds, in order.
    std::vector<std::string> found(NSString* property, id value, ABSearchComparison comparison,
                                   NSString* label = nil, NSString* key = nil);
    static std::vector<std::string> names(NSArray* people);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
};
