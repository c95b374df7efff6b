// Lists whose records are first accessed after another program has changed the address book.

#include "tests/framework/change_support.h"

#include "frameworks/AddressBook/objc/record.h"

#include <cstdlib>
#include <gmock/gmock.h>

using addressbook::Kind;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class RecordListTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        ASSERT_NE(book(), nil);
        listener_ = [[ExternalListener alloc] init];
        other_ = std::make_unique<OtherProcess>();
        (*other_)("insert " + ann_ + " Ann;insert " + ben_ + " Ben;insert " + crew_ + " Crew");
        [listener_ wait:1];
    }
    void TearDown() override {
        other_.reset();
        [ABAddressBook closeSharedAddressBook]; // nobody is told any more
        [listener_ release];
        AddressBookTest::TearDown();
    }

    // Searches people and groups at once: everybody called Ann, and the group.
    NSArray* annAndCrew() {
        ABSearchElement* ann = [ABPerson searchElementForProperty:kABFirstNameProperty
                                                            label:nil
                                                              key:nil
                                                            value:@"Ann"
                                                       comparison:kABEqual];
        ABSearchElement* crew = [ABGroup searchElementForProperty:kABGroupNameProperty
                                                            label:nil
                                                              key:nil
                                                            value:@"Crew"
                                                       comparison:kABEqual];
        ABSearchElement* either =
            [ABSearchElement searchElementForConjunction:kABSearchOr
                                                children:[NSArray arrayWithObjects:ann, crew, nil]];
        NSArray* found = [book() recordsMatchingSearchElement:either];
        EXPECT_EQ([found count], 2U);
        return found;
    }
    static std::string idAt(NSArray* list, NSUInteger index) {
        return text([[list objectAtIndex:index] uniqueId]);
    }
    static std::string noteAt(NSArray* list, NSUInteger index) {
        return text([[list objectAtIndex:index] valueForProperty:kABNoteProperty]);
    }
    static bool noteIn(ABRecord* record, NSString* note) {
        return [record setValue:note forProperty:kABNoteProperty];
    }
    // Returns the text of the error that a successful save gives; "" without one.
    std::string saveWithError() {
        NSError* error = nil;
        EXPECT_TRUE([book() saveAndReturnError:&error]);
        return error != nil ? text([error localizedDescription]) : "";
    }
    // Runs the program addressbook, and waits for the notification of its save.
    void run(const std::string& command) {
        const std::string line = std::string(ADDRESSBOOK_PROGRAM) + " " + command + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(line.c_str()), 0) << command;
    }

    const std::string ann_ = addressbook::newUid(Kind::person);
    const std::string ben_ = addressbook::newUid(Kind::person);
    const std::string crew_ = addressbook::newUid(Kind::group);
    ExternalListener* listener_ = nil;
    std::unique_ptr<OtherProcess> other_;
};

TEST_F(RecordListTest, KeepsTheIdAndTheClassOfDeletedRecords) {
    NSArray* first = annAndCrew();
    NSArray* second = annAndCrew();
    NSArray* groups = [book() groups];
    (*other_)("delete " + ann_ + ";delete " + crew_);
    for (NSArray* list : {first, second, first}) {
        EXPECT_EQ(idAt(list, 0), ann_);
        EXPECT_TRUE([[list objectAtIndex:0] isMemberOfClass:[ABPerson class]]);
        EXPECT_EQ(idAt(list, 1), crew_);
        EXPECT_TRUE([[list objectAtIndex:1] isMemberOfClass:[ABGroup class]]);
    }
    EXPECT_EQ([first objectAtIndex:0], [second objectAtIndex:0]);
    EXPECT_EQ([groups objectAtIndex:0], [first objectAtIndex:1]);
    EXPECT_EQ([[[groups objectAtIndex:0] members] count], 0U);
    EXPECT_EQ([book() recordForUniqueId:[[first objectAtIndex:0] uniqueId]], nil);
}

