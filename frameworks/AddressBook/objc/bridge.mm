#include "frameworks/AddressBook/objc/bridge.h"

#include "frameworks/AddressBook/objc/multi_value.h"
#include "frameworks/AddressBook/objc/text_object.h"
#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"

#import <AddressBook/ABMultiValue.h>
#include <algorithm>
#include <array>
#include <objc/runtime.h>

namespace addressbook {

namespace {

NSDateComponents* componentsFrom(const DateComponents& parts) {
    NSDateComponents* components = [[[NSDateComponents alloc] init] autorelease];
    if (parts.year) {
        [components setYear:*parts.year];
    }
    if (parts.month) {
        [components setMonth:*parts.month];
    }
    if (parts.day) {
        [components setDay:*parts.day];
    }
    if (parts.hour) {
        [components setHour:*parts.hour];
    }
    if (parts.minute) {
        [components setMinute:*parts.minute];
    }
    if (parts.second) {
        [components setSecond:*parts.second];
    }
    return components;
}

std::optional<int> part(NSInteger value) {
    if (value == NSIntegerMax) { // not set
        return std::nullopt;
    }
    return static_cast<int>(value);
}

DateComponents partsFrom(NSDateComponents* components) {
    return {part([components year]), part([components month]),  part([components day]),
            part([components hour]), part([components minute]), part([components second])};
}

Value numberFrom(NSNumber* number) {
    const char kind = *[number objCType];
    if (kind == 'f' || kind == 'd') {
        return [number doubleValue];
    }
    return static_cast<std::int64_t>([number longLongValue]);
}

std::optional<Value> arrayFrom(NSArray* array) {
    Array values;
    for (NSUInteger i = 0, count = [array count]; i < count; ++i) {
        auto value = valueFrom([array objectAtIndex:i]);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(std::move(*value));
    }
    return values;
}

std::optional<Value> dictionaryFrom(NSDictionary* dictionary) {
    Dictionary values;
    NSArray* keys = [dictionary allKeys];
    for (NSUInteger i = 0, count = [keys count]; i < count; ++i) {
        id key = [keys objectAtIndex:i];
        auto value = valueFrom([dictionary objectForKey:key]);
        if (!value || ![key isKindOfClass:[NSString class]]) {
            return std::nullopt;
        }
        values.emplace(textFrom(key), std::move(*value));
    }
    return values;
}

std::optional<Value> entriesFrom(ABMultiValue* list) {
    MultiValue values;
    for (NSUInteger i = 0, count = [list count]; i < count; ++i) {
        auto value = valueFrom([list valueAtIndex:i]);
        if (!value || value->as<MultiValue>()) {
            return std::nullopt;
        }
        values.entries.push_back(
            {textFrom([list identifierAtIndex:i]), textFrom([list labelAtIndex:i]), std::move(*value)});
    }
    values.primary = textFrom([list chosenPrimary]);
    return values;
}

ABMultiValue* listOf(ListEntriesPtr entries) {
    static Class const type = [ABMultiValue class];
    return [[[type alloc] initWithEntries:std::move(entries)] autorelease];
}

struct ToObject {
    id operator()(std::monostate) const { return nil; }
    id operator()(const std::string& text) const { return stringFrom(text); }
    id operator()(std::int64_t number) const { return [NSNumber numberWithLongLong:number]; }
    id operator()(double number) const { return [NSNumber numberWithDouble:number]; }
    id operator()(const Date& date) const {
        return [NSDate dateWithTimeIntervalSinceReferenceDate:date.seconds];
    }
    id operator()(const FloatingDate& date) const { return (*this)(momentOf(date)); }
    id operator()(const DateComponents& parts) const { return componentsFrom(parts); }
    id operator()(const Bytes& bytes) const {
        return [NSData dataWithBytes:bytes.data() length:bytes.size()];
    }
    id operator()(const Array& values) const {
        NSMutableArray* array = [NSMutableArray arrayWithCapacity:values.size()];
        for (const auto& value : values) {
            [array addObject:objectOrNull(objectFrom(value))];
        }
        return [[array copy] autorelease];
    }
    id operator()(const Dictionary& values) const {
        NSMutableDictionary* dictionary = [NSMutableDictionary dictionaryWithCapacity:values.size()];
        for (const auto& [key, value] : values) {
            [dictionary setObject:objectOrNull(objectFrom(value)) forKey:wordFrom(key)];
        }
        return [[dictionary copy] autorelease];
    }
    id operator()(const MultiValue& values) const {
        ListEntriesPtr list(new ListEntries);
        for (const auto& entry : values.entries) {
            list->entries.emplace_back(objectOrNull(objectFrom(entry.value)), wordFrom(entry.label),
                                       stringFrom(entry.identifier));
        }
        if (!values.primary.empty()) {
            list->primary = Retained(stringFrom(values.primary));
        }
        return listOf(std::move(list));
    }
};

} // namespace

std::optional<std::string_view> constantBytes(NSString* string) {
    static Class const type = [NSConstantString class];
    if (string == nil || object_getClass(string) != type) {
        return std::nullopt;
    }
    const auto* constant = static_cast<const NSConstantString*>(string);
    return std::string_view(constant->nxcsptr, constant->nxcslen);
}

std::string textFrom(NSString* string) {
    static_assert(sizeof(unichar) == sizeof(char16_t));
    if (auto text = textOf(string)) {
        return std::move(*text);
    }
    if (const auto bytes = constantBytes(string); bytes && isAscii(*bytes)) {
        return std::string(*bytes);
    }
    const NSUInteger length = [string length];
    std::array<char16_t, 128> few;
    std::u16string many(length > few.size() ? length : 0, u'\0');
    char16_t* const units = many.empty() ? few.data() : many.data();
    if (length != 0) {
        [string getCharacters:reinterpret_cast<unichar*>(units) range:NSMakeRange(0, length)];
    }
    return utf8FromUtf16({units, length});
}

NSString* stringFrom(std::string_view text) {
    return textObject(text);
}

Date dateFrom(NSDate* date) {
    return {[date timeIntervalSinceReferenceDate]};
}

std::optional<Value> valueFrom(id object) {
    static Class const text = [NSString class];
    if (object == nil) {
        return Value();
    }
    if ([object isKindOfClass:text]) {
        return textFrom(object);
    }
    if ([object isKindOfClass:[NSNull class]]) {
        return Value();
    }
    if ([object isKindOfClass:[NSNumber class]]) {
        return numberFrom(object);
    }
    if ([object isKindOfClass:[NSDate class]]) {
        return dateFrom(object);
    }
    if ([object isKindOfClass:[NSDateComponents class]]) {
        return partsFrom(object);
    }
    if ([object isKindOfClass:[NSData class]]) {
        const auto* bytes = static_cast<const std::uint8_t*>([object bytes]);
        return Bytes(bytes, bytes + [object length]);
    }
    if ([object isKindOfClass:[NSArray class]]) {
        return arrayFrom(object);
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        return dictionaryFrom(object);
    }
    if ([object isKindOfClass:[ABMultiValue class]]) {
        return entriesFrom(object);
    }
    return std::nullopt;
}

id objectFrom(const Value& value) {
    return std::visit(ToObject{}, static_cast<const Value::variant&>(value));
}

id objectFromEncoded(std::string_view value) {
    if (value.empty()) {
        return nil;
    }
    if (const auto text = textIn(value)) {
        return stringFrom(*text);
    }
    if (holdsList(value)) {
        return listOf(new ListEntries(value));
    }
    return objectFrom(decodeValue(value));
}

NSString* wordFrom(std::string_view word) {
    // Never destroyed, so that the strings live until the process ends.
    static auto& known = *new std::array<MadeOnce, kWordNumbersEnd>;
    const auto code = static_cast<std::size_t>(wordCode(word));
    if (code == 0) {
        return stringFrom(word);
    }
    // One of Foundation's own, which keeps its hash: programs look labels up in tables.
    return known[code].get([word] {
        return [[[NSString alloc] initWithBytes:word.data() length:word.size()
                                       encoding:NSASCIIStringEncoding] autorelease];
    });
}

id objectOrNull(id object) {
    return object ? object : [NSNull null];
}

} // namespace addressbook
