#include "frameworks/AddressBook/objc/record.h"

#include <algorithm>

using namespace addressbook;

// An array of records that makes each record when it is first accessed. It retains up to kSlots of them: a
// short list keeps all, as any array does, a long one those accessed last, so that a walk through a whole
// address book does not load all of it into memory. Every record that it returns lives at least until the
// autorelease pool is drained.
@interface ABRecordList : NSArray {
    void* _list;
}
- (id)initWithBook:(const BookPtr&)book places:(std::vector<Book::Place>)places;
@end

namespace {

// The number of records that a list retains. Each index has a slot, which several indexes share in a longer
// list.
constexpr std::size_t kSlots = 1024;

struct Slot {
    std::size_t index = 0;
    ABRecord* record = nil; // retained; nil when the slot is unused
};

struct List {
    BookPtr book;
    std::shared_ptr<const Store> origin; // the store to which the rows belong
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
        [slot.record autorelease]; // the caller that got it may still use it
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
