#include "tests/framework/support.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <map>
#include <set>

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
    {property::kOrganizationPhonetic, kABOrganizationPhoneticProperty},
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

TEST(ConstantsTest, PropertiesAgreeWithTheStore) {
    for (const auto& row : builtInProperties()) {
        const auto found = kProperties.find(row.name);
        ASSERT_NE(found, kProperties.end()) << row.name;
        EXPECT_EQ(text(found->second), row.name);
        EXPECT_EQ(row.scope == Scope::group ? 0 : row.type, [ABPerson typeOfProperty:found->second]);
        EXPECT_EQ(row.scope == Scope::person ? 0 : row.type, [ABGroup typeOfProperty:found->second]);
    }
    EXPECT_EQ(kProperties.size(), builtInProperties().size());
}

TEST(ConstantsTest, LabelsOfListsAreTheGenericOnes) {
    for (NSString* label : {kABEmailHomeLabel, kABAddressHomeLabel, kABPhoneHomeLabel, kABAIMHomeLabel,
                            kABJabberHomeLabel, kABMSNHomeLabel, kABYahooHomeLabel, kABICQHomeLabel}) {
        EXPECT_TRUE([label isEqual:kABHomeLabel]);
    }
    for (NSString* label : {kABEmailWorkLabel, kABAddressWorkLabel, kABPhoneWorkLabel, kABAIMWorkLabel,
                            kABJabberWorkLabel, kABMSNWorkLabel, kABYahooWorkLabel, kABICQWorkLabel}) {
        EXPECT_TRUE([label isEqual:kABWorkLabel]);
    }
    EXPECT_EQ(text(kABHomeLabel), "_$!<Home>!$_");
    EXPECT_EQ(text(kABPhoneWorkFAXLabel), "_$!<WorkFAX>!$_");
    EXPECT_EQ(text(kABHomePageLabel), "_$!<HomePage>!$_");
}

TEST(ConstantsTest, DatePropertiesAreToldAsComponents) {
    EXPECT_EQ(text(kABBirthdayComponentsProperty), property::kBirthdayComponents);
    EXPECT_EQ(text(kABOtherDateComponentsProperty), property::kOtherDateComponents);
    EXPECT_EQ(text(kABAlternateBirthdayComponentsProperty), property::kAlternateBirthdayComponents);
    EXPECT_EQ([ABPerson typeOfProperty:kABAlternateBirthdayComponentsProperty], kABDateComponentsProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABBirthdayComponentsProperty], kABDateComponentsProperty);
    EXPECT_EQ([ABPerson typeOfProperty:kABOtherDateComponentsProperty], kABMultiDateComponentsProperty);
    EXPECT_EQ([ABGroup typeOfProperty:kABBirthdayComponentsProperty], kABErrorInProperty);
    EXPECT_TRUE([[ABPerson properties] containsObject:kABOtherDateComponentsProperty]);
    EXPECT_FALSE([[ABGroup properties] containsObject:kABOtherDateComponentsProperty]);
}

TEST(ConstantsTest, FieldsAndServicesAreThoseThatVCardsAreReadInto) {
    EXPECT_EQ(text(kABInstantMessageServiceKey), vcard::kInstantMessageService);
    EXPECT_EQ(text(kABInstantMessageUsernameKey), vcard::kInstantMessageUsername);
    EXPECT_EQ(text(kABSocialProfileURLKey), vcard::kSocialProfileUrl);
    EXPECT_EQ(text(kABSocialProfileUsernameKey), vcard::kSocialProfileUsername);
    EXPECT_EQ(text(kABSocialProfileUserIdentifierKey), vcard::kSocialProfileIdentifier);
    EXPECT_EQ(text(kABSocialProfileServiceKey), vcard::kSocialProfileService);
    std::set<std::string> services;
    for (const auto& row : vcard::messagingServices()) {
        services.emplace(row.name);
    }
    std::set<std::string> constants;
    for (NSString* service :
         {kABInstantMessageServiceAIM, kABInstantMessageServiceFacebook, kABInstantMessageServiceGaduGadu,
          kABInstantMessageServiceGoogleTalk, kABInstantMessageServiceICQ, kABInstantMessageServiceJabber,
          kABInstantMessageServiceMSN, kABInstantMessageServiceQQ, kABInstantMessageServiceSkype,
          kABInstantMessageServiceYahoo}) {
        constants.insert(text(service));
    }
    EXPECT_EQ(constants, services);
    EXPECT_EQ(text(kABSocialProfileServiceSinaWeibo), "sinaweibo");
}

TEST(ConstantsTest, NamesToShow) {
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(kABFirstNameProperty)), "First Name");
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(kABPhoneWorkFAXLabel)), "work fax");
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(kABPhoneiPhoneLabel)), "iPhone");
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(kABAddressZIPKey)), "ZIP");
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(kABSocialProfileServiceLinkedIn)), "LinkedIn");
    EXPECT_EQ(text(ABLocalizedPropertyOrLabel(@"Cottage")), "Cottage");
    EXPECT_EQ(ABLocalizedPropertyOrLabel(nil), nil);
    // Every property has a name to show that is no stored one.
    NSArray* properties = [[ABPerson properties] arrayByAddingObjectsFromArray:[ABGroup properties]];
    for (NSUInteger i = 0; i < [properties count]; ++i) {
        NSString* name = [properties objectAtIndex:i];
        if (![name isEqual:kABPersonFlags]) {
            EXPECT_EQ(text(ABLocalizedPropertyOrLabel(name)).find("AB"), std::string::npos) << text(name);
        }
    }
}

TEST(ConstantsTest, NumbersAreTheKnownOnes) {
    EXPECT_EQ(kABShowAsResource, 2);
    EXPECT_EQ(kABShowAsRoom, 3);

    EXPECT_EQ(kABMultiDictionaryProperty, 262);
    EXPECT_EQ(kABDateComponentsProperty, 8);
    EXPECT_EQ(kABSuffixMatchCaseInsensitive, 16);
    EXPECT_EQ(kABNotWithinIntervalFromTodayYearless, 24);
    EXPECT_EQ(kABLastNameFirst, 16);
    EXPECT_EQ(kABFirstNameFirst, 32);
}

} // namespace
