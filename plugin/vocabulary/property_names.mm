#import "plugin/vocabulary/property_names.h"

#include "plugin/records/plugin_state.h"
#include "plugin/shell/error_state.h"

namespace koru {
namespace {

// "homepage" is the list of web pages, as "webpages" is; the old property for a single home page has no name.
const PropertyName kPropertyNames[] = {
    {@"id", &kABUIDProperty},
    {@"creationdate", &kABCreationDateProperty},
    {@"modifieddate", &kABModificationDateProperty},
    {@"name", &kABGroupNameProperty},
    {@"firstname", &kABFirstNameProperty},
    {@"lastname", &kABLastNameProperty},
    {@"phoneticfirst", &kABFirstNamePhoneticProperty},
    {@"phoneticlast", &kABLastNamePhoneticProperty},
    {@"nickname", &kABNicknameProperty},
    {@"maidenname", &kABMaidenNameProperty},
    {@"birthday", &kABBirthdayProperty},
    {@"companyname", &kABOrganizationProperty},
    {@"jobtitle", &kABJobTitleProperty},
    {@"homepage", &kABURLsProperty},
    {@"webpages", &kABURLsProperty},
    {@"calendars", &kABCalendarURIsProperty},
    {@"e-mail", &kABEmailProperty},
    {@"address", &kABAddressProperty},
    {@"dates", &kABOtherDatesProperty},
    {@"relatednames", &kABRelatedNamesProperty},
    {@"department", &kABDepartmentProperty},
    {@"personflags", &kABPersonFlags},
    {@"phone", &kABPhoneProperty},
    {@"phones", &kABPhoneProperty},
    {@"note", &kABNoteProperty},
    {@"middlename", &kABMiddleNameProperty},
    {@"phoneticmiddle", &kABMiddleNamePhoneticProperty},
    {@"nameprefix", &kABTitleProperty},
    {@"namesuffix", &kABSuffixProperty},
    {@"imaol", &kABAIMInstantProperty},
    {@"imicq", &kABICQInstantProperty},
    {@"imjabber", &kABJabberInstantProperty},
    {@"immsn", &kABMSNInstantProperty},
    {@"imyahoo", &kABYahooInstantProperty},
};

// How many spellings of names are kept; calculations write each in one or two ways.
constexpr NSUInteger kMostSpellings = 256;

// Returns the property of the first row that the name is the property of, or the key of, whatever its letter
// case and blanks; nil when there is none.
NSString* findProperty(NSString* name) {
    // In parts, as GNUstep cannot replace in ill-formed text.
    NSString* key = [[[name lowercaseString] componentsSeparatedByString:@" "] componentsJoinedByString:@""];
    for (const PropertyName& row : kPropertyNames) {
        if ([name isEqualToString:*row.property] || [key isEqualToString:row.key]) {
            return *row.property;
        }
    }
    return nil;
}

} // namespace

std::span<const PropertyName> propertyNames() {
    return kPropertyNames;
}

} // namespace koru

using namespace koru;

NSString* toPropertyString(NSString* name) {
    if (name == nil) {
        return *kPropertyNames[0].property;
    }
    // The names that were found, as they were spelt. Lives until the process ends.
    static NSMutableDictionary* const found = [[NSMutableDictionary alloc] init];
    NSString* property = [found objectForKey:name];
    if (property == nil) {
        property = findProperty(name);
        if (property != nil && [found count] < kMostSpellings) {
            [found setObject:property forKey:name];
        }
    }
    return property;
}

int OpenProperty(NSString* name) {
    int count = -1;
    guardedCall([&] {
        NSString* property = toPropertyString(name);
        if (property == nil) {
            setError(kInvalidPropertyName);
            return;
        }
        state.gValues.reset();
        state.gCurrentProperty = Retained<NSString>::retain(property);
        const ABPropertyType type = typeOfCurrentProperty(property);
        if (type == kABErrorInProperty) {
            setError(kErrorInProperty);
            return;
        }
        if ((type & kABMultiValueMask) == 0) {
            count = 1;
            return;
        }
        ABMultiValue* values = [currentRecord() valueForProperty:property];
        state.gValues = Retained<ABMutableMultiValue>::adopt([values mutableCopy]);
        count = static_cast<int>([state.gValues.get() count]);
    });
    return count;
}
