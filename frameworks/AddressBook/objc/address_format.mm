// The address formats of countries.

#import <AddressBook/ABAddressBook.h>

#include "frameworks/AddressBook/objc/bridge.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// An address format. In the layout, S is the street, C the city, A the state or other administrative area, Z
// the postal code, N the country, and | ends a line. All other characters are separators: they are written
// only between two fields of a line.
struct Format {
    std::string_view countries; // ISO codes
    std::string_view layout;
    const char* area; // the country's words for two of the fields
    const char* code;
};

// For a country that is not in this table, the first row is used.
constexpr std::array kFormats{
    Format{"us pr", "S|C A Z|N", "State", "ZIP"},
    Format{"ca", "S|C A Z|N", "Province", "Postal Code"},
    Format{"au", "S|C A Z|N", "State", "Postcode"},
    Format{"gb gg im je", "S|C|A|Z|N", "County", "Postcode"},
    Format{"ie", "S|C|A|Z|N", "County", "Eircode"},
    Format{"nz", "S|A|C Z|N", "Suburb", "Postcode"},
    Format{"za", "S|C|A|Z|N", "Province", "Postal Code"},
    Format{"fr mc", "S|Z C|A|N", "R\u00e9gion", "Code Postal"},
    Format{"de", "S|Z C|A|N", "Bundesland", "PLZ"},
    Format{"at", "S|Z C|A|N", "Bundesland", "PLZ"},
    Format{"ch li", "S|Z C|A|N", "Kanton", "PLZ"},
    Format{"be lu", "S|Z C|A|N", "Province", "Code Postal"},
    Format{"nl", "S|Z C|A|N", "Provincie", "Postcode"},
    Format{"it sm va", "S|Z C A|N", "Provincia", "CAP"},
    Format{"es ad", "S|Z C|A|N", "Provincia", "C\u00f3digo Postal"},
    Format{"pt", "S|Z C|A|N", "Distrito", "C\u00f3digo Postal"},
    Format{"dk gl fo no", "S|Z C|A|N", "Region", "Postnummer"},
    Format{"se", "S|Z C|A|N", "L\u00e4n", "Postnummer"},
    Format{"fi ax", "S|Z C|A|N", "Maakunta", "Postinumero"},
    Format{"is ee lv lt pl cz sk si hr rs ba me mk al bg ro gr cy tr il", "S|Z C|A|N", "Region",
           "Postal Code"},
    Format{"hu", "C|S|Z|A|N", "County", "Postal Code"},
    Format{"ru ua by kz", "S|C|A|Z|N", "Region", "Postal Code"},
    Format{"jp", "Z|A C|S|N", "Prefecture", "Postal Code"},
    Format{"cn tw kr", "N|A C|S|Z", "Province", "Postal Code"},
    Format{"in", "S|C Z|A|N", "State", "PIN Code"},
    Format{"sg hk mo", "S|C Z|A|N", "District", "Postal Code"},
    Format{"br", "S|C A|Z|N", "Estado", "CEP"},
    Format{"mx", "S|Z C, A|N", "Estado", "C\u00f3digo Postal"},
    Format{"ar cl co pe uy ve", "S|Z C|A|N", "Provincia", "C\u00f3digo Postal"},
};

constexpr bool everyFieldIsWritten() {
    for (const Format& format : kFormats) {
        for (const char field : std::string_view("SCAZN")) {
            if (format.layout.find(field) == format.layout.npos) {
                return false;
            }
        }
    }
    return true;
}
static_assert(everyFieldIsWritten());

const Format& formatOf(const std::string& country) {
    const auto* const found = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& format) {
        return country.size() == 2 && format.countries.find(country) != format.countries.npos;
    });
    return found == kFormats.end() ? kFormats.front() : *found;
}

struct Field {
    NSString* key;
    NSString* name;
};

// Returns the field for a character of a layout; one without a key for a separator.
Field fieldOf(char character, const Format& format) {
    switch (character) {
    case 'S':
        return {kABAddressStreetKey, @"Street"};
    case 'C':
        return {kABAddressCityKey, @"City"};
    case 'A':
        return {kABAddressStateKey, [NSString stringWithUTF8String:format.area]};
    case 'Z':
        return {kABAddressZIPKey, [NSString stringWithUTF8String:format.code]};
    case 'N':
        return {kABAddressCountryKey, @"Country"};
    default:
        return {nil, nil};
    }
}

// Returns the text of a field; nil when it is missing, empty or not text.
NSString* textOf(NSDictionary* address, NSString* key) {
    id text = [address objectForKey:key];
    return [text isKindOfClass:[NSString class]] && [text length] > 0 ? text : nil;
}

void append(NSMutableAttributedString* text, NSString* part, NSDictionary* attributes) {
    [text appendAttributedString:[[[NSAttributedString alloc] initWithString:part
                                                                  attributes:attributes] autorelease]];
}

} // namespace

@implementation ABAddressBook (ABFormattedAddress)

- (NSAttributedString*)formattedAddressFromDictionary:(NSDictionary*)address {
    if (address == nil) {
        return nil;
    }
    NSString* country = textOf(address, kABAddressCountryCodeKey);
    const Format& format =
        formatOf(addressbook::textFrom([country ? country : [self defaultCountryCode] lowercaseString]));
    NSMutableAttributedString* text = [[[NSMutableAttributedString alloc] init] autorelease];
    NSString* between = @""; // the separator before the next field that is there
    bool begun = false;      // whether the line has a field already
    for (const char character : format.layout) {
        const Field field = fieldOf(character, format);
        NSString* part = field.key ? textOf(address, field.key) : nil;
        if (part != nil) {
            if ([text length] > 0) {
                append(text, begun ? between : @"\n", nil);
            }
            append(text, part, [NSDictionary dictionaryWithObject:field.name forKey:field.key]);
            begun = true;
            between = @"";
        } else if (field.key == nil && character != '|') {
            between = [between stringByAppendingFormat:@"%c", character];
        } else {
            begun = begun && character != '|';
            between = @"";
        }
    }
    return [[text copy] autorelease];
}

@end
