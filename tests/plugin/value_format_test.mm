#import "plugin/vocabulary/value_format.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "tests/plugin/person_double.h"
#include "tests/plugin/support.h"
#include <array>
#include <cstdlib>

// A person whose every value is an address that cannot be read.
@interface VelocardFailingAddressPerson : ABPerson
@end
@implementation VelocardFailingAddressPerson
- (id)valueForProperty:(NSString*)property {
    (void)property;
    return [[[VelocardFailingAddress alloc] init] autorelease];
}
@end

namespace {

// Another time zone of the system for the rest of the block.
class SystemTimeZone {
  public:
    explicit SystemTimeZone(const char* name) { set(name); }
    ~SystemTimeZone() { set("UTC"); }
    SystemTimeZone(const SystemTimeZone&) = delete;
    SystemTimeZone& operator=(const SystemTimeZone&) = delete;

  private:
    static void set(const char* name) {
        setenv("TZ", name, 1);
        [NSTimeZone resetSystemTimeZone];
    }
};

class ValueFormatTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        state.g_person = Retained<ABPerson>::adopt(
            [[ABPerson alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
    }

    // Gives the person two addresses; answers the first one's identifier.
    static NSString* addAddresses() {
        ABMutableMultiValue* addresses = [[[ABMutableMultiValue alloc] init] autorelease];
        NSString* identifier = [addresses
             addValue:[NSDictionary dictionaryWithObjectsAndKeys:@"12 Quay Street", kABAddressStreetKey,
                                                                 @"Bristol", kABAddressCityKey, @"gb",
                                                                 kABAddressCountryCodeKey, nil]
            withLabel:kABHomeLabel];
        [addresses addValue:[NSDictionary dictionaryWithObject:@"Bath" forKey:kABAddressCityKey]
                  withLabel:kABWorkLabel];
        EXPECT_TRUE([state.g_person.get() setValue:addresses forProperty:kABAddressProperty]);
        return identifier;
    }

    std::string single(id value, ABPropertyType type, NSString* name = @"note") {
        return utf8(singleValueAnswer(value, type, name, *result_).text());
    }

    OwnedData result_;
};

NSDate* date(NSString* text) {
    return [NSDate dateWithTimeIntervalSince1970:[text doubleValue]];
}

TEST_F(ValueFormatTest, AWholeValue) {
    [state.g_person.get() setValue:@"Anna" forProperty:kABFirstNameProperty];
    EXPECT_EQ(utf8(GetPropertyValue(@"firstname", nil, nil, 0)), "Anna");
    EXPECT_EQ(GetPropertyValue(@"nickname", nil, nil, 99), nil);
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(ValueFormatTest, AnEntryAndAFieldOfAnAddress) {
    NSString* identifier = addAddresses();
    EXPECT_TRUE([GetPropertyValue(@"address", identifier, nil, 0) isKindOfClass:[NSDictionary class]]);
    EXPECT_EQ(utf8(GetPropertyValue(@"address", identifier, @"Street 2", 0)), "12 Quay Street");
    EXPECT_EQ(utf8(GetPropertyValue(@"address", identifier, @"countrycode", 0)), "gb");
    EXPECT_EQ(GetPropertyValue(@"address", identifier, @"Country Code", 0), nil)
        << "the country, which it lacks";
    EXPECT_EQ(errors.g_llasterror, kSuccess);
}

TEST_F(ValueFormatTest, WhatAnEntryIsRefusedFor) {
    NSString* identifier = addAddresses();
    const auto codeAfter = [](NSString* name, NSString* entry, NSString* key) {
        errors.g_llasterror = kSuccess;
        EXPECT_EQ(GetPropertyValue(name, entry, key, 0), nil);
        return errors.g_llasterror;
    };
    EXPECT_EQ(codeAfter(@"address", nil, @"City"), kUidMissing);
    EXPECT_EQ(codeAfter(@"firstname", identifier, nil), kInvalidPropertyType);
    EXPECT_EQ(codeAfter(@"address", @"another", nil), kUidDoesNotExist);
    EXPECT_EQ(codeAfter(@"address", identifier, @"Postcode"), kInvalidKey);
    EXPECT_EQ(codeAfter(@"phone", identifier, nil), kInvalidPropertyType) << "a list that has no value";
    EXPECT_EQ(codeAfter(@"shoe size", nil, nil), kInvalidPropertyName);
    EXPECT_EQ(codeAfter(@"name", nil, nil), kErrorInProperty);
    [state.g_person.get() setValue:@"Anna" forProperty:kABFirstNameProperty];
    EXPECT_EQ(codeAfter(@"firstname", nil, @"City"), kNotAnAddress);
}

TEST_F(ValueFormatTest, SingleValuesAsText) {
    EXPECT_EQ(singleValueAnswer(nil, kABDateProperty, @"birthday", *result_).text(), nil);
    EXPECT_FALSE(singleValueAnswer(nil, kABDateProperty, @"birthday", *result_).isWritten());
    EXPECT_EQ(single(@"Anna", kABStringProperty), "Anna");
    EXPECT_EQ(single([NSNumber numberWithInt:-7], kABIntegerProperty), "-7");
}

TEST_F(ValueFormatTest, FlagsAreWordsForOneSpellingOnly) {
    const auto flags = [&](int value, NSString* name) {
        return single([NSNumber numberWithInt:value], kABIntegerProperty, name);
    };
    EXPECT_EQ(flags(1, @"Person Flags"), "ShowAsCompany");
    EXPECT_EQ(flags(17, @"Person Flags"), "ShowAsCompany");
    EXPECT_EQ(flags(4, @"Person Flags"), "ShowAsCompany");
    EXPECT_EQ(flags(0, @"Person Flags"), "ShowAsPerson");
    EXPECT_EQ(flags(16, @"Person Flags"), "ShowAsPerson");
    EXPECT_EQ(flags(1, @"PersonFlags"), "1");
    EXPECT_EQ(flags(1, @"person flags"), "1");
}

TEST_F(ValueFormatTest, ADateIsATimeStampInTheSystemsTimeZone) {
    // 29 February 2012, 13:14:15 UTC.
    const Answer answer = singleValueAnswer(date(@"1330521255.75"), kABDateProperty, @"birthday", *result_);
    EXPECT_TRUE(answer.isWritten());
    ASSERT_EQ(result_->GetNativeType(), fmx::Data::kDTTimeStamp);
    const fmx::DateTime& stamp = result_->GetAsTimeStamp();
    EXPECT_EQ(stamp.GetYear(), 2012);
    EXPECT_EQ(stamp.GetMonth(), 2);
    EXPECT_EQ(stamp.GetDay(), 29);
    EXPECT_EQ(stamp.GetHour(), 13);
    EXPECT_EQ(stamp.GetMinute(), 14);
    EXPECT_EQ(stamp.GetSec(), 15);
    EXPECT_EQ(stamp.GetUSec(), 0);
}

TEST_F(ValueFormatTest, ATimeStampFollowsTheClocksOfTheTimeZone) {
    // Year, month, day, hour, minute, second.
    using Parts = std::array<int, 6>;
    const auto partsOf = [&](NSString* seconds) {
        EXPECT_TRUE(singleValueAnswer(date(seconds), kABDateProperty, @"birthday", *result_).isWritten());
        const fmx::DateTime& stamp = result_->GetAsTimeStamp();
        return Parts{stamp.GetYear(),   stamp.GetMonth(), stamp.GetDay(), static_cast<int>(stamp.GetHour()),
                     stamp.GetMinute(), stamp.GetSec()};
    };
    {
        const SystemTimeZone zone("America/New_York");
        EXPECT_EQ(partsOf(@"1330495200"), (Parts{2012, 2, 29, 1, 0, 0}));
        // The clocks go from 2 to 3 on 11 March, and from 2 back to 1 on 4 November.
        EXPECT_EQ(partsOf(@"1331449199"), (Parts{2012, 3, 11, 1, 59, 59}));
        EXPECT_EQ(partsOf(@"1331449200"), (Parts{2012, 3, 11, 3, 0, 0}));
        EXPECT_EQ(partsOf(@"1352006999"), (Parts{2012, 11, 4, 1, 29, 59}));
        EXPECT_EQ(partsOf(@"1352010599"), (Parts{2012, 11, 4, 1, 29, 59}));
        // The day before, there.
        EXPECT_EQ(partsOf(@"1356999600"), (Parts{2012, 12, 31, 19, 20, 0}));
    }
    EXPECT_EQ(partsOf(@"1330495200"), (Parts{2012, 2, 29, 6, 0, 0}));
}

TEST_F(ValueFormatTest, ADateThatTheHostHasNotIsEmpty) {
    // The last second of the year 4000, the next, and a day of the year 9999.
    EXPECT_TRUE(singleValueAnswer(date(@"64092211199"), kABDateProperty, @"birthday", *result_).isWritten());
    EXPECT_EQ(result_->GetAsTimeStamp().GetYear(), 4000);
    for (NSString* seconds : {@"64092211200", @"253370764800"}) {
        const Answer answer = singleValueAnswer(date(seconds), kABDateProperty, @"birthday", *result_);
        EXPECT_FALSE(answer.isWritten()) << utf8(seconds);
        EXPECT_EQ(answer.text(), nil);
        EXPECT_FALSE(entryAnswer(date(seconds), kABMultiDateProperty, nil, *result_).isWritten());
    }
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    [state.g_person.get() setValue:date(@"253370764800") forProperty:kABBirthdayProperty];
    EXPECT_EQ(call(Do_KORU_GetValueForProperty, {"birthday"}), "");
    EXPECT_EQ(lastErrorText(), "Success");
}

TEST_F(ValueFormatTest, AnExceptionLeavesTheValueFoundSoFar) {
    state.g_person = Retained<ABPerson>::adopt(
        [[VelocardFailingAddressPerson alloc] initWithAddressBook:[ABAddressBook sharedAddressBook]]);
    id value = GetPropertyValue(@"firstname", nil, @"City", 0);
    EXPECT_TRUE([value isKindOfClass:[VelocardFailingAddress class]]);
    EXPECT_EQ(errors.g_llasterror, kExceptionCaught);
    EXPECT_EQ(utf8([errors.error getError]), "Exception caught in function cannot read City");
    errors.g_llasterror = kSuccess;
    EXPECT_EQ(GetPropertyValue(@"firstname", nil, @"Postcode", 0), nil);
    EXPECT_EQ(errors.g_llasterror, kInvalidKey);
}

TEST_F(ValueFormatTest, OtherTypesWithTheDateBitTakeTheDatePath) {
    for (const ABPropertyType type : {kABArrayProperty, kABDictionaryProperty, kABDataProperty}) {
        EXPECT_TRUE(singleValueAnswer(date(@"0"), type, @"x", *result_).isWritten()) << type;
    }
    EXPECT_FALSE(singleValueAnswer(date(@"0"), kABDateComponentsProperty, @"x", *result_).isWritten());
}

TEST_F(ValueFormatTest, EntriesOfLists) {
    NSDictionary* address = [NSDictionary dictionaryWithObject:@"Bristol" forKey:kABAddressCityKey];
    const auto entry = [&](id value, ABPropertyType type, NSString* key) {
        errors.g_llasterror = kSuccess;
        return utf8(entryAnswer(value, type, key, *result_).text());
    };
    EXPECT_EQ(entry(address, kABMultiDictionaryProperty, @"City"), "Bristol");
    EXPECT_EQ(entry(address, kABMultiDictionaryProperty, @"zip"), "(nil)");
    EXPECT_EQ(errors.g_llasterror, kSuccess);
    EXPECT_EQ(entry(address, kABMultiDictionaryProperty, @"Postcode"), "(nil)");
    EXPECT_EQ(errors.g_llasterror, kInvalidKey);
    EXPECT_EQ(entry(address, kABMultiDictionaryProperty, nil), utf8([address description]));
    EXPECT_EQ(entry(@"555-1234", kABMultiStringProperty, @"City"), "555-1234");
    for (const ABPropertyType type : {kABMultiDateProperty, kABDateProperty}) {
        EXPECT_TRUE(entryAnswer(date(@"0"), type, nil, *result_).isWritten());
    }
}

} // namespace
