#include "frameworks/AddressBook/objc/record.h"

#include <algorithm>

using namespace addressbook;

// An array of records that makes each when it is asked for. A short list keeps them from then on, as every
// array does. A long one keeps those that were asked for of late, so that a walk through a whole address book
// does not end with all of it in memory; each record that it answers lives at least as long as the pool.
@interface ABRecordList : NSArray {
    void* _list;
}
- (id)initWithBook:(const BookPtr&)book places:(std::vector<Book::Place>)places;
@end

namespace {

// So many records a list keeps: each place has a slot, which it shares with others in a longer list.
constexpr std::size_t kSlots = 1024;

struct Slot {
    std::size_t index = 0;
    ABRecord* record = nil; // retained; nil where nobody asked yet
};

struct List {
    BookPtr book;
    std::shared_ptr<const Store> origin; // whose rows the places are
    std::vector<Book::Place> places;
    std::vector<Slot> slots;
};

} // namespace

@implementation ABRecordList

- (id)initWithBook:(const BookPtr&)book places:(std::vector<Book::Place>)places {
    if ((self = [super init]) != nil) {
        std::vector<Slot> slots(std::min(places.size(), kSlots));
        _list = new List{book, book->store(), std::move(places), std::move(slots)};
    }
    return self;
}

- (void)dealloc {
    if (auto* list = static_cast<List*>(_list)) {
        for (const Slot& slot : list->slots) {
            [slot.record release];
        }
        delete list;
    }
    [super dealloc];
}

- (NSUInteger)count {
    return static_cast<List*>(_list)->places.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    auto& list = *static_cast<List*>(_list);
    if (index >= list.places.size()) {
        [NSException raise:NSRangeException
                    format:@"There is no record %lu: the list has %lu", (unsigned long)index,
                           (unsigned long)list.places.size()];
    }
    Slot& slot = list.slots[index % kSlots];
    if (slot.record == nil || slot.index != index) {
        const auto& place = list.places[index];
        const LiveRecordPtr live =
            place.record ? place.record : reading([&] { return list.book->at(place.row, list.origin); });
        ABRecord* record = [recordFrom(list.book, live) retain];
        [slot.record autorelease]; // whoever asked for it may still use it
        slot = {index, record};
    }
    return slot.record;
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end

namespace addressbook {

NSArray* listFrom(const BookPtr& book, std::vector<Book::Place> places) {
    static Class const type = [ABRecordList class];
    return [[[type alloc] initWithBook:book places:std::move(places)] autorelease];
}

} // namespace addressbook
