#import <AddressBook/ABGroup.h>

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/property_types.h"
#include "frameworks/AddressBook/objc/record.h"

using namespace addressbook;

namespace {

// Raises NSInvalidArgumentException when the property or the person is nil.
void requireForEntry(NSString* property, ABPerson* person) {
    requireArgument(property, @"The entry that a group uses needs a property");
    requireArgument(person, @"The entry that a group uses needs a person");
}

} // namespace

@implementation ABGroup

- (NSArray*)recordsInside:(Kind)kind {
    return listFrom([self book], reading([&] { return [self book]->inside(*[self liveRecord], kind); }));
}

- (BOOL)changeable:(ABRecord*)member kind:(Class)kind {
    requireArgument(member, @"There is no record to put into the group or to take out of it");
    return [member isKindOfClass:kind] && [member book] == [self book] && ![self isReadOnly];
}

- (BOOL)join:(ABRecord*)member kind:(Class)kind {
    return [self changeable:member kind:kind] &&
           reading([&] { return [self book]->join([self liveRecord], [member liveRecord]); });
}

- (BOOL)leave:(ABRecord*)member kind:(Class)kind {
    return [self changeable:member kind:kind] &&
           reading([&] { return [self book]->leave([self liveRecord], *[member liveRecord]); });
}

- (NSArray*)members {
    return [self recordsInside:Kind::person];
}

- (BOOL)addMember:(ABPerson*)person {
    return [self join:(ABRecord*)person kind:[ABPerson class]];
}

- (BOOL)removeMember:(ABPerson*)person {
    return [self leave:(ABRecord*)person kind:[ABPerson class]];
}

- (NSArray*)subgroups {
    return [self recordsInside:Kind::group];
}

- (BOOL)addSubgroup:(ABGroup*)group {
    return [self join:group kind:[ABGroup class]];
}

- (BOOL)removeSubgroup:(ABGroup*)group {
    return [self leave:group kind:[ABGroup class]];
}

- (NSArray*)parentGroups {
    return recordsFrom([self book], reading([&] { return [self book]->parents(*[self liveRecord]); }));
}

// Returns the chosen identifiers, which the group keeps: property -> dictionary of person's uid -> entry
// identifier.
- (Dictionary)distributionIdentifiers {
    const Value value =
        reading([&] { return [self book]->value(*[self liveRecord], property::kDistribution); });
    const auto* chosen = value.as<Dictionary>();
    return chosen ? *chosen : Dictionary();
}

- (BOOL)setDistributionIdentifier:(NSString*)identifier
                      forProperty:(NSString*)property
                           person:(ABPerson*)person {
    requireForEntry(property, person);
    if ([self isReadOnly] ||
        !reading([&] { return [self book]->isMember(*[self liveRecord], *[person liveRecord]); })) {
        return NO;
    }
    id entries = [person valueForProperty:property];
    if (![entries isKindOfClass:[ABMultiValue class]] ||
        (identifier != nil && [entries indexForIdentifier:identifier] == NSNotFound)) {
        return NO;
    }

    Dictionary chosen = [self distributionIdentifiers];
    Value& ofProperty = chosen[textFrom(property)];
    if (!ofProperty.as<Dictionary>()) {
        ofProperty = Dictionary();
    }
    auto& people = *ofProperty.as<Dictionary>();
    const std::string& uid = [person liveRecord]->uid();
    if (identifier != nil) {
        people[uid] = textFrom(identifier);
    } else {
        people.erase(uid);
    }
    if (people.empty()) {
        chosen.erase(textFrom(property));
    }
    Value changed = chosen.empty() ? Value() : Value(std::move(chosen));
    reading([&] {
        [self book]->set([self liveRecord], std::string(property::kDistribution), std::move(changed));
    });
    return YES;
}

- (NSString*)distributionIdentifierForProperty:(NSString*)property person:(ABPerson*)person {
    requireForEntry(property, person);
    if (!reading([&] { return [self book]->isMember(*[self liveRecord], *[person liveRecord]); })) {
        return nil;
    }
    id entries = [person valueForProperty:property];
    if (![entries isKindOfClass:[ABMultiValue class]]) {
        return nil;
    }
    const Dictionary chosen = [self distributionIdentifiers];
    if (const auto ofProperty = chosen.find(textFrom(property)); ofProperty != chosen.end()) {
        if (const auto* people = ofProperty->second.as<Dictionary>()) {
            if (const auto own = people->find([person liveRecord]->uid()); own != people->end()) {
                if (id identifier = objectFrom(own->second);
                    [entries indexForIdentifier:identifier] != NSNotFound) {
                    return identifier;
                }
            }
        }
    }
    return [entries primaryIdentifier];
}

+ (NSInteger)addPropertiesAndTypes:(NSDictionary*)properties {
    return addProperties(Kind::group, properties);
}

+ (NSInteger)removeProperties:(NSArray*)properties {
    return removeProperties(Kind::group, properties);
}

+ (NSArray*)properties {
    return propertyNames(Kind::group);
}

+ (ABPropertyType)typeOfProperty:(NSString*)property {
    return typeOfProperty(Kind::group, property);
}

@end

@implementation ABGroup (ABGroup_Convenience)

+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison {
    return searchElement(Kind::group, property, label, key, value, comparison);
}

@end
