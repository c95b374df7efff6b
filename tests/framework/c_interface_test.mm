// The C functions: each is called, the ownership of its result is as its name says, and nothing leaks.

#undef NDEBUG // Foundation counts objects for those who look for errors
#include "tests/framework/support.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/NSDebug.h>
#include <cstring>

namespace {

class CInterfaceTest : public AddressBookTest {
  protected:
    void SetUp() override {
        AddressBookTest::SetUp();
        shared_ = ABGetSharedAddressBook();
        ASSERT_NE(shared_, nullptr);
    }
    void TearDown() override {
        for (CFTypeRef object : owned_) {
            CFRelease(object);
        }
        ABSetMe(shared_, nullptr);
        ABGetMe(shared_); // lets go of the one before
        AddressBookTest::TearDown();
    }
    // What a function with Create or Copy in its name answered, released at the end.
    template <typename Ref>
    Ref own(Ref object) {
        EXPECT_NE(object, nullptr);
        owned_.push_back(object);
        return object;
    }
    static CFStringRef string(NSString* text) { return (CFStringRef)text; }
    static std::string said(CFTypeRef object) { return text((id)object); }
    ABPersonRef newPerson(NSString* first) {
        ABPersonRef person = own(ABPersonCreate());
        EXPECT_TRUE(ABRecordSetValue(person, string(kABFirstNameProperty), first));
        EXPECT_TRUE(ABAddRecord(shared_, person));
        return person;
    }
    ABGroupRef newGroup(NSString* name) {
        ABGroupRef group = own(ABGroupCreate());
        EXPECT_TRUE(ABRecordSetValue(group, string(kABGroupNameProperty), name));
        EXPECT_TRUE(ABAddRecord(shared_, group));
        return group;
    }
    ABSearchElementRef first(NSString* name) {
        return own(
            ABPersonCreateSearchElement(string(kABFirstNameProperty), nullptr, nullptr, name, kABEqual));
    }

    ABAddressBookRef shared_ = nullptr;
    std::vector<CFTypeRef> owned_;
};

TEST_F(CInterfaceTest, TheAddressBook) {
    EXPECT_EQ((id)shared_, book());
    EXPECT_FALSE(ABHasUnsavedChanges(shared_));
    ABPersonRef ann = newPerson(@"Ann");
    EXPECT_FALSE(ABAddRecord(shared_, ann));
    EXPECT_TRUE(ABHasUnsavedChanges(shared_));
    EXPECT_TRUE(ABSave(shared_));
    EXPECT_EQ(ABGetMe(shared_), nullptr);
    ABSetMe(shared_, ann);
    EXPECT_EQ(ABGetMe(shared_), ann);

    CFStringRef uid = own(ABRecordCopyUniqueId(ann));
    EXPECT_EQ(own(ABCopyRecordForUniqueId(shared_, uid)), ann);
    EXPECT_EQ(said(own(ABCopyRecordTypeFromUniqueId(shared_, uid))), said(kABPersonRecordType));
    EXPECT_EQ(ABCopyRecordForUniqueId(shared_, CFSTR("nobody")), nullptr);
    EXPECT_EQ(ABCopyRecordTypeFromUniqueId(shared_, CFSTR("nobody")), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABCopyArrayOfAllPeople(shared_)), 0), ann);
    EXPECT_EQ(CFArrayGetCount(own(ABCopyArrayOfAllGroups(shared_))), 0);
    EXPECT_EQ(CFArrayGetCount(own(ABCopyArrayOfMatchingRecords(shared_, first(@"Ann")))), 1);
    EXPECT_EQ(said(own(ABCopyDefaultCountryCode(shared_))), "us");
    NSDictionary* address =
        [NSDictionary dictionaryWithObjectsAndKeys:@"Rome", kABAddressCityKey, @"00100", kABAddressZIPKey,
                                                   @"it", kABAddressCountryCodeKey, nil];
    EXPECT_EQ(said(own(ABCreateFormattedAddressFromDictionary(shared_, (CFDictionaryRef)address))),
              "00100 Rome");
    EXPECT_EQ(said(own(ABCopyLocalizedPropertyOrLabel(string(kABPhoneMobileLabel)))), "mobile");
    EXPECT_EQ(ABCopyLocalizedPropertyOrLabel(nullptr), nullptr);
    EXPECT_TRUE(ABRemoveRecord(shared_, ann));
    EXPECT_FALSE(ABRemoveRecord(shared_, ann));
}

