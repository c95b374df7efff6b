// The framework's constants. The names of properties are those of values/property.h.

#import <AddressBook/ABGlobals.h>

// Properties of every record.
NSString* const kABUIDProperty = @"UID";
NSString* const kABCreationDateProperty = @"Creation";
NSString* const kABModificationDateProperty = @"Modification";

// Properties of people: single values.
NSString* const kABFirstNameProperty = @"First";
NSString* const kABLastNameProperty = @"Last";
NSString* const kABFirstNamePhoneticProperty = @"FirstPhonetic";
NSString* const kABLastNamePhoneticProperty = @"LastPhonetic";
NSString* const kABMiddleNameProperty = @"Middle";
NSString* const kABMiddleNamePhoneticProperty = @"MiddlePhonetic";
NSString* const kABTitleProperty = @"Title";
NSString* const kABSuffixProperty = @"Suffix";
NSString* const kABNicknameProperty = @"Nickname";
NSString* const kABMaidenNameProperty = @"MaidenName";
NSString* const kABBirthdayProperty = @"Birthday";
NSString* const kABOrganizationProperty = @"Organization";
NSString* const kABOrganizationPhoneticProperty = @"OrganizationPhonetic";
NSString* const kABJobTitleProperty = @"JobTitle";
NSString* const kABDepartmentProperty = @"ABDepartment";
NSString* const kABNoteProperty = @"Note";
NSString* const kABHomePageProperty = @"HomePage";
NSString* const kABPersonFlags = @"ABPersonFlags";
NSString* const kABBirthdayComponentsProperty = @"BirthdayComponents";
NSString* const kABAlternateBirthdayComponentsProperty = @"AlternateBirthdayComponents";
NSString* const kABOtherDateComponentsProperty = @"ABDateComponents";

// Properties of people: lists.
NSString* const kABURLsProperty = @"URLs";
NSString* const kABCalendarURIsProperty = @"calendarURIs";
NSString* const kABEmailProperty = @"Email";
NSString* const kABPhoneProperty = @"Phone";
NSString* const kABRelatedNamesProperty = @"ABRelatedNames";
NSString* const kABAIMInstantProperty = @"AIMInstant";
NSString* const kABJabberInstantProperty = @"JabberInstant";
NSString* const kABMSNInstantProperty = @"MSNInstant";
NSString* const kABYahooInstantProperty = @"YahooInstant";
NSString* const kABICQInstantProperty = @"ICQInstant";
NSString* const kABAddressProperty = @"Address";
NSString* const kABOtherDatesProperty = @"ABDate";
NSString* const kABSocialProfileProperty = @"SocialProfile";
NSString* const kABInstantMessageProperty = @"InstantMessage";

// The property of groups.
NSString* const kABGroupNameProperty = @"GroupName";

// Fields of an address.
NSString* const kABAddressStreetKey = @"Street";
NSString* const kABAddressCityKey = @"City";
NSString* const kABAddressStateKey = @"State";
NSString* const kABAddressZIPKey = @"ZIP";
NSString* const kABAddressCountryKey = @"Country";
NSString* const kABAddressCountryCodeKey = @"CountryCode";

// Fields of an instant message address, and names of services.
NSString* const kABInstantMessageUsernameKey = @"InstantMessageUsername";
NSString* const kABInstantMessageServiceKey = @"InstantMessageService";
NSString* const kABInstantMessageServiceAIM = @"AIM";
NSString* const kABInstantMessageServiceFacebook = @"Facebook";
NSString* const kABInstantMessageServiceGaduGadu = @"GaduGadu";
NSString* const kABInstantMessageServiceGoogleTalk = @"GoogleTalk";
NSString* const kABInstantMessageServiceICQ = @"ICQ";
NSString* const kABInstantMessageServiceJabber = @"Jabber";
NSString* const kABInstantMessageServiceMSN = @"MSN";
NSString* const kABInstantMessageServiceQQ = @"QQ";
NSString* const kABInstantMessageServiceSkype = @"Skype";
NSString* const kABInstantMessageServiceYahoo = @"Yahoo";

