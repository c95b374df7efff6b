#import "plugin/vocabulary/address_keys.h"

namespace koru {
namespace {

const AddressKey kAddressKeys[] = {
    {@"Street", &kABAddressStreetKey},   {@"City", &kABAddressCityKey},
    {@"State", &kABAddressStateKey},     {@"Zip", &kABAddressZIPKey},
    {@"Country", &kABAddressCountryKey}, {@"Country Code", &kABAddressCountryCodeKey},
};

} // namespace

std::span<const AddressKey> addressKeys() {
    return kAddressKeys;
}

} // namespace koru

using namespace koru;

NSString* toKeyString(NSString* word) {
    if (word == nil) {
        return nil;
    }
    for (const AddressKey& row : kAddressKeys) {
        if ([word hasPrefix:row.prefix] || [word caseInsensitiveCompare:*row.key] == NSOrderedSame) {
            return *row.key;
        }
    }
    return nil;
}
