#import <AddressBook/ABSearchElement.h>

#include "frameworks/AddressBook/objc/record.h"

using namespace addressbook;

@interface ABSearchElement (Internal)
- (id)initWithQuery:(Query)query;
- (const Query&)query;
@end

namespace addressbook {

const Query& queryOf(ABSearchElement* element) {
    return [element query];
}

ABSearchElement* elementFrom(Query query) {
    static Class const type = [ABSearchElement class];
    return [[[type alloc] initWithQuery:std::move(query)] autorelease];
}

} // namespace addressbook

@implementation ABSearchElement

+ (ABSearchElement*)searchElementForConjunction:(ABSearchConjunction)conjunction children:(NSArray*)children {
    if ([children count] == 0) {
        raiseInvalid(@"Joining searches needs at least one of them");
    }
    if (conjunction != kABSearchAnd && conjunction != kABSearchOr) {
        raiseInvalid([NSString stringWithFormat:@"There is no search conjunction %ld", (long)conjunction]);
    }
    Query::Compound compound;
    compound.join = static_cast<Query::Join>(conjunction);
    for (NSUInteger i = 0; i < [children count]; ++i) {
        id child = [children objectAtIndex:i];
        if (![child isKindOfClass:[ABSearchElement class]]) {
            raiseInvalid(@"Only searches can be joined");
        }
        compound.children.push_back(queryOf(child));
    }
    return elementFrom(Query{std::move(compound)});
}

- (void)dealloc {
    delete static_cast<Query*>(_query);
    [super dealloc];
}

- (BOOL)matchesRecord:(ABRecord*)record {
    requireArgument(record, @"There is no record to match with the search");
    return reading(
        [&] { return bookOf(record)->matches([self query], *liveRecordOf(record), currentTime()); });
}

@end

@implementation ABSearchElement (Internal)

- (id)initWithQuery:(Query)query {
    if ((self = [super init]) != nil) {
        _query = new Query(shared(std::move(query)));
    }
    return self;
}

- (const Query&)query {
    return *static_cast<Query*>(_query);
}

@end