TEST_F(CInterfaceTest, PropertiesOfATypeOfRecords) {
    NSDictionary* shoe = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:kABStringProperty]
                                                     forKey:@"Shoe"];
    const auto types = (CFDictionaryRef)shoe;
    EXPECT_EQ(ABAddPropertiesAndTypes(shared_, kABGroupRecordType, types), 1);
    EXPECT_EQ(ABAddPropertiesAndTypes(shared_, CFSTR("ABDog"), types), -1);
    EXPECT_EQ(ABTypeOfProperty(shared_, kABGroupRecordType, CFSTR("Shoe")), kABStringProperty);
    EXPECT_EQ(ABTypeOfProperty(shared_, kABPersonRecordType, CFSTR("Shoe")), kABErrorInProperty);
    EXPECT_EQ(ABTypeOfProperty(shared_, CFSTR("ABDog"), CFSTR("Shoe")), kABErrorInProperty);
    CFArrayRef names = own(ABCopyArrayOfPropertiesForRecordType(shared_, kABGroupRecordType));
    EXPECT_TRUE(CFArrayContainsValue(names, CFRangeMake(0, CFArrayGetCount(names)), CFSTR("Shoe")));
    EXPECT_EQ(CFArrayGetCount(own(ABCopyArrayOfPropertiesForRecordType(shared_, CFSTR("ABDog")))), 0);
    NSArray* gone = [NSArray arrayWithObject:@"Shoe"];
    EXPECT_EQ(ABRemoveProperties(shared_, kABPersonRecordType, (CFArrayRef)gone), 0);
    EXPECT_EQ(ABRemoveProperties(shared_, kABGroupRecordType, (CFArrayRef)gone), 1);
}

TEST_F(CInterfaceTest, Records) {
    ABPersonRef ann = newPerson(@"Ann");
    EXPECT_EQ(said(own(ABRecordCopyRecordType(ann))), "ABPerson");
    EXPECT_EQ(said(own(ABRecordCopyRecordType(newGroup(@"g")))), "ABGroup");
    EXPECT_EQ(said(own(ABRecordCopyValue(ann, string(kABFirstNameProperty)))), "Ann");
    EXPECT_EQ(ABRecordCopyValue(ann, string(kABLastNameProperty)), nullptr);
    EXPECT_FALSE(ABRecordSetValue(ann, string(kABUIDProperty), CFSTR("x")));
    EXPECT_TRUE(ABRecordRemoveValue(ann, string(kABFirstNameProperty)));
    EXPECT_EQ(ABRecordCopyValue(ann, string(kABFirstNameProperty)), nullptr);
    EXPECT_FALSE(ABRecordIsReadOnly(ann));
    const NSException* exception =
        raised([&] { ABRecordSetValue(ann, string(kABBirthdayProperty), CFSTR("soon")); });
    EXPECT_TRUE([[exception name] isEqual:NSInvalidArgumentException]);

    EXPECT_TRUE(ABRecordSetValue(ann, string(kABLastNameProperty), CFSTR("Wu")));
    CFDataRef card = own(ABPersonCopyVCardRepresentation(ann));
    ABPersonRef copy = own(ABPersonCreateWithVCardRepresentation(card));
    EXPECT_NE(copy, ann);
    CFDataRef junk = own(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>("junk"), 4));
    EXPECT_EQ(ABPersonCreateWithVCardRepresentation(junk), nullptr);
}

