// Natural-language dates as macOS reads them. GNUstep's own implementation knows fewer forms, and reads some
// of them wrongly.

#include "frameworks/Foundation/locale.h"
#include "frameworks/Foundation/natural_date.h"

#import <Foundation/Foundation.h>
#include <string>

using namespace foundation;

namespace {

NSCalendar* calendarIn(NSTimeZone* zone) {
    NSCalendar* calendar = [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
    [calendar setTimeZone:zone];
    return calendar;
}

CivilTime civilTime(NSDate* date) {
    const NSUInteger units = NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit |
                             NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit;
    NSDateComponents* parts = [calendarIn([NSTimeZone systemTimeZone]) components:units fromDate:date];
    CivilTime time;
    time.year = static_cast<int>([parts year]);
    time.month = static_cast<int>([parts month]);
    time.day = static_cast<int>([parts day]);
    time.hour = static_cast<int>([parts hour]);
    time.minute = static_cast<int>([parts minute]);
    time.second = static_cast<int>([parts second]);
    return time;
}

NSDate* dateFrom(const NaturalDate& date) {
    NSDateComponents* parts = [[[NSDateComponents alloc] init] autorelease];
    [parts setYear:date.time.year];
    [parts setMonth:date.time.month];
    [parts setDay:date.time.day];
    [parts setHour:date.time.hour];
    [parts setMinute:date.time.minute];
    [parts setSecond:date.time.second];
    NSTimeZone* zone = date.offset ? [NSTimeZone timeZoneForSecondsFromGMT:0] : [NSTimeZone systemTimeZone];
    NSDate* moment = [calendarIn(zone) dateFromComponents:parts];
    return date.offset ? [moment dateByAddingTimeInterval:-*date.offset] : moment;
}

// Returns the order of day and month in a locale (an NSLocale, or a dictionary with NSDateTimeOrdering); that
// of the environment's locale when none is given.
bool dayFirstIn(id locale) {
    if ([locale isKindOfClass:[NSDictionary class]]) {
        NSString* ordering = [locale objectForKey:@"NSDateTimeOrdering"];
        if ([ordering isKindOfClass:[NSString class]]) {
            return [ordering rangeOfString:@"D"].location < [ordering rangeOfString:@"M"].location;
        }
    }
    if ([locale isKindOfClass:[NSLocale class]]) {
        return writesDayFirst([[locale localeIdentifier] UTF8String]);
    }
    return writesDayFirst(localeName("LC_TIME"));
}

// Returns a text in UTF-8; nothing when it has none, as with half of a surrogate pair.
std::optional<std::string> utf8(NSString* text) {
    NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
    if (bytes == nil) {
        return std::nullopt;
    }
    return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

} // namespace

@implementation NSDate (NaturalLanguage)

+ (id)dateWithNaturalLanguageString:(NSString*)string {
    return [self dateWithNaturalLanguageString:string locale:nil];
}

+ (id)dateWithNaturalLanguageString:(NSString*)string locale:(NSDictionary*)locale {
    const auto text = utf8(string);
    const auto date =
        text ? parseNaturalDate(*text, civilTime([NSDate date]), dayFirstIn(locale)) : std::nullopt;
    return date ? dateFrom(*date) : nil;
}

@end
