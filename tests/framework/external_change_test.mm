// Saves of another process: the notifications in this process, and their effect on its objects and unsaved
// changes.

#include "tests/framework/change_support.h"

#include "frameworks/AddressBook/objc/record.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <unistd.h>

using addressbook::Kind;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Counts the notifications of this process's own saves.
@interface OwnListener : NSObject {
  @public
    int _count;
}
@end

@implementation OwnListener
- (void)saved:(NSNotification*)notification {
    (void)notification;
    ++_count;
}
@end

namespace {

using Told = std::vector<std::string>;

class ExternalChangeTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        ASSERT_NE(book(), nil);
        listener_ = [[ExternalListener alloc] init];
        other_ = std::make_unique<OtherProcess>();
    }
    void TearDown() override {
        other_.reset();
        [ABAddressBook closeSharedAddressBook]; // nobody is told any more
        [listener_ release];
        AddressBookTest::TearDown();
    }
    std::string other(const std::string& order) { return (*other_)(order); }
    // A person whom the other process adds, and all notifications so far.
    std::string stranger(const std::string& first) {
        const std::string uid = addressbook::newUid(Kind::person);
        other("insert " + uid + " " + first);
        EXPECT_THAT([listener_ wait:1], ElementsAre("+" + uid));
        return uid;
    }
    ABRecord* record(const std::string& uid) {
        return [book() recordForUniqueId:[NSString stringWithUTF8String:uid.c_str()]];
    }
    static std::string first(ABRecord* record) {
        return text([record valueForProperty:kABFirstNameProperty]);
    }
    static std::string last(ABRecord* record) { return text([record valueForProperty:kABLastNameProperty]); }
    static std::string idOf(ABRecord* record) { return text([record uniqueId]); }
    // Returns the text of the error that a successful save gives; "" without one.
    std::string saveWithError() {
        NSError* error = nil;
        EXPECT_TRUE([book() saveAndReturnError:&error]);
        return error != nil ? text([error localizedDescription]) : "";
    }
    std::vector<std::string> everybody() { return names([book() people]); }

    ExternalListener* listener_ = nil;
    std::unique_ptr<OtherProcess> other_;
};

TEST_F(ExternalChangeTest, IsToldOncePerSave) {
    const std::string ann = stranger("Ann");
    EXPECT_EQ([listener_ sender], book());
    EXPECT_FALSE([listener_ wasToldOnThisThread]);
    const std::string bob = addressbook::newUid(Kind::person);
    const std::string cid = addressbook::newUid(Kind::person);
    const std::string friends = addressbook::newUid(Kind::group);
    other("insert " + bob + " Bob;insert " + cid + " Cid;insert " + friends + " Friends;update " + ann +
          " Last Lee");
    other("join " + friends + " " + bob);
    other("delete " + ann + ";delete " + cid + ";update " + bob + " First Bo");
    other("delete " + friends);
    EXPECT_THAT([listener_ wait:4],
                ElementsAre("+" + bob + "+" + cid + "+" + friends + "~" + ann, "~" + friends,
                            "~" + bob + "-" + ann + "-" + cid, "-" + friends));
    EXPECT_THAT(everybody(), ElementsAre("Bo"));
}

TEST_F(ExternalChangeTest, OfNoRecordSaysThatAnythingMayHaveChanged) {
    const std::string ann = stranger("Ann");
    other("me " + ann);
    other("define nickname2");
    EXPECT_THAT([listener_ wait:2], ElementsAre("?", "?"));
    EXPECT_EQ(idOf([book() me]), ann);
    EXPECT_EQ([ABPerson typeOfProperty:@"nickname2"], kABStringProperty);
}

TEST_F(ExternalChangeTest, APropertyIsDefinedOnce) {
    [ABPerson
        addPropertiesAndTypes:[NSDictionary dictionaryWithObject:[NSNumber numberWithInt:kABStringProperty]
                                                          forKey:@"Shoe"]];
    other("define Shoe");
    ASSERT_TRUE([listener_ comes:1]);
    const auto known = [&] {
        NSMutableArray* names = [[[ABPerson properties] mutableCopy] autorelease];
        const auto all = [names count];
        [names removeObject:@"Shoe"];
        return all - [names count];
    };
    EXPECT_EQ(known(), 1u);
    EXPECT_FALSE([book() hasUnsavedChanges]);
}