TEST_F(CInterfaceTest, GroupsAndSearches) {
    ABPersonRef ann = newPerson(@"Ann");
    ABGroupRef friends = newGroup(@"Friends");
    ABGroupRef close = newGroup(@"Close");
    EXPECT_TRUE(ABGroupAddMember(friends, ann));
    EXPECT_FALSE(ABGroupAddMember(friends, ann));
    EXPECT_TRUE(ABGroupAddGroup(friends, close));
    EXPECT_FALSE(ABGroupAddGroup(close, friends));
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABGroupCopyArrayOfAllMembers(friends)), 0), ann);
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABGroupCopyArrayOfAllSubgroups(friends)), 0), close);
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABGroupCopyParentGroups(close)), 0), friends);
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABPersonCopyParentGroups(ann)), 0), friends);

    ABMutableMultiValueRef mails = own(ABMultiValueCreateMutable());
    CFStringRef second = nullptr;
    EXPECT_TRUE(ABMultiValueAdd(mails, CFSTR("a@x"), CFSTR("one"), nullptr));
    EXPECT_TRUE(ABMultiValueAdd(mails, CFSTR("b@x"), CFSTR("two"), &second));
    own(second);
    EXPECT_TRUE(ABRecordSetValue(ann, string(kABEmailProperty), mails));
    EXPECT_TRUE(ABGroupSetDistributionIdentifier(friends, ann, string(kABEmailProperty), second));
    EXPECT_TRUE(
        CFEqual(own(ABGroupCopyDistributionIdentifier(friends, ann, string(kABEmailProperty))), second));

    ABSearchElementRef groups = own(
        ABGroupCreateSearchElement(string(kABGroupNameProperty), nullptr, nullptr, CFSTR("Close"), kABEqual));
    EXPECT_EQ(CFArrayGetValueAtIndex(own(ABCopyArrayOfMatchingRecords(shared_, groups)), 0), close);
    const void* children[] = {first(@"Ann"), first(@"Bob")};
    CFArrayRef both = own(CFArrayCreate(nullptr, children, 2, &kCFTypeArrayCallBacks));
    EXPECT_TRUE(
        ABSearchElementMatchesRecord(own(ABSearchElementCreateWithConjunction(kABSearchOr, both)), ann));
    EXPECT_FALSE(
        ABSearchElementMatchesRecord(own(ABSearchElementCreateWithConjunction(kABSearchAnd, both)), ann));
    EXPECT_TRUE(ABGroupRemoveGroup(friends, close));
    EXPECT_TRUE(ABGroupRemoveMember(friends, ann));
    EXPECT_FALSE(ABGroupRemoveMember(friends, ann));
}

TEST_F(CInterfaceTest, MultiValues) {
    ABMutableMultiValueRef list = own(ABMultiValueCreateMutable());
    CFStringRef last = nullptr;
    EXPECT_TRUE(ABMultiValueAdd(list, CFSTR("c"), CFSTR("lc"), &last));
    own(last);
    EXPECT_TRUE(ABMultiValueInsert(list, CFSTR("a"), CFSTR("la"), 0, nullptr));
    EXPECT_EQ(ABMultiValueCount(list), 2);
    EXPECT_EQ(ABMultiValueIndexForIdentifier(list, last), 1);
    EXPECT_EQ(ABMultiValueIndexForIdentifier(list, CFSTR("none")), kCFNotFound);
    EXPECT_TRUE(ABMultiValueSetPrimaryIdentifier(list, last));
    EXPECT_TRUE(CFEqual(own(ABMultiValueCopyPrimaryIdentifier(list)), last));
    EXPECT_TRUE(CFEqual(own(ABMultiValueCopyIdentifierAtIndex(list, 1)), last));
    EXPECT_TRUE(ABMultiValueReplaceValue(list, CFSTR("d"), 1));
    EXPECT_TRUE(ABMultiValueReplaceLabel(list, CFSTR("ld"), 1));
    ABMultiValueRef copy = own(ABMultiValueCreateCopy(list));
    EXPECT_EQ(said(own(ABMultiValueCopyValueAtIndex(copy, 1))), "d");
    EXPECT_EQ(said(own(ABMultiValueCopyLabelAtIndex(copy, 1))), "ld");
    EXPECT_EQ(ABMultiValuePropertyType(copy), kABMultiStringProperty);
    EXPECT_TRUE(ABMultiValueRemove(list, 0));
    EXPECT_EQ(ABMultiValueCount(list), 1);
    EXPECT_EQ(ABMultiValueCount(copy), 2);
    EXPECT_EQ(ABMultiValueCount(own(ABMultiValueCreateMutableCopy(copy))), 2);
    EXPECT_EQ(ABMultiValueCount(own(ABMultiValueCreate())), 0);
    EXPECT_TRUE(raised([&] { ABMultiValueRemove(list, 7); }));
}

