#pragma once

// What the framework's classes share: records and their cards, the address book of the process, and failures
// of the store turned into what callers of the framework expect.

#include "frameworks/AddressBook/model/book.h"

#import <AddressBook/AddressBook.h>

namespace addressbook {

using BookPtr = std::shared_ptr<Book>;

// The one object of this card while it lives, autoreleased; nil for no card.
ABRecord* recordFrom(const BookPtr& book, const LiveRecordPtr& live);
NSArray* recordsFrom(const BookPtr& book, const std::vector<LiveRecordPtr>& live);
// A list whose records are made when they are asked for.
NSArray* listFrom(const BookPtr& book, std::vector<Book::Place> places);

// The card of a record, null for nil; its address book.
LiveRecordPtr liveRecordOf(ABRecord* record);
BookPtr bookOf(ABRecord* record);

// The address book of the process; null when it cannot be opened.
BookPtr sharedBook();

// Whether only the framework sets this property.
bool keptByFramework(std::string_view property);

// The query of a search element; and the other way.
const Query& queryOf(ABSearchElement* element);
ABSearchElement* elementFrom(Query query);

// Sets [*error], when the caller wants one, and answers NO.
BOOL refuse(NSError** error, NSInteger code, NSString* sentence);

[[noreturn]] void raiseInvalid(NSString* sentence);
// Raises NSInvalidArgumentException, with the sentence, for an argument that is nil.
void requireArgument(id argument, NSString* sentence);
[[noreturn]] void raiseUnreadable(const std::string& sentence);

// Runs [work], which reads the store; a failure is raised as an NSException with the store's
// sentence.
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
