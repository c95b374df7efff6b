#include "tests/framework/support.h"

#include "frameworks/AddressBook/objc/record.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

using addressbook::Kind;

// Counts the notifications of saves and keeps the last.
@interface SaveListener : NSObject {
  @public
    int _count;
    NSDictionary* _info;
    id _sender;
}
- (void)saved:(NSNotification*)notification;
@end

@implementation SaveListener
- (id)init {
    if ((self = [super init]) != nil) {
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(saved:)
                                                     name:kABDatabaseChangedNotification
                                                   object:nil];
    }
    return self;
}
- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [_info release];
    [super dealloc];
}
- (void)saved:(NSNotification*)notification {
    ++_count;
    _sender = [notification object];
    [_info release];
    _info = [[notification userInfo] retain];
}
@end

namespace {

// When this is the super-user, continues as a user to whom file modes apply.
class AsNobody {
  public:
    explicit AsNobody(const std::vector<std::filesystem::path>& files) {
        if (::geteuid() != 0) {
            return;
        }
        for (const auto& file : files) {
            EXPECT_EQ(::chown(file.c_str(), kNobody, kNobody), 0);
        }
        EXPECT_EQ(::setresuid(kNobody, kNobody, 0), 0);
        changed_ = true;
    }
    ~AsNobody() {
        if (changed_ && ::setresuid(0, 0, 0) != 0) {
            std::abort();
        }
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;
    bool changed_ = false;
};

class SharedAddressBookTest : public AddressBookTest {
  protected:
    static std::string only(NSArray* array) {
        return [array count] == 1 ? text([array objectAtIndex:0]) : text(array);
    }
};

TEST_F(SharedAddressBookTest, IsOnePerProcess) {
    EXPECT_NE(book(), nil);
    EXPECT_EQ(book(), [ABAddressBook sharedAddressBook]);
    EXPECT_NE([ABAddressBook addressBook], nil);
    EXPECT_NE([ABAddressBook addressBook], book());
}

TEST_F(SharedAddressBookTest, StartsEmpty) {
    EXPECT_EQ([[book() people] count], 0u);
    EXPECT_EQ([[book() groups] count], 0u);
    EXPECT_NE([book() people], nil);
    EXPECT_EQ([book() me], nil);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_TRUE([book() save]);
    NSError* error = nil;
    EXPECT_TRUE([book() saveAndReturnError:&error]);
    EXPECT_EQ(error, nil);
}

TEST_F(SharedAddressBookTest, ShowsRecordsBeforeAndAfterTheyAreSaved) {
    ABPerson* one = person(@"Ann", @"Lee");
    ABGroup* friends = group(@"Friends");
    NSString* uid = [[[one uniqueId] retain] autorelease];
    EXPECT_TRUE([book() hasUnsavedChanges]);
    EXPECT_EQ(store().count(Kind::person), 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ([book() recordForUniqueId:uid], one);
        EXPECT_EQ(text([book() recordClassFromUniqueId:uid]), "ABPerson");
        EXPECT_EQ(text([book() recordClassFromUniqueId:[friends uniqueId]]), "ABGroup");
        EXPECT_EQ([[book() people] objectAtIndex:0], one);
        EXPECT_EQ([[book() groups] objectAtIndex:0], friends);
        EXPECT_TRUE([book() save]);
        EXPECT_FALSE([book() hasUnsavedChanges]);
    }
    EXPECT_EQ(store().count(Kind::person), 1);
    reopen();
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:kABLastNameProperty]), "Lee");
}

TEST_F(SharedAddressBookTest, DoesNotKnowWhatWasNotAdded) {
    ABPerson* one = [[[ABPerson alloc] initWithAddressBook:book()] autorelease];
    EXPECT_EQ([book() recordForUniqueId:[one uniqueId]], nil);
    EXPECT_EQ([book() recordClassFromUniqueId:[one uniqueId]], nil);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ([book() recordForUniqueId:@"nonsense"], nil);
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() recordForUniqueId:nil]; }));
    EXPECT_EQ([book() recordClassFromUniqueId:nil], nil);
    NSError* error = nil;
    EXPECT_EQ([book() recordClassFromUniqueId:@"nonsense" error:&error], nil);
    EXPECT_NE(error, nil);
}

