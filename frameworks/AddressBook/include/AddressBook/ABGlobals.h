#pragma once

#import <Foundation/Foundation.h>

// Properties of every record.
FOUNDATION_EXPORT NSString* const kABUIDProperty;
FOUNDATION_EXPORT NSString* const kABCreationDateProperty;
FOUNDATION_EXPORT NSString* const kABModificationDateProperty;

// Properties of people: single values.
FOUNDATION_EXPORT NSString* const kABFirstNameProperty;
FOUNDATION_EXPORT NSString* const kABLastNameProperty;
FOUNDATION_EXPORT NSString* const kABFirstNamePhoneticProperty;
FOUNDATION_EXPORT NSString* const kABLastNamePhoneticProperty;
FOUNDATION_EXPORT NSString* const kABMiddleNameProperty;
FOUNDATION_EXPORT NSString* const kABMiddleNamePhoneticProperty;
FOUNDATION_EXPORT NSString* const kABTitleProperty;
FOUNDATION_EXPORT NSString* const kABSuffixProperty;
FOUNDATION_EXPORT NSString* const kABNicknameProperty;
FOUNDATION_EXPORT NSString* const kABMaidenNameProperty;
FOUNDATION_EXPORT NSString* const kABBirthdayProperty;
FOUNDATION_EXPORT NSString* const kABOrganizationProperty;
FOUNDATION_EXPORT NSString* const kABJobTitleProperty;
FOUNDATION_EXPORT NSString* const kABDepartmentProperty;
FOUNDATION_EXPORT NSString* const kABNoteProperty;
FOUNDATION_EXPORT NSString* const kABHomePageProperty;
FOUNDATION_EXPORT NSString* const kABPersonFlags;

// Properties of people: lists.
FOUNDATION_EXPORT NSString* const kABURLsProperty;
FOUNDATION_EXPORT NSString* const kABCalendarURIsProperty;
FOUNDATION_EXPORT NSString* const kABEmailProperty;
FOUNDATION_EXPORT NSString* const kABPhoneProperty;
FOUNDATION_EXPORT NSString* const kABRelatedNamesProperty;
FOUNDATION_EXPORT NSString* const kABAIMInstantProperty;
FOUNDATION_EXPORT NSString* const kABJabberInstantProperty;
FOUNDATION_EXPORT NSString* const kABMSNInstantProperty;
FOUNDATION_EXPORT NSString* const kABYahooInstantProperty;
FOUNDATION_EXPORT NSString* const kABICQInstantProperty;
FOUNDATION_EXPORT NSString* const kABAddressProperty;
FOUNDATION_EXPORT NSString* const kABOtherDatesProperty;
FOUNDATION_EXPORT NSString* const kABSocialProfileProperty;
FOUNDATION_EXPORT NSString* const kABInstantMessageProperty;

// The property of groups.
FOUNDATION_EXPORT NSString* const kABGroupNameProperty;

// Fields of an address.
FOUNDATION_EXPORT NSString* const kABAddressStreetKey;
FOUNDATION_EXPORT NSString* const kABAddressCityKey;
FOUNDATION_EXPORT NSString* const kABAddressStateKey;
FOUNDATION_EXPORT NSString* const kABAddressZIPKey;
FOUNDATION_EXPORT NSString* const kABAddressCountryKey;
FOUNDATION_EXPORT NSString* const kABAddressCountryCodeKey;

// Labels that go with any list.
FOUNDATION_EXPORT NSString* const kABHomeLabel;
FOUNDATION_EXPORT NSString* const kABWorkLabel;
FOUNDATION_EXPORT NSString* const kABOtherLabel;

// Labels of particular lists.
FOUNDATION_EXPORT NSString* const kABHomePageLabel;
FOUNDATION_EXPORT NSString* const kABEmailHomeLabel;
FOUNDATION_EXPORT NSString* const kABEmailWorkLabel;
FOUNDATION_EXPORT NSString* const kABAddressHomeLabel;
FOUNDATION_EXPORT NSString* const kABAddressWorkLabel;
FOUNDATION_EXPORT NSString* const kABPhoneHomeLabel;
FOUNDATION_EXPORT NSString* const kABPhoneWorkLabel;
FOUNDATION_EXPORT NSString* const kABPhoneMobileLabel;
FOUNDATION_EXPORT NSString* const kABPhoneMainLabel;
FOUNDATION_EXPORT NSString* const kABPhoneHomeFAXLabel;
FOUNDATION_EXPORT NSString* const kABPhoneWorkFAXLabel;
FOUNDATION_EXPORT NSString* const kABPhonePagerLabel;
FOUNDATION_EXPORT NSString* const kABAnniversaryLabel;
FOUNDATION_EXPORT NSString* const kABFatherLabel;
FOUNDATION_EXPORT NSString* const kABMotherLabel;
FOUNDATION_EXPORT NSString* const kABParentLabel;
FOUNDATION_EXPORT NSString* const kABBrotherLabel;
FOUNDATION_EXPORT NSString* const kABSisterLabel;
FOUNDATION_EXPORT NSString* const kABChildLabel;
FOUNDATION_EXPORT NSString* const kABFriendLabel;
FOUNDATION_EXPORT NSString* const kABSpouseLabel;
FOUNDATION_EXPORT NSString* const kABPartnerLabel;
FOUNDATION_EXPORT NSString* const kABAssistantLabel;
FOUNDATION_EXPORT NSString* const kABManagerLabel;
FOUNDATION_EXPORT NSString* const kABAIMHomeLabel;
FOUNDATION_EXPORT NSString* const kABAIMWorkLabel;
FOUNDATION_EXPORT NSString* const kABJabberHomeLabel;
FOUNDATION_EXPORT NSString* const kABJabberWorkLabel;
FOUNDATION_EXPORT NSString* const kABMSNHomeLabel;
FOUNDATION_EXPORT NSString* const kABMSNWorkLabel;
FOUNDATION_EXPORT NSString* const kABYahooHomeLabel;
FOUNDATION_EXPORT NSString* const kABYahooWorkLabel;
FOUNDATION_EXPORT NSString* const kABICQHomeLabel;
FOUNDATION_EXPORT NSString* const kABICQWorkLabel;

// Sent by the default notification center after this process saved, on the thread that saved; and after
// another process did, on a thread of the framework's: one for each save, in their order, from the first call
// of sharedAddressBook on. The user info may hold arrays of unique ids under the three keys. None of them:
// everything may have changed.
FOUNDATION_EXPORT NSString* const kABDatabaseChangedNotification;
FOUNDATION_EXPORT NSString* const kABDatabaseChangedExternallyNotification;
FOUNDATION_EXPORT NSString* const kABInsertedRecords;
FOUNDATION_EXPORT NSString* const kABUpdatedRecords;
FOUNDATION_EXPORT NSString* const kABDeletedRecords;

// The low three bits of the person flags say what the card is, the next three in which order its name is
// shown.
#define kABShowAsMask 7
#define kABShowAsPerson 0
#define kABShowAsCompany 1
#define kABNameOrderingMask 070
#define kABDefaultNameOrdering 0
#define kABLastNameFirst 020
#define kABFirstNameFirst 040

// Errors of the framework.
FOUNDATION_EXPORT NSString* const ABAddressBookErrorDomain;

enum {
    ABAddRecordsError = 1001,
    ABRemoveRecordsError = 1002,
    ABPropertyValueValidationError = 1012,
    ABPropertyUnsupportedBySourceError = 1013,
    ABPropertyReadOnlyError = 1014
};