struct Handed {
    int calls = 0;
    CFIndex tag = 0;
    std::string data;
};

void note(CFDataRef imageData, CFIndex tag, void* refcon) {
    auto* handed = static_cast<Handed*>(refcon);
    ++handed->calls;
    handed->tag = tag;
    handed->data = imageData ? std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(imageData)),
                                           static_cast<std::size_t>(CFDataGetLength(imageData)))
                             : "none";
    CFRunLoopStop(CFRunLoopGetCurrent());
}

TEST_F(CInterfaceTest, Pictures) {
    ABPersonRef ann = newPerson(@"Ann");
    EXPECT_EQ(ABPersonCopyImageData(ann), nullptr);
    EXPECT_TRUE(ABPersonSetImageData(ann, own(CFDataCreate(nullptr, (const UInt8*)"face", 4))));
    EXPECT_EQ(CFDataGetLength(own(ABPersonCopyImageData(ann))), 4);
    Handed cancelled;
    // The second comes to a loop that waits for nothing else any more.
    for (int round = 0; round < 2; ++round) {
        Handed handed;
        ABCancelLoadingImageDataForTag(ABBeginLoadingImageDataForClient(ann, note, &cancelled));
        const CFIndex tag = ABBeginLoadingImageDataForClient(ann, note, &handed);
        EXPECT_EQ(handed.calls, 0);
        const CFAbsoluteTime start = CFAbsoluteTimeGetCurrent();
        EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
        EXPECT_LT(CFAbsoluteTimeGetCurrent() - start, 20);
        EXPECT_EQ(handed.calls, 1);
        EXPECT_EQ(handed.tag, tag);
        EXPECT_EQ(handed.data, "face");
    }
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false), kCFRunLoopRunTimedOut);
    EXPECT_EQ(cancelled.calls, 0);
    EXPECT_TRUE(raised([&] { ABBeginLoadingImageDataForClient(ann, nullptr, nullptr); }));
}

void count(CFNotificationCenterRef, void* observer, CFStringRef name, const void*, CFDictionaryRef userInfo) {
    EXPECT_TRUE(CFEqual(name, (CFStringRef)kABDatabaseChangedNotification));
    auto inserted = (CFArrayRef)CFDictionaryGetValue(userInfo, kABInsertedRecords);
    *static_cast<CFIndex*>(observer) += CFArrayGetCount(inserted);
}

TEST_F(CInterfaceTest, Notifications) {
    CFIndex inserted = 0;
    CFNotificationCenterRef center = CFNotificationCenterGetLocalCenter();
    CFNotificationCenterAddObserver(center, &inserted, count, string(kABDatabaseChangedNotification), nullptr,
                                    CFNotificationSuspensionBehaviorDeliverImmediately);
    newPerson(@"Ann");
    EXPECT_TRUE(ABSave(shared_));
    EXPECT_EQ(inserted, 1);
    CFNotificationCenterRemoveObserver(center, &inserted, string(kABDatabaseChangedNotification), nullptr);
    newPerson(@"Bob");
    EXPECT_TRUE(ABSave(shared_));
    EXPECT_EQ(inserted, 1);
}

