#pragma once

#import <ScriptingBridge/SBObject.h>

// The address book application. Its own scripting interface is declared by the program that uses it, as on
// macOS, where these declarations are generated from the application:
//
//     @protocol AddressBookApplication
//     - (SBElementArray*)people;
//     - (void)setSelection:(NSArray*)selection;
//     @end
//
// The environment variable ADDRESSBOOK_APPLICATION gives the application's name on the D-Bus session bus; the
// default is org.gnome.Contacts. The application is running when its name has an owner; nothing here starts
// it. Setting the selection activates the action "show-contact" of its org.freedesktop.Application interface,
// with the id of the selection's first person; an empty selection does nothing.
//
// Only isRunning, setSelection: and activate connect to the bus, and none of them takes longer than the
// time-out. setSelection: and activate raise an NSGenericException when there is no bus or no owner, or when
// the owner disappears, refuses or does not reply; and an NSInvalidArgumentException for an invalid
// selection. An application is used by one thread at a time.
@interface SBApplication : SBObject {
  @private
    void* _remote;
    long _timeout;
}

// Returns the application for "com.apple.AddressBook", whether it is running or not; nil for any other
// identifier.
+ (id)applicationWithBundleIdentifier:(NSString*)identifier;

// Returns whether it is running; also NO when there is no bus, or when it does not reply in time.
- (BOOL)isRunning;

// Brings the application to the front.
- (void)activate;

// The time-out in sixtieths of a second; five seconds by default, to which zero or less resets it.
- (long)timeout;
- (void)setTimeout:(long)ticks;

@end
