#include "tests/framework/support.h"

#include "frameworks/AddressBook/objc/record.h"

#include <cstdlib>

std::string text(id object) {
    NSData* bytes = [[object description] dataUsingEncoding:NSUTF8StringEncoding];
    return object ? std::string(static_cast<const char*>([bytes bytes]), [bytes length]) : "nil";
}

void AddressBookTest::SetUp() {
    ::setenv("ADDRESSBOOK_HOME", folder_.c_str(), 1);
    ::setenv("LC_ALL", "en_US.UTF-8", 1);
}

void AddressBookTest::TearDown() {
    [ABAddressBook closeSharedAddressBook];
}

void AddressBookTest::reopen() {
    ASSERT_TRUE([book() save]);
    [ABAddressBook closeSharedAddressBook];
}

ABPerson* AddressBookTest::person(NSString* first, NSString* last) {
    ABPerson* person = [[[ABPerson alloc] initWithAddressBook:book()] autorelease];
    [person setValue:first forProperty:kABFirstNameProperty];
    [person setValue:last forProperty:kABLastNameProperty];
    EXPECT_TRUE([book() addRecord:person]);
    return person;
}

ABGroup* AddressBookTest::group(NSString* name) {
    ABGroup* group = [[[ABGroup alloc] initWithAddressBook:book()] autorelease];
    [group setValue:name forProperty:kABGroupNameProperty];
    EXPECT_TRUE([book() addRecord:group]);
    return group;
}

ABMultiValue* AddressBookTest::list(std::vector<std::pair<NSString*, id>> labelsAndValues) {
    ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
    for (const auto& [label, value] : labelsAndValues) {
        EXPECT_NE([list addValue:value withLabel:label], nil);
    }
    return list;
}

std::vector<std::string> AddressBookTest::found(NSString* property, id value, ABSearchComparison comparison,
                                                NSString* label, NSString* key) {
    return names([book() recordsMatchingSearchElement:[ABPerson searchElementForProperty:property
                                                                                   label:label
                                                                                     key:key
                                                                                   value:value
                                                                              comparison:comparison]]);
}

std::vector<std::string> AddressBookTest::names(NSArray* people) {
    std::vector<std::string> names;
    for (NSUInteger i = 0; i < [people count]; ++i) {
        names.push_back(text([[people objectAtIndex:i] valueForProperty:kABFirstNameProperty]));
    }
    return names;
}
