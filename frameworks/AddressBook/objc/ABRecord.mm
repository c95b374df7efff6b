#import <AddressBook/ABMultiValue.h>
#import <AddressBook/ABRecord.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/date_components.h"
#include "frameworks/AddressBook/objc/property_name.h"
#include "frameworks/AddressBook/objc/property_types.h"
#include "frameworks/AddressBook/objc/record.h"

#include "frameworks/AddressBook/store/record_codec.h"

using namespace addressbook;

namespace {

// The state of a record object. The list that was read last is cached, as programs that walk through its
// entries ask for it each time.
struct State {
    BookPtr book;
    LiveRecordPtr record;
    ABMultiValue* list = nil; // retained
    std::string listName;
    std::uint64_t listRevision = 0; // Book::revision() when it was read

    void keep(id value, std::string_view name) {
        [list release];
        list = [value retain];
        listName = name;
        listRevision = book->revision();
    }
};

// Returns the value of a property of this type as an object; stored values are converted directly from their
// encoded form.
id valueOf(Book& book, LiveRecord& live, std::string_view property, int type) {
    if ((type & ~kMultiValue) == static_cast<int>(Type::dateComponents)) {
        if (const auto stored = storedForComponents(property)) {
            return componentsFrom(book.current(live, *stored));
        }
    }
    const auto encoded = book.encoded(live, property);
    if (!encoded) {
        return objectFrom(book.current(live, property));
    }
    try {
        return objectFromEncoded(*encoded);
    } catch (const DamagedRecord& error) {
        book.reportDamage(live, error.what());
    }
}

bool hasProperty(ABRecord* record, NSString* name) {
    const BookPtr book = bookOf(record);
    return reading([&] { return book->typeOf(liveRecordOf(record)->kind, textFrom(name)); }) != 0;
}

} // namespace

namespace addressbook {

bool keptByFramework(std::string_view property) {
    return property == property::kUid || property == property::kCreation ||
           property == property::kModification;
}

void raiseInvalid(NSString* sentence) {
    [NSException raise:NSInvalidArgumentException format:@"%@", sentence];
    std::abort();
}

void requireArgument(id argument, NSString* sentence) {
    if (argument == nil) {
        raiseInvalid(sentence);
    }
}

void raiseUnreadable(const std::string& sentence) {
    [NSException raise:NSGenericException format:@"%@", stringFrom(sentence)];
    std::abort();
}

BOOL refuse(NSError** error, NSInteger code, NSString* sentence) {
    if (error != nullptr) {
        *error = [NSError errorWithDomain:ABAddressBookErrorDomain
                                     code:code
                                 userInfo:[NSDictionary dictionaryWithObject:sentence
                                                                      forKey:NSLocalizedDescriptionKey]];
    }
    return NO;
}

ABRecord* recordFrom(const BookPtr& book, const LiveRecordPtr& live) {
    if (!live) {
        return nil;
    }
    if (live->object != nullptr) {
        return [[static_cast<ABRecord*>(live->object) retain] autorelease];
    }
    static Class const person = [ABPerson class];
    static Class const group = [ABGroup class];
    return [[[live->kind == Kind::group ? group : person alloc] initWithLiveRecord:live
                                                                              book:book] autorelease];
}

NSArray* recordsFrom(const BookPtr& book, const std::vector<LiveRecordPtr>& live) {
    NSMutableArray* records = [NSMutableArray arrayWithCapacity:live.size()];
    for (const auto& one : live) {
        [records addObject:recordFrom(book, one)];
    }
    return [[records copy] autorelease];
}

LiveRecordPtr liveRecordOf(ABRecord* record) {
    return record ? [record liveRecord] : nullptr;
}

BookPtr bookOf(ABRecord* record) {
    return record ? [record book] : nullptr;
}

} // namespace addressbook

@implementation ABRecord

- (id)init {
    return [self initWithAddressBook:nil];
}

- (id)initWithAddressBook:(ABAddressBook*)addressBook {
    const BookPtr book = addressBook ? [addressBook book] : sharedBook();
    if (!book) {
        [self release];
        return nil;
    }
    return [self
        initWithLiveRecord:book->create([self isKindOfClass:[ABGroup class]] ? Kind::group : Kind::person)
                      book:book];
}

