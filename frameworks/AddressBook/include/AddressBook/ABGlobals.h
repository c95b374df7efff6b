#pragma once

#include <AddressBook/ABTypedefs.h>

// Properties of every record.
AB_EXTERN AB_STRING const kABUIDProperty;
AB_EXTERN AB_STRING const kABCreationDateProperty;
AB_EXTERN AB_STRING const kABModificationDateProperty;

// Properties of people: single values.
AB_EXTERN AB_STRING const kABFirstNameProperty;
AB_EXTERN AB_STRING const kABLastNameProperty;
AB_EXTERN AB_STRING const kABFirstNamePhoneticProperty;
AB_EXTERN AB_STRING const kABLastNamePhoneticProperty;
AB_EXTERN AB_STRING const kABMiddleNameProperty;
AB_EXTERN AB_STRING const kABMiddleNamePhoneticProperty;
AB_EXTERN AB_STRING const kABTitleProperty;
AB_EXTERN AB_STRING const kABSuffixProperty;
AB_EXTERN AB_STRING const kABNicknameProperty;
AB_EXTERN AB_STRING const kABMaidenNameProperty;
AB_EXTERN AB_STRING const kABBirthdayProperty;
AB_EXTERN AB_STRING const kABOrganizationProperty;
AB_EXTERN AB_STRING const kABOrganizationPhoneticProperty;
AB_EXTERN AB_STRING const kABJobTitleProperty;
AB_EXTERN AB_STRING const kABDepartmentProperty;
AB_EXTERN AB_STRING const kABNoteProperty;
// Deprecated: kABURLsProperty has any number of them.
AB_EXTERN AB_STRING const kABHomePageProperty;
AB_EXTERN AB_STRING const kABPersonFlags;

// Dates as date components (NSDateComponents with a month and a day). The birthday and the other dates are
// those of kABBirthdayProperty and kABOtherDatesProperty, given by month, day and, if the date has one, the
// year: setting either property sets the other, with the same labels and identifiers. Of components that are
// set, only the day is used, in their calendar (Gregorian when they have none); components without a year
// become a date in 1604, which is how dates without a year are stored. The alternate birthday, by another
// calendar, is independent, and keeps era, year, month (also leap months), day, time and calendar.
AB_EXTERN AB_STRING const kABBirthdayComponentsProperty;
AB_EXTERN AB_STRING const kABAlternateBirthdayComponentsProperty;
AB_EXTERN AB_STRING const kABOtherDateComponentsProperty;

// Properties of people: lists.
AB_EXTERN AB_STRING const kABURLsProperty;
AB_EXTERN AB_STRING const kABCalendarURIsProperty;
AB_EXTERN AB_STRING const kABEmailProperty;
AB_EXTERN AB_STRING const kABPhoneProperty;
AB_EXTERN AB_STRING const kABRelatedNamesProperty;
// The five services with a property of their own. macOS has deprecated these for kABInstantMessageProperty;
// here each has entries of its own.
AB_EXTERN AB_STRING const kABAIMInstantProperty;
AB_EXTERN AB_STRING const kABJabberInstantProperty;
AB_EXTERN AB_STRING const kABMSNInstantProperty;
AB_EXTERN AB_STRING const kABYahooInstantProperty;
AB_EXTERN AB_STRING const kABICQInstantProperty;
AB_EXTERN AB_STRING const kABAddressProperty;
AB_EXTERN AB_STRING const kABOtherDatesProperty;
AB_EXTERN AB_STRING const kABSocialProfileProperty;
AB_EXTERN AB_STRING const kABInstantMessageProperty;

// The property of groups.
AB_EXTERN AB_STRING const kABGroupNameProperty;

// Fields of an address.
AB_EXTERN AB_STRING const kABAddressStreetKey;
AB_EXTERN AB_STRING const kABAddressCityKey;
AB_EXTERN AB_STRING const kABAddressStateKey;
AB_EXTERN AB_STRING const kABAddressZIPKey;
AB_EXTERN AB_STRING const kABAddressCountryKey;
AB_EXTERN AB_STRING const kABAddressCountryCodeKey;

// Fields of an instant message address, and names of services. A service may be any text.
AB_EXTERN AB_STRING const kABInstantMessageUsernameKey;
AB_EXTERN AB_STRING const kABInstantMessageServiceKey;
AB_EXTERN AB_STRING const kABInstantMessageServiceAIM;
AB_EXTERN AB_STRING const kABInstantMessageServiceFacebook;
AB_EXTERN AB_STRING const kABInstantMessageServiceGaduGadu;
AB_EXTERN AB_STRING const kABInstantMessageServiceGoogleTalk;
AB_EXTERN AB_STRING const kABInstantMessageServiceICQ;
AB_EXTERN AB_STRING const kABInstantMessageServiceJabber;
AB_EXTERN AB_STRING const kABInstantMessageServiceMSN;
AB_EXTERN AB_STRING const kABInstantMessageServiceQQ;
AB_EXTERN AB_STRING const kABInstantMessageServiceSkype;
AB_EXTERN AB_STRING const kABInstantMessageServiceYahoo;