// A long list does not hold all that it has answered.
TEST_F(RecordListTest, AnswersADeletedRecordAgainWhenItIsLong) {
    constexpr NSUInteger kPeople = 2000;
    std::string order;
    for (NSUInteger i = 0; i < kPeople; ++i) {
        order += "insert " + addressbook::newUid(Kind::person) + " Eva;";
    }
    order.pop_back();
    (*other_)(order);
    NSArray* people = [book() people];
    ASSERT_EQ([people count], kPeople + 2);
    (*other_)("delete " + ann_ + ";delete " + ben_);
    for (int time = 0; time < 2; ++time) {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        EXPECT_EQ(idAt(people, 0), ann_);
        EXPECT_EQ(idAt(people, 1), ben_);
        EXPECT_EQ(text([[people objectAtIndex:1024] valueForProperty:kABFirstNameProperty]), "Eva");
        [people objectAtIndex:1025];
        [pool release];
    }
}

TEST_F(RecordListTest, ChangesToDeletedRecordsAreToldByTheNextSaveThatAsks) {
    NSArray* list = annAndCrew();
    (*other_)("delete " + ann_ + ";delete " + crew_);
    EXPECT_TRUE(noteIn([list objectAtIndex:0], @"lost"));
    EXPECT_TRUE([(ABGroup*)[list objectAtIndex:1] addMember:(ABPerson*)[[book() people] objectAtIndex:0]]);
    EXPECT_TRUE(noteIn([[book() people] objectAtIndex:0], @"kept"));
    EXPECT_TRUE([book() hasUnsavedChanges]);
    EXPECT_TRUE([book() save]);
    EXPECT_FALSE([book() hasUnsavedChanges]);
    EXPECT_EQ((*other_)("get " + ben_ + " Note"), "kept");
    EXPECT_THAT(saveWithError(), AllOf(HasSubstr("deleted by another program"), HasSubstr(ann_),
                                       HasSubstr(crew_), Not(HasSubstr(ben_))));
    EXPECT_EQ(saveWithError(), "") << "told once";
    EXPECT_TRUE([[list objectAtIndex:0] setImageData:[NSData data]]);
    EXPECT_THAT(saveWithError(), HasSubstr(ann_)) << "changed again";
}

TEST_F(RecordListTest, HasTheRecordsOfARestoredBook) {
    const std::string backup = "'" + (folder_ / "backup.db").string() + "'";
    run("backup " + backup);
    const std::string dee = addressbook::newUid(Kind::person);
    const std::string board = addressbook::newUid(Kind::group);
    (*other_)("insert " + dee + " Dee;insert " + board + " Board;update " + ann_ + " Note after");
    [listener_ wait:1];
    NSArray* people = [book() people];
    NSArray* groups = [book() groups];
    other_.reset(); // which would save in the old book
    run("restore " + backup);
    EXPECT_THAT([listener_ wait:1], ElementsAre("?"));
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(idAt(people, 0), ann_);
        EXPECT_EQ(noteAt(people, 0), "nil");
        EXPECT_EQ(idAt(people, 2), dee);
        EXPECT_EQ(idAt(groups, 0), crew_);
        EXPECT_EQ(text([[groups objectAtIndex:0] displayName]), "Crew");
        EXPECT_EQ(idAt(groups, 1), board);
        EXPECT_TRUE([[groups objectAtIndex:1] isMemberOfClass:[ABGroup class]]);
    }
    EXPECT_TRUE(noteIn([people objectAtIndex:0], @"kept"));
    EXPECT_TRUE(noteIn([people objectAtIndex:2], @"lost"));
    EXPECT_THAT(saveWithError(), AllOf(HasSubstr(dee), Not(HasSubstr(ann_))));
    EXPECT_EQ([book() recordForUniqueId:[[people objectAtIndex:2] uniqueId]], nil);
    other_ = std::make_unique<OtherProcess>();
    EXPECT_EQ((*other_)("get " + ann_ + " Note"), "kept");
}

} // namespace
