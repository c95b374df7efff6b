#pragma once

#include <AddressBook/ABGlobalsC.h>
#include <AddressBook/ABTypedefs.h>
#include <CoreFoundation/CoreFoundation.h>

// The address book for C. Each function calls the method of the same name, and each reference is an object of
// the class, so that the headers of the classes apply, also for exceptions. Functions with Create or Copy in
// their name return an object that the caller must release with CFRelease; those with Get one that the
// address book keeps.

typedef void* ABRecordRef; // an ABPersonRef or an ABGroupRef
typedef struct __ABPerson* ABPersonRef;
typedef struct __ABGroup* ABGroupRef;
typedef struct __ABSearchElementRef* ABSearchElementRef;
typedef struct __ABAddressBookRef* ABAddressBookRef;
typedef const struct __ABMultiValue* ABMultiValueRef;
typedef struct __ABMultiValue* ABMutableMultiValueRef;

// Returns the address book; NULL when it cannot be opened.
AB_EXTERN ABAddressBookRef ABGetSharedAddressBook(void);
AB_EXTERN CFArrayRef ABCopyArrayOfMatchingRecords(ABAddressBookRef addressBook, ABSearchElementRef search);
AB_EXTERN bool ABSave(ABAddressBookRef addressBook);
AB_EXTERN bool ABHasUnsavedChanges(ABAddressBookRef addressBook);
AB_EXTERN ABPersonRef ABGetMe(ABAddressBookRef addressBook);
AB_EXTERN void ABSetMe(ABAddressBookRef addressBook, ABPersonRef moi);

// Returns kABPersonRecordType or kABGroupRecordType; NULL when there is no such record.
AB_EXTERN CFStringRef ABCopyRecordTypeFromUniqueId(ABAddressBookRef addressBook, CFStringRef uniqueId);

// Properties of a type of records. For an unknown type these return -1, an empty array, and
// kABErrorInProperty.
AB_EXTERN CFIndex ABAddPropertiesAndTypes(ABAddressBookRef addressBook, CFStringRef recordType,
                                          CFDictionaryRef propertiesAndTypes);
AB_EXTERN CFIndex ABRemoveProperties(ABAddressBookRef addressBook, CFStringRef recordType,
                                     CFArrayRef properties);
AB_EXTERN CFArrayRef ABCopyArrayOfPropertiesForRecordType(ABAddressBookRef addressBook,
                                                          CFStringRef recordType);
AB_EXTERN ABPropertyType ABTypeOfProperty(ABAddressBookRef addressBook, CFStringRef recordType,
                                          CFStringRef property);

AB_EXTERN ABRecordRef ABCopyRecordForUniqueId(ABAddressBookRef addressBook, CFStringRef uniqueId);
AB_EXTERN bool ABAddRecord(ABAddressBookRef addressBook, ABRecordRef record);
AB_EXTERN bool ABRemoveRecord(ABAddressBookRef addressBook, ABRecordRef record);
AB_EXTERN CFArrayRef ABCopyArrayOfAllPeople(ABAddressBookRef addressBook);
AB_EXTERN CFArrayRef ABCopyArrayOfAllGroups(ABAddressBookRef addressBook);
AB_EXTERN CFStringRef ABCopyDefaultCountryCode(ABAddressBookRef addressBook);

// Returns only the text, without the attributes of its fields.
AB_EXTERN CFStringRef ABCreateFormattedAddressFromDictionary(ABAddressBookRef addressBook,
                                                             CFDictionaryRef address);
AB_EXTERN CFStringRef ABCopyLocalizedPropertyOrLabel(CFStringRef labelOrProperty);

// Records.
AB_EXTERN CFStringRef ABRecordCopyRecordType(ABRecordRef record);
AB_EXTERN CFTypeRef ABRecordCopyValue(ABRecordRef record, CFStringRef property);
AB_EXTERN bool ABRecordSetValue(ABRecordRef record, CFStringRef property, CFTypeRef value);
AB_EXTERN bool ABRecordRemoveValue(ABRecordRef record, CFStringRef property);
AB_EXTERN bool ABRecordIsReadOnly(ABRecordRef record);
AB_EXTERN CFStringRef ABRecordCopyUniqueId(ABRecordRef record);

// People.
AB_EXTERN ABPersonRef ABPersonCreate(void);
AB_EXTERN ABPersonRef ABPersonCreateWithVCardRepresentation(CFDataRef vCard);
AB_EXTERN CFDataRef ABPersonCopyVCardRepresentation(ABPersonRef person);
AB_EXTERN CFArrayRef ABPersonCopyParentGroups(ABPersonRef person);
AB_EXTERN ABSearchElementRef ABPersonCreateSearchElement(CFStringRef property, CFStringRef label,
                                                         CFStringRef key, CFTypeRef value,
                                                         ABSearchComparison comparison);

