#include "frameworks/AddressBook/objc/property_types.h"

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/date_components.h"
#include "frameworks/AddressBook/objc/property_name.h"

namespace addressbook {

namespace {

// The type of a value in words for messages, by the number of the type.
constexpr const char* kTypeWords[] = {"nothing", "text",         "an integer", "a number",       "a date",
                                      "a list",  "a dictionary", "data",       "date components"};

NSString* typeWords(int type) {
    const char* words = kTypeWords[type & ~kMultiValue];
    return type & kMultiValue ? [NSString stringWithFormat:@"a multi-value of which each entry is %s", words]
                              : [NSString stringWithUTF8String:words];
}

// Converts a number to the type of an integer or real property; returns whether the value then has the type.
bool conform(Value& value, int type) {
    if (type == static_cast<int>(Type::integer)) {
        if (const auto* real = value.as<double>()) {
            value = static_cast<std::int64_t>(*real);
        }
    } else if (type == static_cast<int>(Type::real)) {
        if (const auto* integer = value.as<std::int64_t>()) {
            value = static_cast<double>(*integer);
        }
    }
    return typeOf(value) == type;
}

bool conformEntries(MultiValue& list, int type) {
    for (auto& entry : list.entries) {
        if (!conform(entry.value, type)) {
            return false;
        }
    }
    return true;
}

// Moments that stand for days become days.
void keepDays(const std::string& property, Value& value) {
    if (const auto* date = value.as<Date>()) {
        value = storedDate(property, *date);
    } else if (auto* list = value.as<MultiValue>()) {
        for (Entry& entry : list->entries) {
            keepDays(property, entry.value);
        }
    }
}

} // namespace

Value requireValue(id object, int type, NSString* property) {
    auto value = valueFrom(object);
    bool fits = false;
    if (value && (type & kMultiValue) != 0) {
        auto* list = value->as<MultiValue>();
        fits = list && conformEntries(*list, type & ~kMultiValue);
        if (fits && list->entries.empty()) {
            return {};
        }
    } else if (value) {
        fits = conform(*value, type);
    }
    if (!fits) {
        raiseInvalid([NSString stringWithFormat:@"The property %@ takes %@", property, typeWords(type)]);
    }
    keepDays(textFrom(property), *value);
    return std::move(*value);
}

NSInteger addProperties(Kind kind, NSDictionary* properties) {
    const BookPtr book = sharedBook();
    if (!book || book->readOnly()) {
        return -1;
    }
    std::map<std::string, int> types;
    NSArray* names = [properties allKeys];
    for (NSUInteger i = 0; i < [names count]; ++i) {
        id name = [names objectAtIndex:i];
        id type = [properties objectForKey:name];
        if (![name isKindOfClass:[NSString class]] || ![type isKindOfClass:[NSNumber class]]) {
            return -1;
        }
        types[textFrom(name)] = [type intValue];
    }
    return reading([&] { return book->define(kind, types); });
}

NSInteger removeProperties(Kind kind, NSArray* properties) {
    const BookPtr book = sharedBook();
    if (!book || book->readOnly()) {
        return -1;
    }
    std::vector<std::string> names;
    for (NSUInteger i = 0; i < [properties count]; ++i) {
        id name = [properties objectAtIndex:i];
        if (![name isKindOfClass:[NSString class]]) {
            return -1;
        }
        names.push_back(textFrom(name));
    }
    return reading([&] { return book->undefine(kind, names); });
}

NSArray* propertyNames(Kind kind) {
    NSMutableArray* names = [NSMutableArray array];
    if (const BookPtr book = sharedBook()) {
        for (const auto& name : reading([&] { return book->properties(kind); })) {
            [names addObject:stringFrom(name)];
        }
    } else {
        for (const auto name : builtInNames(kind)) {
            [names addObject:stringFrom(name)];
        }
    }
    return [[names copy] autorelease];
}

ABPropertyType typeOfProperty(Kind kind, NSString* property) {
    if (property == nil) {
        return kABErrorInProperty;
    }
    const PropertyName name(property);
    if (const int type = name.publicType(kind)) {
        return type;
    }
    const BookPtr book = sharedBook();
    return book ? reading([&] { return book->typeOf(kind, name.text()); }) : kABErrorInProperty;
}

ABSearchElement* searchElement(Kind kind, NSString* property, NSString* label, NSString* key, id value,
                               ABSearchComparison comparison) {
    if (property == nil) {
        raiseInvalid(@"A search needs a property");
    }
    if (comparison < 0 || comparison >= kComparisonCount) {
        raiseInvalid([NSString stringWithFormat:@"There is no search comparison %ld", (long)comparison]);
    }
    if (value == nil && comparison != kABEqual && comparison != kABNotEqual) {
        raiseInvalid(@"A search without a value can only compare for equal or not equal");
    }
    auto sought = valueFrom(value);
    if (!sought || (value != nil && sought->empty())) {
        raiseInvalid([NSString
            stringWithFormat:@"A search cannot compare with a value of the class %@", [value class]]);
    }
    Condition condition;
    condition.kind = kind;
    condition.property = textFrom(property);
    if (const auto stored = storedForComponents(condition.property)) {
        if ([value isKindOfClass:[NSDateComponents class]]) {
            sought = soughtComponents(value, property);
        }
        condition.property = *stored;
    }
    if (label != nil) {
        condition.label = textFrom(label);
    }
    if (key != nil) {
        condition.key = textFrom(key);
    }
    condition.value = std::move(*sought);
    condition.comparison = static_cast<Comparison>(comparison);
    return elementFrom(Query{std::move(condition)});
}

} // namespace addressbook
