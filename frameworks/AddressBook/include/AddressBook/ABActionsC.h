#pragma once

#include <AddressBook/ABAddressBookC.h>

// The functions of an action plug-in in C: a bundle that adds an item to the menu of a property's entries in
// the address book application. Declared so that such bundles compile; no application for this address book
// loads them. ABActions.h describes the functions.
typedef CFStringRef (*ABActionGetPropertyCallback)(void);
typedef CFStringRef (*ABActionCopyTitleCallback)(ABPersonRef person, CFStringRef identifier);
typedef Boolean (*ABActionEnabledCallback)(ABPersonRef person, CFStringRef identifier);
typedef void (*ABActionSelectedCallback)(ABPersonRef person, CFStringRef identifier);

typedef struct {
    CFIndex version; // 0
    ABActionGetPropertyCallback property;
    ABActionCopyTitleCallback title;
    ABActionEnabledCallback enabled;
    ABActionSelectedCallback selected;
} ABActionCallbacks;

// Defined by the bundle: returns its functions.
AB_EXTERN ABActionCallbacks* ABActionRegisterCallbacks(void);
