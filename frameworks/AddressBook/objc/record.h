#pragma once

// What the framework's classes share: live records and their objects, the address book of the process, and
// failures of the store turned into what callers of the framework expect.

#include "frameworks/AddressBook/model/book.h"

#import <AddressBook/AddressBook.h>

namespace addressbook {

using BookPtr = std::shared_ptr<Book>;

// Returns the one object of this live record, autoreleased; nil for null.
ABRecord* recordFrom(const BookPtr& book, const LiveRecordPtr& live);
NSArray* recordsFrom(const BookPtr& book, const std::vector<LiveRecordPtr>& live);
// Returns a list whose records are made when they are asked for.
NSArray* listFrom(const BookPtr& book, std::vector<Book::Place> places);

// Return a record's live record, and its address book; null for nil.
LiveRecordPtr liveRecordOf(ABRecord* record);
BookPtr bookOf(ABRecord* record);

// Returns the address book of the process; null when it cannot be opened.
BookPtr sharedBook();

// Returns whether only the framework sets this property.
bool keptByFramework(std::string_view property);

// Convert between a search element and its query.
const Query& queryOf(ABSearchElement* element);
ABSearchElement* elementFrom(Query query);

// Sets [*error], unless it is null, and returns NO.
BOOL refuse(NSError** error, NSInteger code, NSString* sentence);

// Raises NSInvalidArgumentException.
[[noreturn]] void raiseInvalid(NSString* sentence);
// Raises NSInvalidArgumentException, with the sentence, for an argument that is nil.
void requireArgument(id argument, NSString* sentence);
// Raises NSGenericException: the address book could not be read.
[[noreturn]] void raiseUnreadable(const std::string& sentence);

// Runs [work], which reads the store; its StoreError is raised as an NSException with the same sentence.
template <typename Work>
auto reading(Work&& work) -> decltype(work()) {
    std::string failure;
    try {
        return work();
    } catch (const StoreError& error) {
        failure = error.what();
    }
    raiseUnreadable(failure);
}

} // namespace addressbook

@interface ABRecord (Internal)
- (id)initWithLiveRecord:(const addressbook::LiveRecordPtr&)live book:(const addressbook::BookPtr&)book;
- (const addressbook::LiveRecordPtr&)liveRecord;
- (const addressbook::BookPtr&)book;
@end

@interface ABAddressBook (Internal)
- (const addressbook::BookPtr&)book;
// Forgets the shared address book and ends its notifications: the next one that asks opens it again.
+ (void)closeSharedAddressBook;
@end