// Pictures. The callback is called on the main thread, from its run loop; [imageData] is NULL when the person
// has no picture. Raises for a NULL callback.
typedef void (*ABImageClientCallback)(CFDataRef imageData, CFIndex tag, void* refcon);
AB_EXTERN bool ABPersonSetImageData(ABPersonRef person, CFDataRef imageData);
AB_EXTERN CFDataRef ABPersonCopyImageData(ABPersonRef person);
AB_EXTERN CFIndex ABBeginLoadingImageDataForClient(ABPersonRef person, ABImageClientCallback callback,
                                                   void* refcon);
AB_EXTERN void ABCancelLoadingImageDataForTag(CFIndex tag);

// Groups.
AB_EXTERN ABGroupRef ABGroupCreate(void);
AB_EXTERN CFArrayRef ABGroupCopyArrayOfAllMembers(ABGroupRef group);
AB_EXTERN bool ABGroupAddMember(ABGroupRef group, ABPersonRef personToAdd);
AB_EXTERN bool ABGroupRemoveMember(ABGroupRef group, ABPersonRef personToRemove);
AB_EXTERN CFArrayRef ABGroupCopyArrayOfAllSubgroups(ABGroupRef group);
AB_EXTERN bool ABGroupAddGroup(ABGroupRef group, ABGroupRef groupToAdd);
AB_EXTERN bool ABGroupRemoveGroup(ABGroupRef group, ABGroupRef groupToRemove);
AB_EXTERN CFArrayRef ABGroupCopyParentGroups(ABGroupRef group);
AB_EXTERN bool ABGroupSetDistributionIdentifier(ABGroupRef group, ABPersonRef person, CFStringRef property,
                                                CFStringRef identifier);
AB_EXTERN CFStringRef ABGroupCopyDistributionIdentifier(ABGroupRef group, ABPersonRef person,
                                                        CFStringRef property);
AB_EXTERN ABSearchElementRef ABGroupCreateSearchElement(CFStringRef property, CFStringRef label,
                                                        CFStringRef key, CFTypeRef value,
                                                        ABSearchComparison comparison);

// Searches.
AB_EXTERN ABSearchElementRef ABSearchElementCreateWithConjunction(ABSearchConjunction conjunction,
                                                                  CFArrayRef childrenSearchElement);
AB_EXTERN bool ABSearchElementMatchesRecord(ABSearchElementRef searchElement, ABRecordRef record);

// Multi-values.
AB_EXTERN ABMultiValueRef ABMultiValueCreate(void);
AB_EXTERN CFIndex ABMultiValueCount(ABMultiValueRef multiValue);
AB_EXTERN CFTypeRef ABMultiValueCopyValueAtIndex(ABMultiValueRef multiValue, CFIndex index);
AB_EXTERN CFStringRef ABMultiValueCopyLabelAtIndex(ABMultiValueRef multiValue, CFIndex index);
AB_EXTERN CFStringRef ABMultiValueCopyPrimaryIdentifier(ABMultiValueRef multiValue);

// Returns -1 when no entry has the identifier.
AB_EXTERN CFIndex ABMultiValueIndexForIdentifier(ABMultiValueRef multiValue, CFStringRef identifier);
AB_EXTERN CFStringRef ABMultiValueCopyIdentifierAtIndex(ABMultiValueRef multiValue, CFIndex index);
AB_EXTERN ABPropertyType ABMultiValuePropertyType(ABMultiValueRef multiValue);
AB_EXTERN ABMultiValueRef ABMultiValueCreateCopy(ABMultiValueRef multiValue);
AB_EXTERN ABMutableMultiValueRef ABMultiValueCreateMutableCopy(ABMultiValueRef multiValue);

AB_EXTERN ABMutableMultiValueRef ABMultiValueCreateMutable(void);

// Add an entry. The last argument, unless it is NULL, receives the new entry's identifier, which the caller
// must release.
AB_EXTERN bool ABMultiValueAdd(ABMutableMultiValueRef multiValue, CFTypeRef value, CFStringRef label,
                               CFStringRef* outIdentifier);
AB_EXTERN bool ABMultiValueInsert(ABMutableMultiValueRef multiValue, CFTypeRef value, CFStringRef label,
                                  CFIndex index, CFStringRef* outIdentifier);
AB_EXTERN bool ABMultiValueRemove(ABMutableMultiValueRef multiValue, CFIndex index);
AB_EXTERN bool ABMultiValueReplaceValue(ABMutableMultiValueRef multiValue, CFTypeRef value, CFIndex index);
AB_EXTERN bool ABMultiValueReplaceLabel(ABMutableMultiValueRef multiValue, CFStringRef label, CFIndex index);
AB_EXTERN bool ABMultiValueSetPrimaryIdentifier(ABMutableMultiValueRef multiValue, CFStringRef identifier);