// What Create and Copy answer belongs to the caller alone where nobody else has it, and goes when it is
// released.
TEST_F(CInterfaceTest, CreateAndCopyAnswerAnOwnedObject) {
    ABPersonRef person = ABPersonCreate();
    EXPECT_EQ(CFGetRetainCount(person), 1);
    ABMutableMultiValueRef list = ABMultiValueCreateMutable();
    EXPECT_EQ(CFGetRetainCount(list), 1);
    CFStringRef identifier = nullptr;
    ABMultiValueAdd(list, CFSTR("a"), CFSTR("l"), &identifier);
    EXPECT_EQ(CFGetRetainCount(identifier), 2); // the list's and ours
    CFRelease(identifier);
    ABMultiValueRef copy = ABMultiValueCreateCopy(list);
    EXPECT_EQ(CFGetRetainCount(copy), 1);
    ABSearchElementRef element =
        ABPersonCreateSearchElement(string(kABFirstNameProperty), nullptr, nullptr, CFSTR("x"), kABEqual);
    EXPECT_EQ(CFGetRetainCount(element), 1);
    CFArrayRef found = ABCopyArrayOfMatchingRecords(shared_, element);
    EXPECT_EQ(CFGetRetainCount(found), 1);
    CFDataRef card = ABPersonCopyVCardRepresentation(person);
    EXPECT_EQ(CFGetRetainCount(card), 1);
    CFRelease(card);
    CFRelease(found);
    CFRelease(element);
    CFRelease(copy);
    CFRelease(list);
    CFRelease(person);
}

// A C program has no autorelease pool, so that released objects must be deallocated at once.
TEST_F(CInterfaceTest, NothingIsLeftOver) {
    newPerson(@"Ann");
    newGroup(@"Friends");
    ASSERT_TRUE(ABSave(shared_));
    for (CFTypeRef object : owned_) { // a record that lives keeps the list that was read last
        CFRelease(object);
    }
    owned_.clear();
    GSDebugAllocationActive(YES);
    Class const classes[] = {[ABPerson class],
                             [ABGroup class],
                             [ABMultiValue class],
                             [ABSearchElement class],
                             [ABMutableMultiValue class]};
    std::vector<int> before;
    for (Class each : classes) {
        before.push_back(GSDebugAllocationCount(each));
    }
    for (int round = 0; round < 10; ++round) {
        CFArrayRef people = ABCopyArrayOfAllPeople(shared_);
        auto ann = (ABPersonRef)CFArrayGetValueAtIndex(people, 0);
        CFArrayRef groups = ABCopyArrayOfAllGroups(shared_);
        auto friends = (ABGroupRef)CFArrayGetValueAtIndex(groups, 0);
        ABMutableMultiValueRef list = ABMultiValueCreateMutable();
        EXPECT_EQ(GSDebugAllocationCount([ABMutableMultiValue class]), before[4] + 1);
        ABMultiValueAdd(list, CFSTR("a"), CFSTR("l"), nullptr);
        ABRecordSetValue(ann, string(kABEmailProperty), list);
        CFRelease(list);
        auto mails = (ABMultiValueRef)ABRecordCopyValue(ann, string(kABEmailProperty));
        CFRelease(ABMultiValueCreateCopy(mails));
        CFRelease(ABMultiValueCreateMutableCopy(mails));
        CFRelease(mails);
        ABGroupAddMember(friends, ann);
        CFRelease(ABGroupCopyArrayOfAllMembers(friends));
        CFRelease(ABPersonCopyParentGroups(ann));
        ABSearchElementRef element =
            ABPersonCreateSearchElement(string(kABEmailProperty), nullptr, nullptr, CFSTR("a"), kABEqual);
        CFArrayRef found = ABCopyArrayOfMatchingRecords(shared_, element);
        EXPECT_EQ(CFArrayGetCount(found), 1);
        EXPECT_TRUE(ABSearchElementMatchesRecord(element, ann));
        CFRelease(found);
        CFRelease(element);
        ABGroupRemoveMember(friends, ann);
        ABRecordRemoveValue(ann, string(kABEmailProperty));
        CFRelease(groups);
        CFRelease(people);
        ABSave(shared_);
    }
    for (std::size_t i = 0; i < std::size(classes); ++i) {
        EXPECT_EQ(GSDebugAllocationCount(classes[i]), before[i]) << text(NSStringFromClass(classes[i]));
    }
    GSDebugAllocationActive(NO);
}

} // namespace
