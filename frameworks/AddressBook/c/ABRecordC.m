// The C functions of records, people, groups and searches, which call their classes.

#import <AddressBook/AddressBook.h>

#include "frameworks/CoreFoundation/pool.h"

CFStringRef ABRecordCopyRecordType(ABRecordRef record) {
    if (record == NULL) {
        return NULL;
    }
    return CFRetain([(id)record isKindOfClass:[ABGroup class]] ? kABGroupRecordType : kABPersonRecordType);
}

CFTypeRef ABRecordCopyValue(ABRecordRef record, CFStringRef property) {
    return OWNED([(ABRecord*)record valueForProperty:(NSString*)property]);
}

bool ABRecordSetValue(ABRecordRef record, CFStringRef property, CFTypeRef value) {
    BOOL set;
    IN_POOL(set = [(ABRecord*)record setValue:(id)value forProperty:(NSString*)property]);
    return set;
}

bool ABRecordRemoveValue(ABRecordRef record, CFStringRef property) {
    BOOL removed;
    IN_POOL(removed = [(ABRecord*)record removeValueForProperty:(NSString*)property]);
    return removed;
}

bool ABRecordIsReadOnly(ABRecordRef record) {
    return [(ABRecord*)record isReadOnly];
}

CFStringRef ABRecordCopyUniqueId(ABRecordRef record) {
    return OWNED([(ABRecord*)record uniqueId]);
}

ABPersonRef ABPersonCreate(void) {
    return OWNED([[[ABPerson alloc] init] autorelease]);
}

ABPersonRef ABPersonCreateWithVCardRepresentation(CFDataRef vCard) {
    return OWNED([[[ABPerson alloc] initWithVCardRepresentation:(NSData*)vCard] autorelease]);
}

CFDataRef ABPersonCopyVCardRepresentation(ABPersonRef person) {
    return OWNED([(ABPerson*)person vCardRepresentation]);
}

CFArrayRef ABPersonCopyParentGroups(ABPersonRef person) {
    return OWNED([(ABPerson*)person parentGroups]);
}

ABSearchElementRef ABPersonCreateSearchElement(CFStringRef property, CFStringRef label, CFStringRef key,
                                               CFTypeRef value, ABSearchComparison comparison) {
    return OWNED([ABPerson searchElementForProperty:(NSString*)property
                                              label:(NSString*)label
                                                key:(NSString*)key
                                              value:(id)value
                                         comparison:comparison]);
}

bool ABPersonSetImageData(ABPersonRef person, CFDataRef imageData) {
    BOOL set;
    IN_POOL(set = [(ABPerson*)person setImageData:(NSData*)imageData]);
    return set;
}

CFDataRef ABPersonCopyImageData(ABPersonRef person) {
    return OWNED([(ABPerson*)person imageData]);
}

// A client that calls a C callback.
@interface ABImageCallback : NSObject <ABImageClient> {
  @public
    ABImageClientCallback _callback;
    void* _refcon;
}
@end

@implementation ABImageCallback

- (void)consumeImageData:(NSData*)data forTag:(NSInteger)tag {
    _callback((CFDataRef)data, tag, _refcon);
}

@end

CFIndex ABBeginLoadingImageDataForClient(ABPersonRef person, ABImageClientCallback callback, void* refcon) {
    NSInteger tag;
    IN_POOL({
        ABImageCallback* client = callback ? [[[ABImageCallback alloc] init] autorelease] : nil;
        if (client != nil) {
            client->_callback = callback;
            client->_refcon = refcon;
        }
        tag = [(ABPerson*)person beginLoadingImageDataForClient:client];
    });
    return tag;
}

void ABCancelLoadingImageDataForTag(CFIndex tag) {
    IN_POOL([ABPerson cancelLoadingImageDataForTag:tag]);
}

ABGroupRef ABGroupCreate(void) {
    return OWNED([[[ABGroup alloc] init] autorelease]);
}

CFArrayRef ABGroupCopyArrayOfAllMembers(ABGroupRef group) {
    return OWNED([(ABGroup*)group members]);
}

bool ABGroupAddMember(ABGroupRef group, ABPersonRef personToAdd) {
    BOOL added;
    IN_POOL(added = [(ABGroup*)group addMember:(ABPerson*)personToAdd]);
    return added;
}

bool ABGroupRemoveMember(ABGroupRef group, ABPersonRef personToRemove) {
    BOOL removed;
    IN_POOL(removed = [(ABGroup*)group removeMember:(ABPerson*)personToRemove]);
    return removed;
}

CFArrayRef ABGroupCopyArrayOfAllSubgroups(ABGroupRef group) {
    return OWNED([(ABGroup*)group subgroups]);
}

bool ABGroupAddGroup(ABGroupRef group, ABGroupRef groupToAdd) {
    BOOL added;
    IN_POOL(added = [(ABGroup*)group addSubgroup:(ABGroup*)groupToAdd]);
    return added;
}

bool ABGroupRemoveGroup(ABGroupRef group, ABGroupRef groupToRemove) {
    BOOL removed;
    IN_POOL(removed = [(ABGroup*)group removeSubgroup:(ABGroup*)groupToRemove]);
    return removed;
}

CFArrayRef ABGroupCopyParentGroups(ABGroupRef group) {
    return OWNED([(ABGroup*)group parentGroups]);
}

bool ABGroupSetDistributionIdentifier(ABGroupRef group, ABPersonRef person, CFStringRef property,
                                      CFStringRef identifier) {
    BOOL set;
    IN_POOL(set = [(ABGroup*)group setDistributionIdentifier:(NSString*)identifier
                                                 forProperty:(NSString*)property
                                                      person:(ABPerson*)person]);
    return set;
}

CFStringRef ABGroupCopyDistributionIdentifier(ABGroupRef group, ABPersonRef person, CFStringRef property) {
    return OWNED([(ABGroup*)group distributionIdentifierForProperty:(NSString*)property
                                                             person:(ABPerson*)person]);
}

ABSearchElementRef ABGroupCreateSearchElement(CFStringRef property, CFStringRef label, CFStringRef key,
                                              CFTypeRef value, ABSearchComparison comparison) {
    return OWNED([ABGroup searchElementForProperty:(NSString*)property
                                             label:(NSString*)label
                                               key:(NSString*)key
                                             value:(id)value
                                        comparison:comparison]);
}

ABSearchElementRef ABSearchElementCreateWithConjunction(ABSearchConjunction conjunction,
                                                        CFArrayRef childrenSearchElement) {
    return OWNED([ABSearchElement searchElementForConjunction:conjunction
                                                     children:(NSArray*)childrenSearchElement]);
}

bool ABSearchElementMatchesRecord(ABSearchElementRef searchElement, ABRecordRef record) {
    BOOL matches;
    IN_POOL(matches = [(ABSearchElement*)searchElement matchesRecord:(ABRecord*)record]);
    return matches;
}
