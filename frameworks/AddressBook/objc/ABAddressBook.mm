#import <AddressBook/ABAddressBook.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/change_notifier.h"
#include "frameworks/AddressBook/objc/record.h"
#include "frameworks/Foundation/locale.h"

using namespace addressbook;

namespace {

// The shared address book, once sharedAddressBook was called, and whether notifications of changes are
// posted, which is so from then on.
ABAddressBook* sharedInstance = nil;
bool notifying = false;

// Logs why the address book cannot be opened; once for each reason, not at every attempt.
void logFailure(const std::string& sentence) {
    static std::string last;
    if (sentence == last) {
        return;
    }
    last = sentence;
    NSLog(@"AddressBook: %@", stringFrom(sentence));
}

BookPtr openBook() {
    std::string failure;
    try {
        return Book::open();
    } catch (const StoreError& error) {
        failure = error.what();
    }
    logFailure(failure);
    return nullptr;
}

// Returns the framework's error code for a save that failed.
NSInteger codeOf(StoreError::Reason reason) {
    switch (reason) {
    case StoreError::Reason::readOnly:
        return ABPropertyReadOnlyError;
    case StoreError::Reason::refused:
        return ABPropertyValueValidationError;
    default:
        return ABAddRecordsError;
    }
}

// Returns the first items for a sentence, and how many more there are.
template <typename Items, typename Text>
std::string listed(const Items& items, const char* between, Text text) {
    constexpr std::size_t kNamed = 10;
    std::string list;
    for (std::size_t i = 0; i < std::min(items.size(), kNamed); ++i) {
        list += (i == 0 ? "" : between) + text(items[i]);
    }
    if (items.size() > kNamed) {
        list += " and " + std::to_string(items.size() - kNamed) + " more";
    }
    return list;
}

// Returns a group's name in quotes; its unique id when it has no name, or when it cannot be read.
std::string groupName(Book& book, const std::string& uid) {
    std::string name = uid;
    try {
        if (const LiveRecordPtr group = book.find(uid)) {
            if (const auto* text = book.value(*group, property::kGroupName).as<std::string>()) {
                name = *text;
            }
        }
    } catch (const StoreError&) { // the save has succeeded, so that this must not fail it
    }
    return '"' + name + '"';
}

// Returns sentences that say what a save left out; empty when it left out nothing.
std::string leftOutText(Book& book, const SaveResult& result) {
    std::string text;
    if (!result.missing.empty()) {
        text = "Everything else is saved, but these records were deleted by another program, and what was "
               "changed in them here is not saved: " +
               listed(result.missing, ", ", [](const std::string& uid) { return uid; }) + ".";
    }
    if (!result.circular.empty()) {
        text += text.empty() ? "Everything else is saved, but no group can contain itself: "
                             : " And no group can contain itself: ";
        text += listed(result.circular, "; ", [&](const MembershipChange& left) {
            const std::string group = groupName(book, left.group);
            const std::string member = groupName(book, left.member);
            return member + " was not put into " + group + ", because another program has put " + group +
                   " into " + member + ", itself or inside other groups; to have it, take " + group +
                   " out of " + member + " and try again";
        });
        text += ".";
    }
    return text;
}

NSString* readOnlyText(const Book& book) {
    return stringFrom(readOnlyError(book.file()).what());
}

void postChanges(ABAddressBook* book, const SaveResult& result) {
    if (notifying && result.change != 0) {
        [[NSNotificationCenter defaultCenter]
            postNotificationName:kABDatabaseChangedNotification
                          object:book
                        userInfo:changeInfo(result.inserted, result.updated, result.deleted)];
    }
}

} // namespace

namespace addressbook {

BookPtr sharedBook() {
    ABAddressBook* shared = [ABAddressBook sharedAddressBook];
    return shared ? [shared book] : nullptr;
}

} // namespace addressbook

@implementation ABAddressBook

+ (ABAddressBook*)sharedAddressBook {
    if (sharedInstance == nil) {
        notifying = true;
        sharedInstance = [[ABAddressBook alloc] init];
        if (sharedInstance != nil) {
            startNotifying(sharedInstance, *[sharedInstance book]);
        }
    }
    return sharedInstance;
}

+ (ABAddressBook*)addressBook {
    return [[[ABAddressBook alloc] init] autorelease];
}

- (id)init {
    if ((self = [super init]) == nil) {
        return nil;
    }
    const BookPtr book = openBook();
    if (!book) {
        [self release];
        return nil;
    }
    _book = new BookPtr(book);
    return self;
}

- (void)dealloc {
    delete static_cast<BookPtr*>(_book);
    [super dealloc];
}

// Returns NO for records of another address book object, which cannot be used with this one.
- (BOOL)owns:(ABRecord*)record {
    return [record book] == [self book];
}

- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search {
    requireArgument(search, @"A search of the address book needs a search element");
    auto places = reading([&] { return [self book]->search(queryOf(search), currentTime()); });
    return listFrom([self book], std::move(places));
}

- (BOOL)save {
    return [self saveAndReturnError:nullptr];
}

- (BOOL)saveAndReturnError:(NSError**)error {
    SaveResult result;
    std::string failure;
    NSInteger code = 0;
    const bool unsaved = [self hasUnsavedChanges];
    // A program that adds a record and saves may look only at the result of the save.
    if (!unsaved && [self book]->takeRefusal()) {
        return refuse(error, ABPropertyReadOnlyError, readOnlyText(*[self book]));
    }
    try {
        if (unsaved) {
            result = [self book]->save(currentTime());
        }
    } catch (const StoreError& refusal) {
        failure = refusal.what();
        code = codeOf(refusal.reason());
    }
    if (code != 0) {
        return refuse(error, code, stringFrom(failure));
    }
    if (unsaved) {
        postChanges(self, result);
        [self book]->noteLeftOut(leftOutText(*[self book], result));
    }
    if (error != nullptr) {
        if (const std::string leftOut = [self book]->takeLeftOut(); !leftOut.empty()) {
            refuse(error, ABAddRecordsError, stringFrom(leftOut));
        }
    }
    return YES;
}

- (BOOL)hasUnsavedChanges {
    return [self book]->changed();
}

- (ABPerson*)me {
    return (ABPerson*)recordFrom([self book], reading([&] { return [self book]->me(); }));
}

- (void)setMe:(ABPerson*)moi {
    if (moi == nil || [self owns:(ABRecord*)moi]) {
        [self book]->setMe(liveRecordOf((ABRecord*)moi));
    }
}

- (ABRecord*)recordForUniqueId:(NSString*)uniqueId {
    requireArgument(uniqueId, @"A record was asked for without a unique id");
    const std::string uid = textFrom(uniqueId);
    return recordFrom([self book], reading([&] { return [self book]->find(uid); }));
}

- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId {
    return [self recordClassFromUniqueId:uniqueId error:nullptr];
}

- (NSString*)recordClassFromUniqueId:(NSString*)uniqueId error:(NSError**)error {
    if (uniqueId == nil) {
        return nil;
    }
    const std::string uid = textFrom(uniqueId);
    const LiveRecordPtr live = reading([&] { return [self book]->find(uid); });
    if (!live) {
        refuse(error, ABPropertyValueValidationError,
               [NSString stringWithFormat:@"The address book has no record %@", uniqueId]);
        return nil;
    }
    return live->kind == Kind::group ? @"ABGroup" : @"ABPerson";
}

- (BOOL)addRecord:(ABRecord*)record {
    return [self addRecord:record error:nullptr];
}

- (BOOL)addRecord:(ABRecord*)record error:(NSError**)error {
    requireArgument(record, @"There is no record to add");
    if ([self book]->readOnly()) {
        [self book]->noteRefusal();
        return refuse(error, ABPropertyReadOnlyError, readOnlyText(*[self book]));
    }
    if (![self owns:record] || ![self book]->add([record liveRecord])) {
        return refuse(error, ABAddRecordsError,
                      @"The record cannot be added: it is in the address book already, or "
                      @"was deleted, or belongs to another one");
    }
    return YES;
}

- (BOOL)removeRecord:(ABRecord*)record {
    return [self removeRecord:record error:nullptr];
}

- (BOOL)removeRecord:(ABRecord*)record error:(NSError**)error {
    requireArgument(record, @"There is no record to remove");
    if ([self book]->readOnly()) {
        return refuse(error, ABPropertyReadOnlyError, readOnlyText(*[self book]));
    }
    if (![self owns:record] || !reading([&] { return [self book]->remove([record liveRecord]); })) {
        return refuse(error, ABRemoveRecordsError, @"The record is not in the address book");
    }
    return YES;
}

- (NSArray*)people {
    return listFrom([self book], reading([&] { return [self book]->records(Kind::person); }));
}

- (NSArray*)groups {
    return listFrom([self book], reading([&] { return [self book]->records(Kind::group); }));
}

- (NSString*)defaultCountryCode {
    return stringFrom(foundation::localeCountry());
}

- (NSInteger)defaultNameOrdering {
    return foundation::localeNamesLastFirst() ? kABLastNameFirst : kABFirstNameFirst;
}

@end

@implementation ABAddressBook (Internal)

- (const BookPtr&)book {
    return *static_cast<BookPtr*>(_book);
}

+ (void)closeSharedAddressBook {
    stopNotifying();
    [sharedInstance release];
    sharedInstance = nil;
}

@end
