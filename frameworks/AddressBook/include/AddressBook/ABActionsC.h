#pragma once

#include <AddressBook/ABAddressBookC.h>

// What an action plug-in in C hands over: a bundle that adds an item to the menu at entries of one property
// in the address book application. Declared so that such bundles compile; no application for this address
// book loads them. See ABActions.h for what each function is asked.
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

// The function that the bundle defines.
AB_EXTERN ABActionCallbacks* ABActionRegisterCallbacks(void);
