// The C functions of the address book, which call its class.

#import <AddressBook/AddressBook.h>

#include "frameworks/CoreFoundation/pool.h"

CFStringRef const kABPersonRecordType = (CFStringRef) @"ABPerson";
CFStringRef const kABGroupRecordType = (CFStringRef) @"ABGroup";

// Returns the class for a type of records; Nil, to which messages return nothing, for any other type.
static Class classOf(CFStringRef recordType) {
    if ([(NSString*)recordType isEqualToString:@"ABPerson"]) {
        return [ABPerson class];
    }
    return [(NSString*)recordType isEqualToString:@"ABGroup"] ? [ABGroup class] : Nil;
}

ABAddressBookRef ABGetSharedAddressBook(void) {
    ABAddressBook* book;
    IN_POOL(book = [ABAddressBook sharedAddressBook]);
    return (ABAddressBookRef)book;
}

CFArrayRef ABCopyArrayOfMatchingRecords(ABAddressBookRef addressBook, ABSearchElementRef search) {
    return OWNED([(ABAddressBook*)addressBook recordsMatchingSearchElement:(ABSearchElement*)search]);
}

bool ABSave(ABAddressBookRef addressBook) {
    BOOL saved;
    IN_POOL(saved = [(ABAddressBook*)addressBook save]);
    return saved;
}

bool ABHasUnsavedChanges(ABAddressBookRef addressBook) {
    BOOL unsaved;
    IN_POOL(unsaved = [(ABAddressBook*)addressBook hasUnsavedChanges]);
    return unsaved;
}

// A Get function: the caller does not own the record, so it is retained here until another one is returned.
ABPersonRef ABGetMe(ABAddressBookRef addressBook) {
    static ABPerson* me = nil;
    @synchronized([ABAddressBook class]) {
        IN_POOL({
            ABPerson* before = me;
            me = [[(ABAddressBook*)addressBook me] retain];
            [before release];
        });
        return (ABPersonRef)me;
    }
}

void ABSetMe(ABAddressBookRef addressBook, ABPersonRef moi) {
    IN_POOL([(ABAddressBook*)addressBook setMe:(ABPerson*)moi]);
}

CFStringRef ABCopyRecordTypeFromUniqueId(ABAddressBookRef addressBook, CFStringRef uniqueId) {
    return OWNED([(ABAddressBook*)addressBook recordClassFromUniqueId:(NSString*)uniqueId]);
}

CFIndex ABAddPropertiesAndTypes(ABAddressBookRef addressBook, CFStringRef recordType,
                                CFDictionaryRef propertiesAndTypes) {
    (void)addressBook;
    NSInteger added = -1;
    Class type = classOf(recordType);
    if (type != Nil) {
        IN_POOL(added = [type addPropertiesAndTypes:(NSDictionary*)propertiesAndTypes]);
    }
    return added;
}

CFIndex ABRemoveProperties(ABAddressBookRef addressBook, CFStringRef recordType, CFArrayRef properties) {
    (void)addressBook;
    NSInteger removed = -1;
    Class type = classOf(recordType);
    if (type != Nil) {
        IN_POOL(removed = [type removeProperties:(NSArray*)properties]);
    }
    return removed;
}

CFArrayRef ABCopyArrayOfPropertiesForRecordType(ABAddressBookRef addressBook, CFStringRef recordType) {
    (void)addressBook;
    Class type = classOf(recordType);
    return OWNED(type ? [type properties] : [NSArray array]);
}

ABPropertyType ABTypeOfProperty(ABAddressBookRef addressBook, CFStringRef recordType, CFStringRef property) {
    (void)addressBook;
    ABPropertyType type;
    IN_POOL(type = [classOf(recordType) typeOfProperty:(NSString*)property]);
    return type;
}

ABRecordRef ABCopyRecordForUniqueId(ABAddressBookRef addressBook, CFStringRef uniqueId) {
    return OWNED([(ABAddressBook*)addressBook recordForUniqueId:(NSString*)uniqueId]);
}

bool ABAddRecord(ABAddressBookRef addressBook, ABRecordRef record) {
    BOOL added;
    IN_POOL(added = [(ABAddressBook*)addressBook addRecord:(ABRecord*)record]);
    return added;
}

bool ABRemoveRecord(ABAddressBookRef addressBook, ABRecordRef record) {
    BOOL removed;
    IN_POOL(removed = [(ABAddressBook*)addressBook removeRecord:(ABRecord*)record]);
    return removed;
}

CFArrayRef ABCopyArrayOfAllPeople(ABAddressBookRef addressBook) {
    return OWNED([(ABAddressBook*)addressBook people]);
}

CFArrayRef ABCopyArrayOfAllGroups(ABAddressBookRef addressBook) {
    return OWNED([(ABAddressBook*)addressBook groups]);
}

CFStringRef ABCopyDefaultCountryCode(ABAddressBookRef addressBook) {
    return OWNED([(ABAddressBook*)addressBook defaultCountryCode]);
}

CFStringRef ABCreateFormattedAddressFromDictionary(ABAddressBookRef addressBook, CFDictionaryRef address) {
    return OWNED(
        [[(ABAddressBook*)addressBook formattedAddressFromDictionary:(NSDictionary*)address] string]);
}

CFStringRef ABCopyLocalizedPropertyOrLabel(CFStringRef labelOrProperty) {
    return OWNED(ABLocalizedPropertyOrLabel((NSString*)labelOrProperty));
}
