#import "plugin/vocabulary/property_names.h"

#include "plugin/records/plugin_state.h"
#include "plugin/shell/error_state.h"

namespace {

// "homepage" is the list of web pages, as "webpages" is: the single home page of old has no name here.
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

} // namespace

std::span<const PropertyName> propertyNames() {
    return kPropertyNames;
}

NSString* toPropertyString(NSString* name) {
    if (name == nil) {
        return *kPropertyNames[0].property;
    }
    NSString* normalised = [[name lowercaseString] stringByReplacingOccurrencesOfString:@" " withString:@""];
    for (const PropertyName& row : kPropertyNames) {
        if ([normalised isEqualToString:row.key] || [name isEqualToString:*row.property]) {
            return *row.property;
        }
    }
    return nil;
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