// Fields of a social profile, and names of services. A service may be any text.
AB_EXTERN AB_STRING const kABSocialProfileURLKey;
AB_EXTERN AB_STRING const kABSocialProfileUsernameKey;
AB_EXTERN AB_STRING const kABSocialProfileUserIdentifierKey;
AB_EXTERN AB_STRING const kABSocialProfileServiceKey;
AB_EXTERN AB_STRING const kABSocialProfileServiceTwitter;
AB_EXTERN AB_STRING const kABSocialProfileServiceFacebook;
AB_EXTERN AB_STRING const kABSocialProfileServiceLinkedIn;
AB_EXTERN AB_STRING const kABSocialProfileServiceFlickr;
AB_EXTERN AB_STRING const kABSocialProfileServiceMySpace;
AB_EXTERN AB_STRING const kABSocialProfileServiceSinaWeibo;
AB_EXTERN AB_STRING const kABSocialProfileServiceTencentWeibo;
AB_EXTERN AB_STRING const kABSocialProfileServiceYelp;

// Labels for any list.
AB_EXTERN AB_STRING const kABHomeLabel;
AB_EXTERN AB_STRING const kABWorkLabel;
AB_EXTERN AB_STRING const kABOtherLabel;
AB_EXTERN AB_STRING const kABMobileMeLabel;

// Labels for particular lists.
AB_EXTERN AB_STRING const kABHomePageLabel;
AB_EXTERN AB_STRING const kABEmailHomeLabel;
AB_EXTERN AB_STRING const kABEmailWorkLabel;
AB_EXTERN AB_STRING const kABEmailMobileMeLabel;
AB_EXTERN AB_STRING const kABAddressHomeLabel;
AB_EXTERN AB_STRING const kABAddressWorkLabel;
AB_EXTERN AB_STRING const kABPhoneHomeLabel;
AB_EXTERN AB_STRING const kABPhoneWorkLabel;
AB_EXTERN AB_STRING const kABPhoneMobileLabel;
AB_EXTERN AB_STRING const kABPhoneiPhoneLabel;
AB_EXTERN AB_STRING const kABPhoneMainLabel;
AB_EXTERN AB_STRING const kABPhoneHomeFAXLabel;
AB_EXTERN AB_STRING const kABPhoneWorkFAXLabel;
AB_EXTERN AB_STRING const kABPhonePagerLabel;
AB_EXTERN AB_STRING const kABAnniversaryLabel;
AB_EXTERN AB_STRING const kABFatherLabel;
AB_EXTERN AB_STRING const kABMotherLabel;
AB_EXTERN AB_STRING const kABParentLabel;
AB_EXTERN AB_STRING const kABBrotherLabel;
AB_EXTERN AB_STRING const kABSisterLabel;
AB_EXTERN AB_STRING const kABChildLabel;
AB_EXTERN AB_STRING const kABFriendLabel;
AB_EXTERN AB_STRING const kABSpouseLabel;
AB_EXTERN AB_STRING const kABPartnerLabel;
AB_EXTERN AB_STRING const kABAssistantLabel;
AB_EXTERN AB_STRING const kABManagerLabel;
AB_EXTERN AB_STRING const kABAIMHomeLabel;
AB_EXTERN AB_STRING const kABAIMWorkLabel;
AB_EXTERN AB_STRING const kABAIMMobileMeLabel;
AB_EXTERN AB_STRING const kABJabberHomeLabel;
AB_EXTERN AB_STRING const kABJabberWorkLabel;
AB_EXTERN AB_STRING const kABMSNHomeLabel;
AB_EXTERN AB_STRING const kABMSNWorkLabel;
AB_EXTERN AB_STRING const kABYahooHomeLabel;
AB_EXTERN AB_STRING const kABYahooWorkLabel;
AB_EXTERN AB_STRING const kABICQHomeLabel;
AB_EXTERN AB_STRING const kABICQWorkLabel;

// Posted to the default notification center after this process has saved, on the thread that saved; and after
// another process has, on a thread of the framework. There is one notification for each save, in order, from
// the first call of sharedAddressBook on. The user info has arrays of unique ids under the three keys; when
// it has none of them, everything may have changed.
AB_EXTERN AB_STRING const kABDatabaseChangedNotification;
AB_EXTERN AB_STRING const kABDatabaseChangedExternallyNotification;
AB_EXTERN AB_STRING const kABInsertedRecords;
AB_EXTERN AB_STRING const kABUpdatedRecords;
AB_EXTERN AB_STRING const kABDeletedRecords;

// The lower three bits of the person flags say whether the record is shown as a person or as a company, the
// next three the order of names.
#define kABShowAsMask 7
#define kABShowAsPerson 0
#define kABShowAsCompany 1
#define kABShowAsResource 2
#define kABShowAsRoom 3
#define kABNameOrderingMask 070
#define kABDefaultNameOrdering 0
#define kABLastNameFirst 020
#define kABFirstNameFirst 040

// Errors of the framework.
AB_EXTERN AB_STRING const ABAddressBookErrorDomain;

// A key in an error's user info: an array with the identifiers of a multi-value's invalid entries. This
// framework raises for such entries instead, and never sets it.
AB_EXTERN AB_STRING const ABMultiValueIdentifiersErrorKey;

enum _ABAddressBookErrorCode {
    ABAddRecordsError = 1001,
    ABRemoveRecordsError = 1002,
    ABPropertyValueValidationError = 1012,
    ABPropertyUnsupportedBySourceError = 1013,
    ABPropertyReadOnlyError = 1014
};

#ifdef __OBJC__
// Returns the name to show, in English, for a built-in property, a label or a key of a dictionary: "First
// Name", "work fax", "ZIP". Any other text, for instance a user's label, is returned as it is; nil for nil.
AB_EXTERN NSString* ABLocalizedPropertyOrLabel(NSString* propertyOrLabel);
#endif
