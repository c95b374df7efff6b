#include "record.h"

using namespace addressbook;

// An array of records that makes each when it is asked for, and keeps it from then on as every array does.
@interface ABRecordList : NSArray {
    void* _list;
}
- (id)initWithBook:(const BookPtr&)book kind:(Kind)kind places:(std::vector<Book::Place>)places;
@end

namespace {

struct List {
    BookPtr book;
    int edition;
    Kind kind;
    std::vector<Book::Place> places;
    std::vector<ABRecord*> made; // retained, or nil where nobody asked yet
};

} // namespace

@implementation ABRecordList

- (id)initWithBook:(const BookPtr&)book kind:(Kind)kind places:(std::vector<Book::Place>)places {
    if ((self = [super init]) != nil) {
        std::vector<ABRecord*> made(places.size(), nil);
        _list = new List{book, book->edition(), kind, std::move(places), std::move(made)};
    }
    return self;
}

- (void)dealloc {
    if (auto* list = static_cast<List*>(_list)) {
        for (ABRecord* record : list->made)
            [record release];
        delete list;
    }
    [super dealloc];
}

- (NSUInteger)count {
    return static_cast<List*>(_list)->places.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    auto& list = *static_cast<List*>(_list);
    if (index >= list.places.size())
        [NSException raise:NSRangeException
                    format:@"There is no record %lu: the list has %lu", (unsigned long)index,
                           (unsigned long)list.places.size()];
    if (list.made[index] == nil) {
        const auto& place = list.places[index];
        const CardPtr card = place.card
                                 ? place.card
                                 : reading([&] { return list.book->at(place.row, list.kind, list.edition); });
        list.made[index] = [recordFrom(list.book, card) retain];
    }
    return list.made[index];
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

@end

namespace addressbook {

NSArray* listFrom(const BookPtr& book, Kind kind, std::vector<Book::Place> places) {
    return [[[ABRecordList alloc] initWithBook:book kind:kind places:std::move(places)] autorelease];
}

} // namespace addressbook