TEST_F(ExternalChangeTest, ABurstIsToldInOrder) {
    Told uids;
    std::string order = "burst 1000";
    for (int i = 0; i < 7; ++i) {
        uids.push_back(stranger("x"));
        order += " " + uids.back();
    }
    other(order);
    Told expected;
    for (std::size_t i = 1; i <= 1000; ++i) {
        expected.push_back("~" + uids[i % uids.size()]);
    }
    EXPECT_EQ([listener_ wait:1000], expected);
    EXPECT_EQ(first(record(uids[1000 % 7])), "1000");
}

TEST_F(ExternalChangeTest, IsToldSoon) {
    const std::string ann = stranger("Ann");
    for (int i = 0; i < 20; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        other("update " + ann + " First " + std::to_string(i));
        ASSERT_TRUE([listener_ comes:static_cast<std::size_t>(i) + 1]);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
    }
}

TEST_F(ExternalChangeTest, OwnSavesAreToldAsOwnOnly) {
    OwnListener* own = [[[OwnListener alloc] init] autorelease];
    [[NSNotificationCenter defaultCenter] addObserver:own
                                             selector:@selector(saved:)
                                                 name:kABDatabaseChangedNotification
                                               object:nil];
    ABPerson* ann = person(@"Ann", @"Lee");
    ASSERT_TRUE([book() save]);
    // A second address book object of this process is no other process.
    ABAddressBook* second = [[[ABAddressBook alloc] init] autorelease];
    ABRecord* same = [second recordForUniqueId:[ann uniqueId]];
    ASSERT_TRUE([same setValue:@"Eve" forProperty:kABFirstNameProperty]);
    ASSERT_TRUE([second save]);
    [book() setMe:ann];
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(own->_count, 3);
    const std::string bob = stranger("Bob"); // the first that the listener hears of
    EXPECT_EQ(own->_count, 3);
    [[NSNotificationCenter defaultCenter] removeObserver:own];
    EXPECT_EQ(first(ann), "Eve");
}

TEST_F(ExternalChangeTest, TwoProcessesThatBothSave) {
    const std::string theirs = stranger("x");
    other_->begin("burst 200 " + theirs);
    ABPerson* mine = person(@"0", @"Lee");
    for (int i = 0; i < 100; ++i) {
        [mine setValue:[NSString stringWithFormat:@"%d", i] forProperty:kABFirstNameProperty];
        ASSERT_TRUE([book() save]);
        EXPECT_NE(first(record(theirs)), "nil");
    }
    other_->answer();
    EXPECT_EQ([listener_ wait:200], Told(200, "~" + theirs));
    EXPECT_EQ(first(record(theirs)), "200");
    EXPECT_EQ(other("get " + idOf(mine) + " First"), "99");
    EXPECT_EQ(store().lastChange(), 301);
}

TEST_F(ExternalChangeTest, KeepsWhatIsNotSavedHere) {
    const std::string ann = stranger("Ann");
    ABRecord* held = record(ann);
    EXPECT_EQ(first(held), "Ann");
    ASSERT_TRUE([held setValue:@"Mine" forProperty:kABFirstNameProperty]);
    other("update " + ann + " First Theirs;update " + ann + " Last Lee");
    EXPECT_THAT([listener_ wait:1], ElementsAre("~" + ann));
    // Nothing but the record itself is asked.
    EXPECT_EQ(last(held), "Lee");
    EXPECT_EQ(first(held), "Mine");
    EXPECT_THAT(found(kABFirstNameProperty, @"Mine", kABEqual), ElementsAre("Mine"));
    ASSERT_TRUE([book() save]);
    EXPECT_EQ(other("get " + ann + " First"), "Mine");
    EXPECT_EQ(other("get " + ann + " Last"), "Lee");
}

