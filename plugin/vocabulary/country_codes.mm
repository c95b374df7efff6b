#import "plugin/vocabulary/country_codes.h"

#include <algorithm>

using namespace koru;

bool IsValidCountryCode(NSString* code) {
    if ([code length] != 2) {
        return false;
    }
    const unichar first = [code characterAtIndex:0];
    const unichar second = [code characterAtIndex:1];
    return std::any_of(kCountryCodes.begin(), kCountryCodes.end(), [&](std::string_view listed) {
        return first == static_cast<unichar>(listed[0]) && second == static_cast<unichar>(listed[1]);
    });
}