TEST_F(SharedAddressBookTest, AddsARecordOnce) {
    ABPerson* one = person(@"Ann", @"Lee");
    NSError* error = nil;
    EXPECT_FALSE([book() addRecord:one error:&error]);
    EXPECT_EQ([error code], ABAddRecordsError);
    EXPECT_TRUE([book() save]);
    EXPECT_FALSE([book() addRecord:one]);
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() addRecord:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() addRecord:nil error:&error]; }));
    ABAddressBook* other = [ABAddressBook addressBook];
    EXPECT_FALSE([other addRecord:[[[ABPerson alloc] initWithAddressBook:book()] autorelease]]);
}

TEST_F(SharedAddressBookTest, RemovedRecordsAreGoneAtOnce) {
    ABPerson* stored = person(@"Stored", @"X");
    ASSERT_TRUE([book() save]);
    ABPerson* added = person(@"Added", @"X");
    NSArray* before = [book() people];
    EXPECT_TRUE([book() removeRecord:stored]);
    EXPECT_TRUE([book() removeRecord:added]);
    for (ABPerson* gone : {stored, added}) {
        EXPECT_EQ([book() recordForUniqueId:[gone uniqueId]], nil);
        EXPECT_EQ([book() recordClassFromUniqueId:[gone uniqueId]], nil);
        NSError* error = nil;
        EXPECT_FALSE([book() removeRecord:gone error:&error]);
        EXPECT_EQ([error code], ABRemoveRecordsError);
    }
    EXPECT_EQ([[book() people] count], 0u);
    EXPECT_TRUE(found(kABLastNameProperty, @"X", kABEqual).empty());
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() removeRecord:nil]; }));
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() removeRecord:nil error:nullptr]; }));
    EXPECT_EQ([before count], 2u);
    EXPECT_EQ(names(before), (std::vector<std::string>{"Stored", "Added"}));
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(store().count(Kind::person), 0);
    EXPECT_EQ(text([stored valueForProperty:kABFirstNameProperty]), "Stored"); // whoever holds it can read it
    EXPECT_FALSE([book() addRecord:stored]);
    EXPECT_TRUE([book() addRecord:added]);
}

TEST_F(SharedAddressBookTest, ARemovedRecordCanStillBeReadByItsHolder) {
    NSString* uid = [person(@"Ann", @"Lee") uniqueId];
    reopen();
    ABRecord* one = [book() recordForUniqueId:uid]; // nothing of it was read yet
    ASSERT_TRUE([book() removeRecord:one]);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Ann");
    EXPECT_TRUE([[one uniqueId] isEqual:uid]);
}

TEST_F(SharedAddressBookTest, ARemovalCanBeTakenBack) {
    ABPerson* one = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    [one setValue:@"Changed" forProperty:kABFirstNameProperty];
    ASSERT_TRUE([book() removeRecord:one]);
    EXPECT_TRUE([book() addRecord:one]);
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:kABFirstNameProperty]), "Changed");
}

TEST_F(SharedAddressBookTest, ListsRecordsInTheOrderOfAdding) {
    for (NSString* name : {@"c", @"a", @"b"}) {
        person(name, @"X");
    }
    ASSERT_TRUE([book() save]);
    [[[book() people] objectAtIndex:0] setValue:@"C" forProperty:kABFirstNameProperty];
    person(@"0", @"X");
    const std::vector<std::string> order{"C", "a", "b", "0"};
    EXPECT_EQ(names([book() people]), order);
    EXPECT_EQ(found(kABLastNameProperty, @"X", kABEqual), order);
    reopen();
    EXPECT_EQ(names([book() people]), order);
    EXPECT_EQ(found(kABLastNameProperty, @"X", kABEqual), order);
}

