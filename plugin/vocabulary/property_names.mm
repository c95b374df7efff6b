#import "plugin/vocabulary/property_names.h"

#include "plugin/records/plugin_state.h"
#include "plugin/shell/error_state.h"
#include <algorithm>
#include <string>
#include <unordered_map>

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

// A column of the table: its texts, and the first row with each.
using Lookup = std::unordered_map<std::u16string, std::size_t>;

std::u16string unitsOf(NSString* text) {
    std::u16string units([text length], u'\0');
    [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
    return units;
}

// Returns the name in lower case and without blanks. Only a name that is not plain ASCII needs Foundation for
// that.
std::u16string normalised(NSString* name, std::u16string units) {
    if (std::any_of(units.begin(), units.end(), [](char16_t unit) { return unit > 0x7F; })) {
        units = unitsOf([name lowercaseString]);
    }
    std::erase(units, u' ');
    for (char16_t& unit : units) {
        unit = u'A' <= unit && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
    }
    return units;
}

// Returns the table by one of its columns. Of two rows with the same text the first counts.
template <typename TextOf>
Lookup lookupBy(TextOf textOf) {
    Lookup lookup;
    for (std::size_t row = 0; row < std::size(kPropertyNames); ++row) {
        lookup.emplace(unitsOf(textOf(kPropertyNames[row])), row);
    }
    return lookup;
}

// Returns the row of a text; the number of rows when there is none.
std::size_t find(const Lookup& lookup, const std::u16string& text) {
    const auto found = lookup.find(text);
    return found == lookup.end() ? std::size(kPropertyNames) : found->second;
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
    static const Lookup byKey = lookupBy([](const PropertyName& row) { return row.key; });
    static const Lookup byProperty = lookupBy([](const PropertyName& row) { return *row.property; });
    const std::u16string units = unitsOf(name);
    const std::size_t row = std::min(find(byProperty, units), find(byKey, normalised(name, units)));
    return row < std::size(kPropertyNames) ? *kPropertyNames[row].property : nil;
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