TEST_F(ExternalChangeTest, ShowsInRecordsThatAreHeld) {
    const std::string ann = stranger("Ann");
    ABRecord* held = record(ann);
    EXPECT_EQ(first(held), "Ann");
    for (int i = 0; i < 5; ++i) {
        other("update " + ann + " First Ann" + std::to_string(i));
        ASSERT_TRUE([listener_ comes:static_cast<std::size_t>(i) + 1]);
        EXPECT_EQ(first(held), "Ann" + std::to_string(i));
    }
}

TEST_F(ExternalChangeTest, DeletesARecordThatIsHeld) {
    const std::string ann = stranger("Ann");
    ABRecord* held = record(ann);
    EXPECT_EQ(first(held), "Ann");
    other("delete " + ann);
    EXPECT_THAT([listener_ wait:1], ElementsAre("-" + ann));
    EXPECT_EQ(first(held), "Ann");
    EXPECT_FALSE([book() removeRecord:held]);
    EXPECT_EQ(record(ann), nil);
    EXPECT_FALSE([book() hasUnsavedChanges]);
}

TEST_F(ExternalChangeTest, DeletesARecordThatIsChangedHere) {
    const std::string ann = stranger("Ann");
    const std::string bob = stranger("Bob");
    ABRecord* held = record(ann);
    ASSERT_TRUE([held setValue:@"Mine" forProperty:kABFirstNameProperty]);
    ASSERT_TRUE([record(bob) setValue:@"Mine too" forProperty:kABFirstNameProperty]);
    other("update " + ann + " Last Lee;delete " + bob);
    other("delete " + ann);
    EXPECT_THAT([listener_ wait:2], ElementsAre("~" + ann + "-" + bob, "-" + ann));
    EXPECT_EQ(first(held), "Mine");
    EXPECT_EQ(record(ann), nil);
    EXPECT_THAT(everybody(), IsEmpty());
    EXPECT_THAT(found(kABFirstNameProperty, @"Mine", kABEqual), IsEmpty());
    EXPECT_TRUE([book() hasUnsavedChanges]);
    // Brought back before the save, it has them again.
    other("insert " + ann + " Back");
    EXPECT_THAT([listener_ wait:1], ElementsAre("+" + ann));
    EXPECT_EQ(record(ann), held);
    EXPECT_EQ(first(held), "Mine");
    EXPECT_THAT(everybody(), ElementsAre("Mine"));
    EXPECT_TRUE([book() save]);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ(other("get " + ann + " First"), "Mine");
}

TEST_F(ExternalChangeTest, DeletesARecordThatIsRemovedHere) {
    const std::string ann = stranger("Ann");
    ABRecord* held = record(ann);
    ASSERT_TRUE([book() removeRecord:held]);
    other("delete " + ann);
    EXPECT_THAT([listener_ wait:1], ElementsAre("-" + ann));
    EXPECT_THAT(everybody(), IsEmpty());
    EXPECT_FALSE([book() addRecord:held]);
    EXPECT_FALSE([book() hasUnsavedChanges]);
}

TEST_F(ExternalChangeTest, DeletesTheOwnerChosenHere) {
    const std::string ann = stranger("Ann");
    const std::string bob = stranger("Bob");
    [book() setMe:(ABPerson*)record(ann)];
    other("delete " + ann + ";me " + bob);
    EXPECT_THAT([listener_ wait:1], ElementsAre("-" + ann));
    EXPECT_THAT(saveWithError(), HasSubstr(ann));
    EXPECT_EQ(idOf([book() me]), bob);
}

TEST_F(ExternalChangeTest, DeletesAMemberChosenHere) {
    const std::string ann = stranger("Ann");
    const std::string bob = stranger("Bob");
    ABGroup* friends = group(@"Friends");
    for (const std::string& uid : {ann, bob}) {
        ASSERT_TRUE([friends addMember:(ABPerson*)record(uid)]);
    }
    other("delete " + ann);
    EXPECT_THAT([listener_ wait:1], ElementsAre("-" + ann));
    EXPECT_THAT(saveWithError(), AllOf(HasSubstr("deleted by another program"), HasSubstr(ann)));
    EXPECT_THAT(names([friends members]), ElementsAre("Bob"));
    EXPECT_EQ(saveWithError(), "");
}

