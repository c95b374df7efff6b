#import "plugin/records/search.h"
#import "plugin/vocabulary/address_keys.h"
#import "plugin/vocabulary/country_codes.h"
#import "plugin/vocabulary/labels.h"
#import "plugin/vocabulary/property_names.h"
#include "tests/plugin/support.h"
#include <algorithm>
#include <map>
#include <set>

namespace {

class VocabularyTest : public testing::Test {
    Pool pool_;
};

TEST_F(VocabularyTest, EveryPropertyNameIsNormalisedAndUniqueAndFindsItsProperty) {
    std::set<std::string> keys;
    for (const PropertyName& row : propertyNames()) {
        const std::string key = utf8(row.key);
        EXPECT_TRUE(keys.insert(key).second) << key;
        EXPECT_EQ(key.find(' '), std::string::npos) << key;
        EXPECT_EQ(utf8([row.key lowercaseString]), key);
        ASSERT_NE(*row.property, nil) << key;
        EXPECT_EQ(utf8(toPropertyString(row.key)), utf8(*row.property)) << key;
        EXPECT_EQ(utf8(toPropertyString([row.key uppercaseString])), utf8(*row.property)) << key;
    }
    EXPECT_EQ(keys.size(), 34U);
}

TEST_F(VocabularyTest, EveryPropertyIsAlsoFoundByTheFrameworksOwnName) {
    for (const PropertyName& row : propertyNames()) {
        EXPECT_EQ(utf8(toPropertyString(*row.property)), utf8(*row.property));
    }
}

TEST_F(VocabularyTest, EveryPropertyExistsInOneOfTheClasses) {
    for (const PropertyName& row : propertyNames()) {
        EXPECT_TRUE([ABPerson typeOfProperty:*row.property] != 0 ||
                    [ABGroup typeOfProperty:*row.property] != 0)
            << utf8(row.key);
    }
}

TEST_F(VocabularyTest, PropertyNamesIgnoreCaseAndBlanksAndNothingElse) {
    EXPECT_EQ(utf8(toPropertyString(@"First Name")), utf8(kABFirstNameProperty));
    EXPECT_EQ(utf8(toPropertyString(@" F I R S T name ")), utf8(kABFirstNameProperty));
    for (std::size_t blanks = 1; blanks < 600; ++blanks) { // more spellings than are kept
        const std::string name = "first" + std::string(blanks, ' ') + "name";
        EXPECT_EQ(utf8(toPropertyString(string(name))), utf8(kABFirstNameProperty)) << name;
    }
    EXPECT_EQ(utf8(toPropertyString(@"E-Mail")), utf8(kABEmailProperty));
    EXPECT_EQ(toPropertyString(@"email"), nil);
    EXPECT_EQ(toPropertyString(@"First-Name"), nil);
    EXPECT_EQ(toPropertyString(@"First\tName"), nil);
    EXPECT_EQ(toPropertyString(@"First\u00A0Name"), nil);
    EXPECT_EQ(toPropertyString(@" "), nil);
}

TEST_F(VocabularyTest, TheFrameworksOwnNameIsTakenWithItsLetterCaseOnly) {
    EXPECT_EQ(utf8(toPropertyString(@"Email")), utf8(kABEmailProperty));
    EXPECT_EQ(utf8(toPropertyString(@"AIMInstant")), utf8(kABAIMInstantProperty));
    EXPECT_EQ(toPropertyString(@"aiminstant"), nil);
    // The single home page has no name here, not even its own.
    EXPECT_EQ(utf8(toPropertyString(@"HomePage")), utf8(kABURLsProperty));
}

TEST_F(VocabularyTest, NoPropertyNameIsTheUniqueIdentifier) {
    EXPECT_EQ(utf8(toPropertyString(nil)), utf8(kABUIDProperty));
}

TEST_F(VocabularyTest, LabelTablesAreComplete) {
    EXPECT_EQ(frameworkLabels().size(), 27U);
    EXPECT_EQ(messagingLabels().size(), 10U);
    EXPECT_EQ(exchangeLabels().size(), 34U);
}

TEST_F(VocabularyTest, WritingALabelTakesTheFirstRowWithItsWord) {
    std::map<std::string, std::string> first;
    for (const auto labels : {frameworkLabels(), messagingLabels(), exchangeLabels()}) {
        for (const Label& label : labels) {
            ASSERT_NE(label.stored(), nil) << utf8(label.word);
            EXPECT_EQ(utf8([label.word lowercaseString]), utf8(label.word));
            first.emplace(utf8(label.word), utf8(label.stored()));
        }
    }
    EXPECT_EQ(first.size(), 69U) << "two words, and no others, stand twice";
    for (const auto& [word, stored] : first) {
        EXPECT_EQ(utf8(StringToLabel(string(word))), stored);
        EXPECT_EQ(utf8(StringToLabel([string(word) uppercaseString])), stored);
    }
}

TEST_F(VocabularyTest, ReadingALabelTakesTheFirstRowThatStoresIt) {
    std::map<std::string, std::string> first;
    for (const auto labels : {frameworkLabels(), exchangeLabels(), messagingLabels()}) {
        for (const Label& label : labels) {
            first.emplace(utf8(label.stored()), utf8(label.word));
        }
    }
    for (const auto& [stored, word] : first) {
        EXPECT_EQ(utf8(LabelToString(string(stored))), word);
    }
    EXPECT_EQ(utf8(LabelToString(@"_$!<Work>!$_")), "work");
    EXPECT_EQ(utf8(LabelToString(@"_$!<Home>!$_")), "home");
    EXPECT_EQ(utf8(LabelToString(@"_$!<WorkFAX>!$_")), "work fax");
}

TEST_F(VocabularyTest, ExchangeLabelsKeepTheirOddities) {
    EXPECT_EQ(utf8(StringToLabel(@"assistant phone ex")), "_$!EX-AssistantPhone>!$_");
    EXPECT_EQ(utf8(StringToLabel(@"messaginb 3 ex")), "_$!<EX-ImAddress3>!$_");
    EXPECT_EQ(StringToLabel(@"messaging 3 ex"), nil);
    EXPECT_EQ(utf8(StringToLabel(@"home ex")), "_$!<EX-HomePhone>!$_");
    EXPECT_EQ(utf8(StringToLabel(@"other ex")), "_$!<EX-OtherTelephone>!$_");
    EXPECT_EQ(utf8(LabelToString(@"_$!<EX-Home>!$_")), "home ex");
    EXPECT_EQ(utf8(LabelToString(@"_$!<EX-Other>!$_")), "other ex");
    for (const Label& label : exchangeLabels()) {
        EXPECT_EQ(utf8(LabelToString(label.stored())), utf8(label.word));
    }
}

TEST_F(VocabularyTest, ALabelsWordMayBeInAnyLetterCase) {
    for (NSString* word : {@"Work Fax", @"WORK FAX", @"work fax"}) {
        EXPECT_EQ(utf8(StringToLabel(word)), utf8(kABPhoneWorkFAXLabel)) << utf8(word);
    }
}

TEST_F(VocabularyTest, OtherLabelsAreLeftToTheCaller) {
    EXPECT_EQ(StringToLabel(@"workfax"), nil);
    EXPECT_EQ(StringToLabel(@"Cottage"), nil);
    EXPECT_EQ(StringToLabel(nil), nil);
    EXPECT_EQ(LabelToString(@"Cottage"), nil);
    EXPECT_EQ(LabelToString(@"_$!<work>!$_"), nil);
    EXPECT_EQ(LabelToString(nil), nil);
}

TEST_F(VocabularyTest, AddressKeysGoByPrefixThenByName) {
    const std::map<std::string, NSString*> expected = {
        {"Street", kABAddressStreetKey},
        {"Street 2", kABAddressStreetKey},
        {"Streets", kABAddressStreetKey},
        {"street", kABAddressStreetKey},
        {"City", kABAddressCityKey},
        {"CITY", kABAddressCityKey},
        {"State", kABAddressStateKey},
        {"state", kABAddressStateKey},
        {"ZIP", kABAddressZIPKey},
        {"zip", kABAddressZIPKey},
        {"Zip code", kABAddressZIPKey},
        {"Country", kABAddressCountryKey},
        {"Country Code", kABAddressCountryKey},
        {"CountryCode", kABAddressCountryKey},
        {"Countryside", kABAddressCountryKey},
        {"countrycode", kABAddressCountryCodeKey},
        {"COUNTRYCODE", kABAddressCountryCodeKey},
    };
    for (const auto& [word, key] : expected) {
        EXPECT_EQ(utf8(toKeyString(string(word))), utf8(key)) << word;
    }
    for (const char* word : {"Postcode", "street 2", "zip code", "country code", " Street", ""}) {
        EXPECT_EQ(toKeyString(string(word)), nil) << word;
    }
    EXPECT_EQ(toKeyString(nil), nil);
    EXPECT_EQ(addressKeys().size(), 6U);
}

TEST_F(VocabularyTest, CountryCodesAreTheListedOnes) {
    EXPECT_EQ(kCountryCodes.size(), 200U);
    EXPECT_TRUE(std::is_sorted(kCountryCodes.begin(), kCountryCodes.end()));
    EXPECT_EQ(std::count(kCountryCodes.begin(), kCountryCodes.end(), "vn"), 2);
    EXPECT_EQ(std::set(kCountryCodes.begin(), kCountryCodes.end()).size(), 199U);
    for (const std::string_view code : kCountryCodes) {
        EXPECT_TRUE(IsValidCountryCode(string(std::string(code)))) << code;
    }
    for (const char* code : {"DE", "De", "uk", "pr", "sm", "d", "deu", "", "1a"}) {
        EXPECT_FALSE(IsValidCountryCode(string(code))) << code;
    }
    EXPECT_FALSE(IsValidCountryCode(nil));
}

TEST_F(VocabularyTest, ComparisonsStandInTheOrderOfTheirValues) {
    ASSERT_EQ(comparisons().size(), 25U);
    for (std::size_t i = 0; i < comparisons().size(); ++i) {
        const Comparison& comparison = comparisons()[i];
        EXPECT_EQ(comparison.value, static_cast<ABSearchComparison>(i));
        EXPECT_EQ(comparison.isInterval, i >= 17);
        EXPECT_EQ(comparisonNamed(comparison.name).value, comparison.value);
    }
    EXPECT_EQ(comparisonNamed(@"equal").value, kABEqual);
    EXPECT_EQ(comparisonNamed(@"greaterThan").value, kABEqual);
    EXPECT_EQ(comparisonNamed(nil).value, kABEqual);
}

} // namespace
