#include "frameworks/AddressBook/objc/date_components.h"

#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/objc/property_types.h"
#include "frameworks/AddressBook/objc/record.h"

namespace addressbook {

namespace {

// A number in the dictionary that is stored for the alternate birthday; it also has the calendar's
// identifier, and whether the month is a leap month.
struct Field {
    const char* key;
    NSCalendarUnit unit;
};
constexpr Field kFields[] = {{"era", NSCalendarUnitEra},      {"year", NSCalendarUnitYear},
                             {"month", NSCalendarUnitMonth},  {"day", NSCalendarUnitDay},
                             {"hour", NSCalendarUnitHour},    {"minute", NSCalendarUnitMinute},
                             {"second", NSCalendarUnitSecond}};
const std::string kCalendar = "calendar";
const std::string kLeapMonth = "leapMonth";

bool isAlternateBirthday(NSString* property) {
    return textFrom(property) == property::kAlternateBirthdayComponents;
}

NSDateComponents* emptyComponents(NSString* calendar) {
    NSDateComponents* components = [[[NSDateComponents alloc] init] autorelease];
    if (calendar != nil) {
        [components setCalendar:[[[NSCalendar alloc] initWithCalendarIdentifier:calendar] autorelease]];
    }
    return components;
}

NSDateComponents* dayFrom(const Value& date) {
    NSDateComponents* components = emptyComponents(NSCalendarIdentifierGregorian);
    if (const auto parts = dayParts(date)) {
        if (parts->year) {
            [components setYear:*parts->year];
        }
        [components setMonth:*parts->month];
        [components setDay:*parts->day];
    }
    return components;
}

NSDateComponents* componentsFromFields(const Dictionary& fields) {
    const auto calendar = fields.find(kCalendar);
    NSDateComponents* components =
        emptyComponents(calendar == fields.end() ? nil : objectFrom(calendar->second));
    for (const auto& [key, unit] : kFields) {
        if (const auto field = fields.find(key); field != fields.end()) {
            if (const auto* number = field->second.as<std::int64_t>()) {
                [components setValue:*number forComponent:unit];
            }
        }
    }
    [components setLeapMonth:fields.contains(kLeapMonth)];
    return components;
}

Dictionary fieldsFrom(NSDateComponents* components) {
    Dictionary fields;
    for (const auto& [key, unit] : kFields) {
        if (const NSInteger number = [components valueForComponent:unit]; number != NSIntegerMax) {
            fields[key] = static_cast<std::int64_t>(number);
        }
    }
    if ([components calendar] != nil) {
        fields[kCalendar] = textFrom([[components calendar] calendarIdentifier]);
    }
    if ([components leapMonth]) {
        fields[kLeapMonth] = std::int64_t{1};
    }
    return fields;
}

// Returns the Gregorian day for components of another calendar, converted by Foundation; nothing for the
// Gregorian calendar, and for components that name no day.
std::optional<DateComponents> dayInOtherCalendar(NSDateComponents* components) {
    NSCalendar* calendar = [components calendar];
    if (calendar == nil || [[calendar calendarIdentifier] isEqualToString:NSCalendarIdentifierGregorian] ||
        [components year] == NSIntegerMax) {
        return std::nullopt;
    }
    NSDate* moment = [calendar dateFromComponents:components];
    return moment ? dayParts(dateFrom(moment)) : std::nullopt;
}

FloatingDate dateOf(NSDateComponents* components, NSString* property) {
    auto parts = dayInOtherCalendar(components);
    if (!parts) {
        parts = *valueFrom(components)->as<DateComponents>();
    }
    const auto day = monthDayOf(*parts);
    if (!day) {
        raiseInvalid([NSString
            stringWithFormat:@"The property %@ takes date components with a month and a day", property]);
    }
    return noonOf(parts->year.value_or(kNoYear), *day);
}

} // namespace

id componentsFrom(const Value& stored) {
    if (isDate(stored)) {
        return dayFrom(stored);
    }
    if (const auto* fields = stored.as<Dictionary>()) {
        return componentsFromFields(*fields);
    }
    const auto* list = stored.as<MultiValue>();
    if (list == nullptr) {
        return nil;
    }
    ABMutableMultiValue* told = [[objectFrom(stored) mutableCopy] autorelease];
    for (NSUInteger i = 0; i < list->entries.size(); ++i) {
        if (isDate(list->entries[i].value)) {
            [told replaceValueAtIndex:i withValue:dayFrom(list->entries[i].value)];
        }
    }
    return [[told copy] autorelease];
}

Value requireComponents(id object, int type, NSString* property) {
    Value value = requireValue(object, type, property);
    if (auto* list = value.as<MultiValue>()) {
        for (std::size_t i = 0; i < list->entries.size(); ++i) {
            list->entries[i].value = dateOf([object valueAtIndex:i], property);
        }
    } else if (isAlternateBirthday(property)) {
        value = fieldsFrom(object);
    } else if (!value.empty()) {
        value = dateOf(object, property);
    }
    return value;
}

Value soughtComponents(NSDateComponents* components, NSString* property) {
    if (isAlternateBirthday(property)) {
        return fieldsFrom(components);
    }
    return *dayParts(dateOf(components, property));
}

} // namespace addressbook