// Fields of a social profile, and names of services.
NSString* const kABSocialProfileURLKey = @"url";
NSString* const kABSocialProfileUsernameKey = @"username";
NSString* const kABSocialProfileUserIdentifierKey = @"userIdentifier";
NSString* const kABSocialProfileServiceKey = @"serviceName";
NSString* const kABSocialProfileServiceTwitter = @"twitter";
NSString* const kABSocialProfileServiceFacebook = @"facebook";
NSString* const kABSocialProfileServiceLinkedIn = @"linkedin";
NSString* const kABSocialProfileServiceFlickr = @"flickr";
NSString* const kABSocialProfileServiceMySpace = @"myspace";
NSString* const kABSocialProfileServiceSinaWeibo = @"sinaweibo";
NSString* const kABSocialProfileServiceTencentWeibo = @"tencentweibo";
NSString* const kABSocialProfileServiceYelp = @"yelp";

// Labels for any list.
NSString* const kABHomeLabel = @"_$!<Home>!$_";
NSString* const kABWorkLabel = @"_$!<Work>!$_";
NSString* const kABOtherLabel = @"_$!<Other>!$_";
NSString* const kABMobileMeLabel = @"_$!<MobileMe>!$_";

// Labels for particular lists.
NSString* const kABHomePageLabel = @"_$!<HomePage>!$_";
NSString* const kABEmailHomeLabel = @"_$!<Home>!$_";
NSString* const kABEmailWorkLabel = @"_$!<Work>!$_";
NSString* const kABEmailMobileMeLabel = @"_$!<MobileMe>!$_";
NSString* const kABAddressHomeLabel = @"_$!<Home>!$_";
NSString* const kABAddressWorkLabel = @"_$!<Work>!$_";
NSString* const kABPhoneHomeLabel = @"_$!<Home>!$_";
NSString* const kABPhoneWorkLabel = @"_$!<Work>!$_";
NSString* const kABPhoneMobileLabel = @"_$!<Mobile>!$_";
NSString* const kABPhoneiPhoneLabel = @"iPhone";
NSString* const kABPhoneMainLabel = @"_$!<Main>!$_";
NSString* const kABPhoneHomeFAXLabel = @"_$!<HomeFAX>!$_";
NSString* const kABPhoneWorkFAXLabel = @"_$!<WorkFAX>!$_";
NSString* const kABPhonePagerLabel = @"_$!<Pager>!$_";
NSString* const kABAnniversaryLabel = @"_$!<Anniversary>!$_";
NSString* const kABFatherLabel = @"_$!<Father>!$_";
NSString* const kABMotherLabel = @"_$!<Mother>!$_";
NSString* const kABParentLabel = @"_$!<Parent>!$_";
NSString* const kABBrotherLabel = @"_$!<Brother>!$_";
NSString* const kABSisterLabel = @"_$!<Sister>!$_";
NSString* const kABChildLabel = @"_$!<Child>!$_";
NSString* const kABFriendLabel = @"_$!<Friend>!$_";
NSString* const kABSpouseLabel = @"_$!<Spouse>!$_";
NSString* const kABPartnerLabel = @"_$!<Partner>!$_";
NSString* const kABAssistantLabel = @"_$!<Assistant>!$_";
NSString* const kABManagerLabel = @"_$!<Manager>!$_";
NSString* const kABAIMHomeLabel = @"_$!<Home>!$_";
NSString* const kABAIMWorkLabel = @"_$!<Work>!$_";
NSString* const kABAIMMobileMeLabel = @"_$!<MobileMe>!$_";
NSString* const kABJabberHomeLabel = @"_$!<Home>!$_";
NSString* const kABJabberWorkLabel = @"_$!<Work>!$_";
NSString* const kABMSNHomeLabel = @"_$!<Home>!$_";
NSString* const kABMSNWorkLabel = @"_$!<Work>!$_";
NSString* const kABYahooHomeLabel = @"_$!<Home>!$_";
NSString* const kABYahooWorkLabel = @"_$!<Work>!$_";
NSString* const kABICQHomeLabel = @"_$!<Home>!$_";
NSString* const kABICQWorkLabel = @"_$!<Work>!$_";

// Notifications and the keys of their user info.
NSString* const kABDatabaseChangedNotification = @"ABDatabaseChangedNotification";
NSString* const kABDatabaseChangedExternallyNotification = @"ABDatabaseChangedExternallyNotification";
NSString* const kABInsertedRecords = @"ABInsertedRecords";
NSString* const kABUpdatedRecords = @"ABUpdatedRecords";
NSString* const kABDeletedRecords = @"ABDeletedRecords";

// The domain of the framework's errors.
NSString* const ABAddressBookErrorDomain = @"ABAddressBookErrorDomain";
NSString* const ABMultiValueIdentifiersErrorKey = @"ABMultiValueIdentifiersErrorKey";