TEST_F(ExternalChangeTest, PutsAGroupIntoOneThatIsPutIntoItHere) {
    const std::string ann = stranger("Ann");
    ABGroup* family = group(@"Family");
    ABGroup* friends = group(@"Friends");
    ASSERT_TRUE([book() save]);
    ASSERT_TRUE([friends addSubgroup:family]);
    ASSERT_TRUE([friends addMember:(ABPerson*)record(ann)]);
    ASSERT_TRUE([record(ann) setValue:@"Mine" forProperty:kABFirstNameProperty]);
    other("join " + idOf(family) + " " + idOf(friends));
    EXPECT_THAT([listener_ wait:1], ElementsAre("~" + idOf(family)));
    EXPECT_EQ([[friends parentGroups] count], 1u); // both show until one is saved
    EXPECT_EQ([[family parentGroups] count], 1u);
    EXPECT_EQ(
        saveWithError(),
        "Everything else is saved, but no group can contain itself: \"Family\" was not put into \"Friends\", "
        "because another program has put \"Friends\" into \"Family\", itself or inside other groups; to have "
        "it, take \"Friends\" out of \"Family\" and try again.");
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ(other("get " + ann + " First"), "Mine");
    EXPECT_THAT(names([friends members]), ElementsAre("Mine"));
    EXPECT_EQ([[friends subgroups] count], 0u);
    EXPECT_EQ([[family subgroups] objectAtIndex:0], friends);
    EXPECT_EQ(saveWithError(), ""); // told once
    // What the sentence advises.
    ASSERT_TRUE([family removeSubgroup:friends]);
    ASSERT_TRUE([friends addSubgroup:family]);
    EXPECT_EQ(saveWithError(), "");
    EXPECT_EQ([[friends subgroups] objectAtIndex:0], family);
}

TEST_F(ExternalChangeTest, MembersAreThereOnce) {
    const std::string ann = stranger("Ann");
    const std::string bob = stranger("Bob");
    ABGroup* friends = group(@"Friends");
    [friends addMember:(ABPerson*)record(bob)];
    ASSERT_TRUE([book() save]);
    EXPECT_TRUE([friends addMember:(ABPerson*)record(ann)]);
    EXPECT_TRUE([friends removeMember:(ABPerson*)record(bob)]);
    other("join " + idOf(friends) + " " + ann + ";leave " + idOf(friends) + " " + bob);
    ASSERT_TRUE([listener_ comes:1]);
    EXPECT_THAT(names([friends members]), ElementsAre("Ann"));
    EXPECT_EQ([[(ABPerson*)record(ann) parentGroups] count], 1u);
    EXPECT_TRUE([friends addMember:(ABPerson*)record(bob)]);
    EXPECT_TRUE([friends removeMember:(ABPerson*)record(ann)]);
    EXPECT_THAT(names([friends members]), ElementsAre("Bob"));
    ASSERT_TRUE([book() save]);
    EXPECT_THAT(names([friends members]), ElementsAre("Bob"));
}

TEST_F(ExternalChangeTest, IsToldOnlyOnceTheSharedAddressBookWasAskedFor) {
    [ABAddressBook closeSharedAddressBook];
    ABAddressBook* alone = [[[ABAddressBook alloc] init] autorelease];
    const std::string ann = addressbook::newUid(Kind::person);
    other("insert " + ann + " Ann");
    EXPECT_EQ([[alone people] count], 1u);
    ASSERT_NE(book(), nil);
    stranger("Bob"); // the first that the listener hears of
}

TEST_F(ExternalChangeTest, AnObserverThatRaisesDisturbsNobody) {
    [listener_ raise];
    const std::string ann = stranger("Ann");
    other("update " + ann + " First A");
    EXPECT_THAT([listener_ wait:1], ElementsAre("~" + ann));
}

TEST_F(ExternalChangeTest, ByTheCommandLineTool) {
    const auto cards = folder_ / "two.vcf";
    std::ofstream(cards) << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann\r\nFN:Ann Lee\r\nEND:VCARD\r\n"
                            "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Bob\r\nFN:Bob Lee\r\nEND:VCARD\r\n";
    const std::string command =
        std::string(ADDRESSBOOK_PROGRAM) + " import " + cards.string() + " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const Told told = [listener_ wait:1];
    EXPECT_THAT(everybody(), ElementsAre("Ann", "Bob"));
    EXPECT_THAT(told, ElementsAre("+" + idOf([[book() people] objectAtIndex:0]) + "+" +
                                  idOf([[book() people] objectAtIndex:1])));
}

