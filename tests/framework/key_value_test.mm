// Key-value coding: sorting and filtering lists of records by the names of properties.

#include "tests/framework/support.h"

namespace {

class KeyValueTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        add(@"Ann", @"Wu", @"Acme");
        add(@"bob", @"Abel", nil);
        add(@"Cid", @"Moss", @"Zeta");
        add(@"Dan", nil, @"Acme");
    }
    void add(NSString* first, NSString* last, NSString* company) {
        [person(first, last) setValue:company forProperty:kABOrganizationProperty];
    }
    static NSArray* by(NSString* key, BOOL ascending) {
        return [NSArray arrayWithObject:[[[NSSortDescriptor alloc] initWithKey:key
                                                                     ascending:ascending] autorelease]];
    }
    std::vector<std::string> filtered(NSString* format) {
        NSPredicate* predicate = [NSPredicate predicateWithFormat:format];
        return names([[book() people] filteredArrayUsingPredicate:predicate]);
    }
    using Names = std::vector<std::string>;
};

TEST_F(KeyValueTest, ReadsAndSetsProperties) {
    ABPerson* one = [[book() people] objectAtIndex:0];
    EXPECT_TRUE([[one valueForKey:kABLastNameProperty] isEqual:@"Wu"]);
    [one setValue:@"Xu" forKey:kABLastNameProperty];
    EXPECT_TRUE([[one valueForProperty:kABLastNameProperty] isEqual:@"Xu"]);
    [one setValue:nil forKey:kABLastNameProperty];
    EXPECT_EQ([one valueForKey:kABLastNameProperty], nil);
    EXPECT_EQ([one valueForKey:kABNoteProperty], nil);
    EXPECT_TRUE([[one valueForKey:kABUIDProperty] isEqual:[one uniqueId]]);
    ABGroup* friends = group(@"Friends");
    EXPECT_TRUE([[friends valueForKey:kABGroupNameProperty] isEqual:@"Friends"]);
}

TEST_F(KeyValueTest, ReadsAccessorsAndAddedProperties) {
    ABPerson* one = [[book() people] objectAtIndex:0];
    EXPECT_TRUE([[one valueForKey:@"uniqueId"] isEqual:[one uniqueId]]);
    EXPECT_TRUE([[one valueForKey:@"displayName"] isEqual:@"Ann Wu"]);
    [ABPerson addPropertiesAndTypes:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1]
                                                                forKey:@"description"]];
    [one setValue:@"tall" forKey:@"description"];
    EXPECT_TRUE([[one valueForKey:@"description"] isEqual:@"tall"]);
    [one setValue:list({{kABHomeLabel, @"a@x"}, {kABWorkLabel, @"b@x"}}) forKey:kABEmailProperty];
    EXPECT_TRUE([[one valueForKeyPath:@"Email.count"] isEqual:[NSNumber numberWithInt:2]]);
}

TEST_F(KeyValueTest, RaisesForWhatIsNoKeyOrCannotBeSet) {
    ABPerson* one = [[book() people] objectAtIndex:0];
    EXPECT_TRUE([[raised([&] { [one valueForKey:@"Frist"]; }) name] isEqual:NSUndefinedKeyException]);
    EXPECT_TRUE(raised([&] { [one setValue:@"x" forKey:@"Frist"]; }));
    EXPECT_TRUE(raised([&] { [one valueForKey:kABGroupNameProperty]; }));
    EXPECT_EQ(text([raised([&] { [one setValue:@"x" forKey:kABUIDProperty]; }) reason]),
              "The property UID cannot be set");
    EXPECT_TRUE(raised([&] { [one setValue:@"x" forKey:kABBirthdayProperty]; }));
}

TEST_F(KeyValueTest, SortDescriptors) {
    for (const bool fromDisk : {false, true}) {
        if (fromDisk) {
            reopen();
        }
        NSArray* people = [book() people];
        EXPECT_EQ(names([people sortedArrayUsingDescriptors:by(kABFirstNameProperty, NO)]),
                  (Names{"bob", "Dan", "Cid", "Ann"}));
        NSSortDescriptor* company = [[[NSSortDescriptor alloc] initWithKey:kABOrganizationProperty
                                                                 ascending:YES] autorelease];
        NSSortDescriptor* name =
            [[[NSSortDescriptor alloc] initWithKey:kABFirstNameProperty
                                         ascending:YES
                                          selector:@selector(caseInsensitiveCompare:)] autorelease];
        NSMutableArray* sorted = [[people mutableCopy] autorelease];
        [sorted sortUsingDescriptors:[NSArray arrayWithObject:name]];
        EXPECT_EQ(names(sorted), (Names{"Ann", "bob", "Cid", "Dan"}));
        NSArray* both = [people sortedArrayUsingDescriptors:[NSArray arrayWithObjects:company, name, nil]];
        EXPECT_EQ(names(both), (Names{"bob", "Ann", "Dan", "Cid"})); // one without a company comes first
    }
}

TEST_F(KeyValueTest, Predicates) {
    for (const bool fromDisk : {false, true}) {
        if (fromDisk) {
            reopen();
        }
        EXPECT_EQ(filtered(@"Organization == 'Acme'"), (Names{"Ann", "Dan"}));
        EXPECT_EQ(filtered(@"First BEGINSWITH[c] 'B' OR Last == 'Moss'"), (Names{"bob", "Cid"}));
        EXPECT_EQ(filtered(@"Last == nil"), Names{"Dan"});
        EXPECT_EQ(filtered(@"Organization == 'Acme' AND displayName CONTAINS 'Wu'"), Names{"Ann"});
    }
    NSPredicate* predicate = [NSPredicate predicateWithFormat:@"%K LIKE[c] %@", kABLastNameProperty, @"*O*"];
    EXPECT_EQ(names([[book() people] filteredArrayUsingPredicate:predicate]), Names{"Cid"});
}

TEST_F(KeyValueTest, ListsOfValues) {
    NSArray* firsts = [[book() people] valueForKey:kABFirstNameProperty];
    EXPECT_EQ(text([firsts componentsJoinedByString:@","]), "Ann,bob,Cid,Dan");
}

} // namespace
