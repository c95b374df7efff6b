#import "plugin/records/plugin_state.h"
#include "tests/plugin/support.h"

namespace {

// A person with three phones and three addresses, of which the second is the primary one. Whatever becomes of
// the others, it stays that.
class PrimaryEntryTest : public PluginTest {
  protected:
    void SetUp() override {
        PluginTest::SetUp();
        ABPerson* person = addPerson(@"Anna", @"Smith");
        phones_ = give(person, kABPhoneProperty, @"1", @"2", @"3");
        const auto address = [](NSString* city) {
            return [NSDictionary
                dictionaryWithObjectsAndKeys:city, kABAddressCityKey, @"gb", kABAddressCountryCodeKey, nil];
        };
        addresses_ = give(person, kABAddressProperty, address(@"Bath"), address(@"Wells"), address(@"Ely"));
        ASSERT_TRUE([[ABAddressBook sharedAddressBook] save]);
        id_ = utf8([person uniqueId]);
        ASSERT_EQ(call(Do_KORU_Open, {id_}), "0");
    }

    // Identifiers of the entries.
    using Ids = std::vector<std::string>;

    // Saves, and answers the value of the primary entry as the address book has it then.
    std::string primary(NSString* property) {
        EXPECT_EQ(call(Do_KORU_Save), "0");
        ABRecord* person = [[ABAddressBook sharedAddressBook] recordForUniqueId:string(id_)];
        ABMultiValue* list = [person valueForProperty:property];
        const NSUInteger index = [list indexForIdentifier:[list primaryIdentifier]];
        return index < [list count] ? utf8([[list valueAtIndex:index] description]) : "none";
    }
    std::string primaryPhone() { return primary(kABPhoneProperty); }
    std::string primaryAddress() { return primary(kABAddressProperty); }

    Ids phones_;
    Ids addresses_;

  private:
    static Ids give(ABPerson* person, NSString* property, id first, id second, id third) {
        ABMutableMultiValue* list = [[[ABMutableMultiValue alloc] init] autorelease];
        Ids ids;
        for (id value : {first, second, third}) {
            ids.push_back(utf8([list addValue:value withLabel:kABHomeLabel]));
        }
        EXPECT_TRUE([list setPrimaryIdentifier:string(ids[1])]);
        EXPECT_TRUE([person setValue:list forProperty:property]);
        return ids;
    }

    std::string id_;
};

TEST_F(PrimaryEntryTest, ItStaysWhenAnEntryIsChanged) {
    EXPECT_EQ(primaryPhone(), "2");
    EXPECT_EQ(call(Do_KORU_SetValueForUID, {"phone", phones_[0], "10"}), "0");
    EXPECT_EQ(primaryPhone(), "2");
    EXPECT_EQ(call(Do_KORU_SetValueForUID, {"phone", phones_[1], "20"}), "0");
    EXPECT_EQ(primaryPhone(), "20");
    for (const std::string& id : phones_) {
        EXPECT_EQ(call(Do_KORU_SetLabelForUID, {"phone", id, "work"}), "0");
        EXPECT_EQ(primaryPhone(), "20");
    }
}

TEST_F(PrimaryEntryTest, ItStaysWhenAFieldOfAnAddressIsChangedOrRemoved) {
    EXPECT_EQ(call(Do_KORU_SetValueForUID, {"address", addresses_[0], "York", "city"}), "0");
    EXPECT_EQ(primaryAddress(), "{\n    City = Wells;\n    CountryCode = gb;\n}");
    EXPECT_EQ(call(Do_KORU_SetValueForUID, {"address", addresses_[1], "BA5", "zip"}), "0");
    EXPECT_EQ(primaryAddress(), "{\n    City = Wells;\n    CountryCode = gb;\n    ZIP = BA5;\n}");
    EXPECT_EQ(call(Do_KORU_DeleteValueForUID, {"address", addresses_[1], "zip"}), "0");
    EXPECT_EQ(primaryAddress(), "{\n    City = Wells;\n    CountryCode = gb;\n}");
    EXPECT_EQ(call(Do_KORU_DeleteValueForUID, {"address", addresses_[2], "City"}), "0");
    EXPECT_EQ(primaryAddress(), "{\n    City = Wells;\n    CountryCode = gb;\n}");
}

TEST_F(PrimaryEntryTest, ItStaysWhenAnEntryIsAdded) {
    EXPECT_EQ(call(Do_KORU_AddMV, {"phone", "4", "home"}).size(), 36U);
    EXPECT_EQ(primaryPhone(), "2");
    EXPECT_EQ(call(Do_KORU_AddAddress, {"home", "", "York", "", "", "", "gb"}).size(), 36U);
    EXPECT_EQ(primaryAddress(), "{\n    City = Wells;\n    CountryCode = gb;\n}");
}

TEST_F(PrimaryEntryTest, ItStaysWhenAnotherEntryIsRemoved) {
    EXPECT_EQ(call(Do_KORU_DeleteValueForUID, {"phone", phones_[0]}), "0");
    EXPECT_EQ(primaryPhone(), "2");
    EXPECT_EQ(call(Do_KORU_DeleteValueForUID, {"phone", phones_[2]}), "0");
    EXPECT_EQ(primaryPhone(), "2");
}

TEST_F(PrimaryEntryTest, ItStaysWhenTheListIsWrittenBackAfterARefusal) {
    ABPerson* person = state.g_person.get();
    ABMutableMultiValue* dates = [[[ABMutableMultiValue alloc] init] autorelease];
    [dates addValue:[NSDate dateWithTimeIntervalSinceReferenceDate:0] withLabel:kABHomeLabel];
    NSString* second = [dates addValue:[NSDate dateWithTimeIntervalSinceReferenceDate:86400]
                             withLabel:kABHomeLabel];
    ASSERT_TRUE([dates setPrimaryIdentifier:second]);
    ASSERT_TRUE([person setValue:dates forProperty:kABOtherDatesProperty]);
    const std::string before = primary(kABOtherDatesProperty);
    EXPECT_EQ(call(Do_KORU_SetValueForUID, {"dates", utf8(second), "no date"}), "!!ERROR!!");
    EXPECT_EQ(primary(kABOtherDatesProperty), before);
}

TEST_F(PrimaryEntryTest, AnotherTakesThePlaceOfARemovedOne) {
    EXPECT_EQ(call(Do_KORU_DeleteValueForUID, {"phone", phones_[1]}), "0");
    EXPECT_EQ(primaryPhone(), "1");
}

} // namespace