TEST_F(ExternalChangeTest, AnotherFileInTheBooksPlace) {
    const std::string ann = stranger("Ann");
    const std::string bob = stranger("Bob");
    const std::string cid = stranger("Cid");
    NSArray* before = [book() people];
    ABRecord* held = record(bob);
    EXPECT_EQ(first(held), "Bob");
    ASSERT_TRUE([held setValue:@"Mine" forProperty:kABLastNameProperty]);
    // Makes a book in which Bob has Ann's row.
    const auto file = store().file();
    const auto elsewhere = folder_ / "elsewhere";
    {
        addressbook::Store newer(elsewhere);
        addressbook::ChangeSet changes;
        changes.records.push_back({bob, Kind::person, true, {{"First", "Robert"}}});
        newer.save(changes);
    }
    for (const char* part : {"", "-wal", "-shm"}) {
        std::filesystem::remove(file.string() + part);
    }
    std::filesystem::rename(elsewhere / "AddressBook.db", file);
    EXPECT_THAT([listener_ wait:1], ElementsAre("?"));
    EXPECT_EQ(first(held), "Robert");
    EXPECT_EQ(last(held), "Mine");
    EXPECT_THAT(everybody(), ElementsAre("Robert"));
    EXPECT_EQ(first([before objectAtIndex:0]), "nil");
    EXPECT_TRUE([book() save]);
    EXPECT_EQ(text([[[book() people] objectAtIndex:0] valueForProperty:kABLastNameProperty]), "Mine");
    EXPECT_EQ(store().values(1).at("Last"), addressbook::Value("Mine"));
    // The other process noticed as well, when it next saved.
    other_->begin("update " + bob + " First Bobby");
    EXPECT_EQ(other_->answer(), "");
    EXPECT_NE(other_->end(), 0);
}

// Each in a process of its own.
class ProcessEndTest : public ExternalChangeTest {
  protected:
    void SetUp() override {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        AddressBookTest::SetUp();
    }
    void TearDown() override { AddressBookTest::TearDown(); }
};

} // namespace

// An observer that does something bad on the notifier's thread.
@interface BadObserver : NSObject {
  @public
    int _entered;
    bool _exits;
}
@end

@implementation BadObserver
- (void)changed:(NSNotification*)notification {
    (void)notification;
    __atomic_store_n(&_entered, 1, __ATOMIC_SEQ_CST);
    if (_exits) {
        std::exit(3);
    }
    [NSThread sleepForTimeInterval:60];
}
@end

namespace {

// Waits until the bad observer was notified of a save.
void engage(bool exits) {
    if ([ABAddressBook sharedAddressBook] == nil) {
        std::_Exit(9);
    }
    BadObserver* observer = [[BadObserver alloc] init];
    observer->_exits = exits;
    [[NSNotificationCenter defaultCenter] addObserver:observer
                                             selector:@selector(changed:)
                                                 name:kABDatabaseChangedExternallyNotification
                                               object:nil];
    OtherProcess other;
    other("insert " + addressbook::newUid(Kind::person) + " Ann");
    while (__atomic_load_n(&observer->_entered, __ATOMIC_SEQ_CST) == 0 || exits) {
        ::usleep(1000);
    }
}

TEST_F(ProcessEndTest, WithTheWatchAtRest) {
    EXPECT_EXIT(
        {
            [ABAddressBook sharedAddressBook];
            std::exit(2);
        },
        testing::ExitedWithCode(2), "");
}

TEST_F(ProcessEndTest, WhileAnObserverIsAtWork) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EXIT(
        {
            engage(false);
            std::exit(2);
        },
        testing::ExitedWithCode(2), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST_F(ProcessEndTest, ByAnObserver) {
    EXPECT_EXIT(engage(true), testing::ExitedWithCode(3), "");
}

} // namespace
