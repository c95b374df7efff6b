#include "tests/framework/support.h"

#include "frameworks/AddressBook/values/property.h"

#include <map>

namespace {

using namespace addressbook;

// Every property constant with the name that the store knows it by.
const std::map<std::string_view, NSString*> kProperties = {
    {property::kUid, kABUIDProperty},
    {property::kCreation, kABCreationDateProperty},
    {property::kModification, kABModificationDateProperty},
    {property::kFirst, kABFirstNameProperty},
    {property::kLast, kABLastNameProperty},
    {property::kFirstPhonetic, kABFirstNamePhoneticProperty},
    {property::kLastPhonetic, kABLastNamePhoneticProperty},
    {property::kMiddle, kABMiddleNameProperty},
    {property::kMiddlePhonetic, kABMiddleNamePhoneticProperty},
    {property::kTitle, kABTitleProperty},
    {property::kSuffix, kABSuffixProperty},
    {property::kNickname, kABNicknameProperty},
    {property::kMaidenName, kABMaidenNameProperty},
    {property::kBirthday, kABBirthdayProperty},
    {property::kOrganization, kABOrganizationProperty},
    {property::kJobTitle, kABJobTitleProperty},
    {property::kDepartment, kABDepartmentProperty},
    {property::kNote, kABNoteProperty},
    {property::kHomePage, kABHomePageProperty},
    {property::kPersonFlags, kABPersonFlags},
    {property::kUrls, kABURLsProperty},
    {property::kCalendarUris, kABCalendarURIsProperty},
    {property::kEmail, kABEmailProperty},
    {property::kPhone, kABPhoneProperty},
    {property::kRelatedNames, kABRelatedNamesProperty},
    {property::kAim, kABAIMInstantProperty},
    {property::kJabber, kABJabberInstantProperty},
    {property::kMsn, kABMSNInstantProperty},
    {property::kYahoo, kABYahooInstantProperty},
    {property::kIcq, kABICQInstantProperty},
    {property::kAddress, kABAddressProperty},
    {property::kOtherDates, kABOtherDatesProperty},
    {property::kSocialProfile, kABSocialProfileProperty},
    {property::kInstantMessage, kABInstantMessageProperty},
    {property::kGroupName, kABGroupNameProperty},
};

TEST(Constants, PropertiesAgreeWithTheStore) {
    for (const auto& row : builtInProperties()) {
        const auto found = kProperties.find(row.name);
        ASSERT_NE(found, kProperties.end()) << row.name;
        EXPECT_EQ(text(found->second), row.name);
        EXPECT_EQ(row.scope == Scope::group ? 0 : row.type, [ABPerson typeOfProperty:found->second]);
        EXPECT_EQ(row.scope == Scope::person ? 0 : row.type, [ABGroup typeOfProperty:found->second]);
    }
    EXPECT_EQ(kProperties.size(), builtInProperties().size());
}

TEST(Constants, LabelsOfListsAreTheGenericOnes) {
    for (NSString* label : {kABEmailHomeLabel, kABAddressHomeLabel, kABPhoneHomeLabel, kABAIMHomeLabel,
                            kABJabberHomeLabel, kABMSNHomeLabel, kABYahooHomeLabel, kABICQHomeLabel})
        EXPECT_TRUE([label isEqual:kABHomeLabel]);
    for (NSString* label : {kABEmailWorkLabel, kABAddressWorkLabel, kABPhoneWorkLabel, kABAIMWorkLabel,
                            kABJabberWorkLabel, kABMSNWorkLabel, kABYahooWorkLabel, kABICQWorkLabel})
        EXPECT_TRUE([label isEqual:kABWorkLabel]);
    EXPECT_EQ(text(kABHomeLabel), "_$!<Home>!$_");
    EXPECT_EQ(text(kABPhoneWorkFAXLabel), "_$!<WorkFAX>!$_");
    EXPECT_EQ(text(kABHomePageLabel), "_$!<HomePage>!$_");
}

TEST(Constants, NumbersAreTheKnownOnes) {
    EXPECT_EQ(kABMultiDictionaryProperty, 262);
    EXPECT_EQ(kABDateComponentsProperty, 8);
    EXPECT_EQ(kABSuffixMatchCaseInsensitive, 16);
    EXPECT_EQ(kABNotWithinIntervalFromTodayYearless, 24);
    EXPECT_EQ(kABLastNameFirst, 16);
    EXPECT_EQ(kABFirstNameFirst, 32);
}

} // namespace
