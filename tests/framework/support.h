#pragma once

// What the framework's tests share: an address book of their own in a temporary folder, and short ways to say
// things.

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

// Readable text of any object; "nil".
std::string text(id object);

// Each test has an empty address book in a folder of its own, and an autorelease pool around it.
class AddressBookTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    ABAddressBook* book() { return [ABAddressBook sharedAddressBook]; }
    // Saves, closes and opens the address book: what is read next comes from the disk.
    void reopen();
    // Another connection to the same database, as another process has it.
    addressbook::Store store() { return addressbook::Store(folder_); }

    ABPerson* person(NSString* first, NSString* last);
    ABGroup* group(NSString* name);
    static NSNumber* number(double value) { return [NSNumber numberWithDouble:value]; }
    static ABMultiValue* list(std::vector<std::pair<NSString*, id>> labelsAndValues);

    // First names of what a search of people finds, in order.
    std::vector<std::string> found(NSString* property, id value, ABSearchComparison comparison,
                                   NSString* label = nil, NSString* key = nil);
    static std::vector<std::string> names(NSArray* people);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
};
