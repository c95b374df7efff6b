#include "tests/framework/support.h"

#include <cstdlib>

namespace {

class AddressFormatTest : public AddressBookTest {
  protected:
    static NSMutableDictionary* address(NSString* countryCode) {
        return [NSMutableDictionary
            dictionaryWithObjectsAndKeys:@"1 Main St", kABAddressStreetKey, @"Town", kABAddressCityKey,
                                         @"State", kABAddressStateKey, @"12345", kABAddressZIPKey, @"Country",
                                         kABAddressCountryKey, countryCode, kABAddressCountryCodeKey, nil];
    }
    std::string lines(NSDictionary* address) {
        return text([[book() formattedAddressFromDictionary:address] string]);
    }
    // A country's word for a field, and the text that has it as an attribute.
    std::string word(NSDictionary* address, NSString* key) {
        NSAttributedString* whole = [book() formattedAddressFromDictionary:address];
        const NSRange found = [[whole string] rangeOfString:[address objectForKey:key]];
        NSRange range;
        id value = [whole attribute:key atIndex:found.location effectiveRange:&range];
        return text(value) + ": " + text([[whole string] substringWithRange:range]);
    }
};

TEST_F(AddressFormatTest, AsTheCountryWritesIt) {
    EXPECT_EQ(lines(address(@"us")), "1 Main St\nTown State 12345\nCountry");
    EXPECT_EQ(lines(address(@"DE")), "1 Main St\n12345 Town\nState\nCountry");
    EXPECT_EQ(lines(address(@"gb")), "1 Main St\nTown\nState\n12345\nCountry");
    EXPECT_EQ(lines(address(@"jp")), "12345\nState Town\n1 Main St\nCountry");
    EXPECT_EQ(lines(address(@"hu")), "Town\n1 Main St\n12345\nState\nCountry");
    EXPECT_EQ(lines(address(@"it")), "1 Main St\n12345 Town State\nCountry");
    EXPECT_EQ(lines(address(@"mx")), "1 Main St\n12345 Town, State\nCountry");
    EXPECT_EQ(lines(address(@"zz")), "1 Main St\nTown State 12345\nCountry");
}

TEST_F(AddressFormatTest, WithoutACodeAsInTheUsersCountry) {
    NSMutableDictionary* one = address(@"");
    EXPECT_EQ(lines(one), "1 Main St\nTown State 12345\nCountry");
    ::setenv("LC_ALL", "de_DE.UTF-8", 1);
    [one removeObjectForKey:kABAddressCountryCodeKey];
    EXPECT_EQ(lines(one), "1 Main St\n12345 Town\nState\nCountry");
}

TEST_F(AddressFormatTest, LeavesOutWhatIsNotThere) {
    NSMutableDictionary* one = address(@"mx");
    [one removeObjectForKey:kABAddressStateKey];
    [one removeObjectForKey:kABAddressStreetKey];
    [one setObject:@"" forKey:kABAddressCountryKey];
    EXPECT_EQ(lines(one), "12345 Town");
    [one removeObjectForKey:kABAddressCityKey];
    [one setObject:@"State" forKey:kABAddressStateKey];
    EXPECT_EQ(lines(one), "12345, State");
    [one setObject:[NSNumber numberWithInt:3] forKey:kABAddressZIPKey];
    EXPECT_EQ(lines(one), "State");
    EXPECT_EQ(lines([NSDictionary dictionary]), "");
    EXPECT_EQ([book() formattedAddressFromDictionary:nil], nil);
}

TEST_F(AddressFormatTest, FieldsAreMarkedWithTheCountrysWords) {
    EXPECT_EQ(word(address(@"us"), kABAddressZIPKey), "ZIP: 12345");
    EXPECT_EQ(word(address(@"ca"), kABAddressZIPKey), "Postal Code: 12345");
    EXPECT_EQ(word(address(@"fr"), kABAddressZIPKey), "Code Postal: 12345");
    EXPECT_EQ(word(address(@"se"), kABAddressStateKey), "L\u00e4n: State");
    EXPECT_EQ(word(address(@"us"), kABAddressCityKey), "City: Town");
}

} // namespace