TEST_F(SharedAddressBookTest, ListsBehaveLikeArrays) {
    person(@"a", @"X");
    ASSERT_TRUE([book() save]);
    person(@"b", @"X");
    NSArray* people = [book() people];
    EXPECT_EQ([people objectAtIndex:0], [people objectAtIndex:0]);
    EXPECT_TRUE([[[raised([&] { [people objectAtIndex:2]; }) name] description] isEqual:NSRangeException]);
    EXPECT_EQ([[[people copy] autorelease] count], 2u);
    NSMutableArray* more = [[people mutableCopy] autorelease];
    [more addObject:@"x"];
    EXPECT_EQ([more count], 3u);
    EXPECT_EQ([people indexOfObject:[people lastObject]], 1u);
    NSEnumerator* all = [people objectEnumerator];
    EXPECT_EQ([all nextObject], [people objectAtIndex:0]);
    EXPECT_EQ([[people subarrayWithRange:NSMakeRange(1, 1)] lastObject], [people lastObject]);
}

TEST_F(SharedAddressBookTest, HasOneObjectPerRecordWhileItLives) {
    NSString* uid = [[[person(@"Ann", @"Lee") uniqueId] retain] autorelease];
    reopen();
    ABRecord* first = nil;
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        first = [[book() recordForUniqueId:uid] retain];
        EXPECT_EQ([[book() people] objectAtIndex:0], first);
        EXPECT_EQ(found(kABFirstNameProperty, @"Ann", kABEqual).size(), 1u);
        EXPECT_EQ([book() recordForUniqueId:uid], first);
        [pool release];
    }
    EXPECT_EQ([first retainCount], 1u); // nobody else held it
    [first setValue:@"Bea" forProperty:kABFirstNameProperty];
    [first release];
    // The object is gone; what was changed is not.
    EXPECT_EQ(text([[book() recordForUniqueId:uid] valueForProperty:kABFirstNameProperty]), "Bea");
    EXPECT_TRUE([book() hasUnsavedChanges]);
}

TEST_F(SharedAddressBookTest, WritesOnlyWhatChanged) {
    ABPerson* one = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    [one setValue:@"Ann" forProperty:kABFirstNameProperty];
    EXPECT_FALSE([book() hasUnsavedChanges]);

    // Another process changes one property while this one has another unsaved.
    [one setValue:@"Here" forProperty:kABNicknameProperty];
    addressbook::ChangeSet elsewhere;
    elsewhere.records.push_back({[[one uniqueId] UTF8String], Kind::person, false, {{"Note", "There"}}});
    store().save(elsewhere);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(text([one valueForProperty:kABNicknameProperty]), "Here");
    EXPECT_EQ(text([one valueForProperty:kABNoteProperty]), "There");
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Ann");
}

TEST_F(SharedAddressBookTest, SeesWhatOthersSaved) {
    ABPerson* one = person(@"Ann", @"Lee");
    ABPerson* two = person(@"Bob", @"Lee");
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Ann");
    addressbook::ChangeSet elsewhere;
    elsewhere.records.push_back({[[one uniqueId] UTF8String], Kind::person, false, {{"First", "Cid"}}});
    elsewhere.removed.push_back([[two uniqueId] UTF8String]);
    const std::string added = addressbook::newUid(Kind::person);
    elsewhere.records.push_back({added, Kind::person, true, {{"First", "New"}}});
    store().save(elsewhere);
    EXPECT_EQ(names([book() people]), (std::vector<std::string>{"Cid", "New"}));
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Cid");
    EXPECT_EQ([book() recordForUniqueId:[two uniqueId]], nil);
    EXPECT_FALSE([book() removeRecord:two]);
}

TEST_F(SharedAddressBookTest, DropsChangesOfARecordThatAnotherDeleted) {
    ABPerson* one = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    [one setValue:@"Bea" forProperty:kABFirstNameProperty];
    addressbook::ChangeSet elsewhere;
    elsewhere.removed.push_back([[one uniqueId] UTF8String]);
    store().save(elsewhere);
    EXPECT_TRUE([book() save]);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ([book() recordForUniqueId:[one uniqueId]], nil);
    EXPECT_EQ([[book() people] count], 0u);
}

