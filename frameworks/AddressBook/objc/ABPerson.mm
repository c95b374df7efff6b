#import <AddressBook/ABPerson.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/property_types.h"
#include "frameworks/AddressBook/objc/record.h"
#include "frameworks/AddressBook/vcard/vcard.h"

using namespace addressbook;

@implementation ABPerson

- (NSArray*)parentGroups {
    return recordsFrom([self book], reading([&] { return [self book]->parents(*[self liveRecord]); }));
}

- (NSArray*)linkedPeople {
    return [NSArray arrayWithObject:self];
}

+ (NSInteger)addPropertiesAndTypes:(NSDictionary*)properties {
    return addProperties(Kind::person, properties);
}

+ (NSInteger)removeProperties:(NSArray*)properties {
    return removeProperties(Kind::person, properties);
}

+ (NSArray*)properties {
    return propertyNames(Kind::person);
}

+ (ABPropertyType)typeOfProperty:(NSString*)property {
    return typeOfProperty(Kind::person, property);
}

@end

@implementation ABPerson (ABPerson_Convenience)

+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison {
    return searchElement(Kind::person, property, label, key, value, comparison);
}

// The unique id in the vCard is ignored, as the person is a new one.
- (id)initWithVCardRepresentation:(NSData*)vCardData {
    if ((self = [self init]) == nil) {
        return nil;
    }
    const std::string_view bytes(static_cast<const char*>([vCardData bytes]), [vCardData length]);
    auto read = vcard::Reader(bytes).next();
    auto* card = read ? std::get_if<vcard::Card>(&*read) : nullptr;
    if (card == nullptr || card->kind != Kind::person) {
        [self release];
        return nil;
    }
    for (auto& [property, value] : card->values) {
        if (!keptByFramework(property)) {
            [self liveRecord]->changes[property] = std::move(value);
        }
    }
    return self;
}

- (NSData*)vCardRepresentation {
    vcard::Card card;
    card.uid = [self liveRecord]->uid();
    card.values = reading([&] { return [self book]->values(*[self liveRecord]); });
    const std::string text = vcard::write(card);
    return [NSData dataWithBytes:text.data() length:text.size()];
}

@end