- (void)dealloc {
    if (auto* state = static_cast<State*>(_record)) {
        state->record->object = nullptr;
        [state->list release];
        delete state;
    }
    [super dealloc];
}

- (id)valueForProperty:(NSString*)property {
    requireArgument(property, @"A value was asked for without a property");
    const PropertyName known(property);
    const std::string_view name = known.text();
    auto& state = *static_cast<State*>(_record);
    Book& book = *state.book;
    LiveRecord& live = *state.record;
    if (state.list != nil && state.listName == name &&
        reading([&] { return book.revision(); }) == state.listRevision) {
        return [[state.list retain] autorelease];
    }
    int type = known.publicType(live.kind);
    if (type == 0) {
        type = reading([&] { return book.typeOf(live.kind, name); });
    }
    if (type == 0) {
        return nil;
    }
    id object = reading([&] { return valueOf(book, live, name, type); });
    if ((type & kMultiValue) != 0) {
        state.keep(object, name);
    }
    return object;
}

- (BOOL)setValue:(id)value forProperty:(NSString*)property {
    return [self setValue:value forProperty:property error:nullptr];
}

- (BOOL)setValue:(id)value forProperty:(NSString*)property error:(NSError**)error {
    requireArgument(property, @"A value was set without a property");
    Book& book = *[self book];
    std::string name = textFrom(property);
    const int type = reading([&] { return book.typeOf([self liveRecord]->kind, name); });
    if (type == 0) {
        return refuse(error, ABPropertyUnsupportedBySourceError,
                      [NSString stringWithFormat:@"%@ has no property %@", [self class], property]);
    }
    if (keptByFramework(name)) {
        return refuse(error, ABPropertyReadOnlyError,
                      [NSString stringWithFormat:@"The property %@ cannot be set", property]);
    }
    if ([self isReadOnly]) {
        return refuse(error, ABPropertyReadOnlyError, @"The address book can only be read");
    }
    const auto stored = storedForComponents(name);
    Value converted;
    if (value != nil) {
        converted = stored ? requireComponents(value, type, property) : requireValue(value, type, property);
    }
    if (stored) {
        name = *stored;
    }
    reading([&] { book.set([self liveRecord], name, std::move(converted)); });
    return YES;
}

- (BOOL)removeValueForProperty:(NSString*)property {
    return [self setValue:nil forProperty:property];
}

- (BOOL)isReadOnly {
    return [self book]->readOnly();
}

// Looks for a property first, built-in or added, which has no accessor.
- (id)valueForKey:(NSString*)key {
    if (key == nil || !hasProperty(self, key)) {
        return [super valueForKey:key];
    }
    return [self valueForProperty:key];
}

- (void)setValue:(id)value forKey:(NSString*)key {
    NSError* error = nil;
    if (key == nil || !hasProperty(self, key)) {
        [super setValue:value forKey:key];
    } else if (![self setValue:value forProperty:key error:&error]) {
        raiseInvalid([error localizedDescription]);
    }
}

- (NSString*)description {
    return [NSString stringWithFormat:@"%@ %@ (%@)", [self class], [self uniqueId], [self displayName]];
}

@end

@implementation ABRecord (ABRecord_Convenience)

- (NSString*)uniqueId {
    return stringFrom([self liveRecord]->uid());
}

- (NSString*)displayName {
    return stringFrom(reading([&] { return [self book]->displayName(*[self liveRecord]); }));
}

@end

@implementation ABRecord (Internal)

- (id)initWithLiveRecord:(const LiveRecordPtr&)live book:(const BookPtr&)book {
    if ((self = [super init]) != nil) {
        _record = new State{.book = book, .record = live, .listName = {}};
        live->object = self;
    }
    return self;
}

- (const LiveRecordPtr&)liveRecord {
    return static_cast<State*>(_record)->record;
}

- (const BookPtr&)book {
    return static_cast<State*>(_record)->book;
}

@end