TEST_F(SharedAddressBookTest, FindsARecordThatAnotherBroughtBack) {
    ABPerson* one = person(@"Ann", @"Lee");
    const std::string uid = text([one uniqueId]);
    ASSERT_TRUE([book() save]);
    [book() removeRecord:one];
    person(@"Bob", @"Lee");
    ASSERT_TRUE([book() save]);
    addressbook::ChangeSet elsewhere;
    elsewhere.records.push_back({uid, Kind::person, true, {{"First", "Again"}}});
    store().save(elsewhere);
    EXPECT_EQ([book() recordForUniqueId:[one uniqueId]], one);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Again");
    EXPECT_EQ(names([book() people]), (std::vector<std::string>{"Bob", "Again"}));
    EXPECT_EQ([[book() people] lastObject], one);
    EXPECT_TRUE([book() removeRecord:one]);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(store().count(Kind::person), 1);
}

TEST_F(SharedAddressBookTest, AListOutlivesItsRecords) {
    ABPerson* one = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    NSArray* people = [[[ABAddressBook addressBook] people] retain];
    [book() removeRecord:one];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ([people count], 1u);
    EXPECT_TRUE([[people objectAtIndex:0] isKindOfClass:[ABPerson class]]);
    EXPECT_EQ([[people objectAtIndex:0] valueForProperty:kABFirstNameProperty], nil);
    [people release];
}

TEST_F(SharedAddressBookTest, AListKnowsTheIdsOfRecordsDeletedHere) {
    NSString* uid = [[[person(@"Ann", @"Lee") uniqueId] retain] autorelease];
    reopen();
    NSArray* people = [book() people];
    NSAutoreleasePool* removing = [[NSAutoreleasePool alloc] init];
    ASSERT_TRUE([book() removeRecord:[book() recordForUniqueId:uid]]);
    ASSERT_TRUE([book() save]);
    [removing release]; // nobody holds the record any more
    EXPECT_TRUE([[[people objectAtIndex:0] uniqueId] isEqual:uid]);
    EXPECT_FALSE([book() removeRecord:[people objectAtIndex:0]]);
}

TEST_F(SharedAddressBookTest, KnowsItsOwner) {
    ABPerson* one = person(@"Ann", @"Lee");
    [book() setMe:one];
    EXPECT_EQ([book() me], one);
    NSString* uid = [one uniqueId];
    reopen();
    EXPECT_TRUE([[[book() me] uniqueId] isEqual:uid]);
    [book() setMe:[[[ABPerson alloc] initWithAddressBook:book()] autorelease]]; // not in the book
    EXPECT_TRUE([[[book() me] uniqueId] isEqual:uid]);
    [book() setMe:nil];
    EXPECT_EQ([book() me], nil);
    EXPECT_TRUE([book() hasUnsavedChanges]);
    reopen();
    EXPECT_EQ([book() me], nil);
    [book() setMe:(ABPerson*)[book() recordForUniqueId:uid]];
    ASSERT_TRUE([book() save]);
    [book() removeRecord:[book() me]];
    EXPECT_EQ([book() me], nil);
    reopen();
    EXPECT_EQ([book() me], nil);
}

TEST_F(SharedAddressBookTest, AnnouncesWhatItSaved) {
    SaveListener* listener = [[[SaveListener alloc] init] autorelease];
    ABPerson* one = person(@"Ann", @"Lee");
    EXPECT_EQ(listener->_count, 0);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(listener->_count, 1);
    EXPECT_EQ(listener->_sender, book());
    EXPECT_EQ(only([listener->_info objectForKey:kABInsertedRecords]), text([one uniqueId]));
    EXPECT_EQ([listener->_info count], 1u);
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(listener->_count, 1);
    [one setValue:@"Bea" forProperty:kABFirstNameProperty];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(only([listener->_info objectForKey:kABUpdatedRecords]), text([one uniqueId]));
    [book() removeRecord:one];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(only([listener->_info objectForKey:kABDeletedRecords]), text([one uniqueId]));
    EXPECT_EQ(listener->_count, 3);
}

TEST_F(SharedAddressBookTest, OnlyReadsWhatItMayOnlyRead) {
    NSAutoreleasePool* writing = [[NSAutoreleasePool alloc] init];
    ABPerson* one = person(@"Ann", @"Lee");
    NSString* uid = [[one uniqueId] retain];
    EXPECT_FALSE([one isReadOnly]);
    ASSERT_TRUE([book() save]);
    const auto file = store().file();
    [ABAddressBook closeSharedAddressBook];
    [writing release]; // closes the database: no record holds it any more
    [uid autorelease];
    ASSERT_EQ(::chmod(file.c_str(), 0400), 0);
    ASSERT_EQ(::chmod(folder_.c_str(), 0500), 0);
    const AsNobody nobody({folder_, file});
    ABRecord* same = [book() recordForUniqueId:uid];
    EXPECT_TRUE([same isReadOnly]);
    EXPECT_EQ(text([same valueForProperty:kABFirstNameProperty]), "Ann");
    NSError* error = nil;
    EXPECT_FALSE([same setValue:@"B" forProperty:kABFirstNameProperty error:&error]);
    EXPECT_EQ([error code], ABPropertyReadOnlyError);
    EXPECT_FALSE([book() removeRecord:same error:&error]);
    EXPECT_EQ([error code], ABPropertyReadOnlyError);
    EXPECT_FALSE([book() addRecord:[[[ABPerson alloc] init] autorelease]]);
    EXPECT_FALSE([(ABPerson*)same setImageData:[NSData data]]);
    [book() setMe:(ABPerson*)same];
    EXPECT_FALSE([book() saveAndReturnError:&error]);
    EXPECT_EQ([error code], ABPropertyReadOnlyError);
    EXPECT_NE([[error localizedDescription] length], 0u);
    [ABAddressBook closeSharedAddressBook];
}

TEST_F(SharedAddressBookTest, KeepsChangesThatCouldNotBeSaved) {
    ABPerson* one = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    [one setValue:@"Bea" forProperty:kABFirstNameProperty];
    ABPerson* two = person(@"Cid", @"Lee");
    ABGroup* friends = group(@"Friends");
    [friends addMember:one];
    // Another process adds a record with the new record's unique id.
    addressbook::ChangeSet taken;
    const std::string uid = [[two uniqueId] UTF8String];
    taken.records.push_back({uid, Kind::person, true, {}});
    store().save(taken);

    NSError* error = nil;
    EXPECT_FALSE([book() saveAndReturnError:&error]);
    EXPECT_TRUE([[error domain] isEqual:ABAddressBookErrorDomain]);
    EXPECT_NE([[error localizedDescription] length], 0u);
    EXPECT_TRUE([book() hasUnsavedChanges]);
    EXPECT_EQ([error code], ABPropertyValueValidationError);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Bea");
    taken.records.clear();
    taken.removed.push_back(uid);
    store().save(taken);

    ASSERT_TRUE([book() saveAndReturnError:&error]);
    EXPECT_EQ(text([one valueForProperty:kABFirstNameProperty]), "Bea");
    EXPECT_EQ(names([friends members]), std::vector<std::string>{"Bea"});
    EXPECT_EQ([book() recordForUniqueId:[two uniqueId]], two);
}

TEST_F(SharedAddressBookTest, KnowsTheUsersCountry) {
    EXPECT_EQ(text([book() defaultCountryCode]), "us");
    EXPECT_EQ([book() defaultNameOrdering], kABFirstNameFirst);
    ::setenv("LC_ALL", "ja_JP.UTF-8", 1);
    EXPECT_EQ(text([book() defaultCountryCode]), "jp");
    EXPECT_EQ([book() defaultNameOrdering], kABLastNameFirst);
}

TEST_F(SharedAddressBookTest, RaisesForASearchOfNothing) {
    EXPECT_TRUE(raisesInvalidArgument([&] { [book() recordsMatchingSearchElement:nil]; }));
}

} // namespace
