#pragma once

#import <ScriptingBridge/SBObject.h>

// The address book application. What its scripting interface adds is declared by those who use it, as on
// macOS, where the declarations are generated from the application:
//
//     @protocol AddressBookApplication
//     - (SBElementArray*)people;
//     - (void)setSelection:(NSArray*)selection;
//     @end
//
// The environment variable ADDRESSBOOK_APPLICATION names the application on the D-Bus session bus; without it
// org.gnome.Contacts counts. It is running when its name has an owner; nothing here starts it. A selection
// activates the action "show-contact" of its org.freedesktop.Application interface with the id of the
// selection's first person; an empty selection does nothing.
//
// Only a question connects to the bus. None waits longer than the time-out. setSelection:
// and activate raise an NSGenericException that says what is wrong: no bus, no owner, an owner that goes
// away, refuses or does not answer; and an NSInvalidArgumentException for a selection that is none. An
// application is used by one thread at a time.
@interface SBApplication : SBObject {
  @private
    void* _remote;
    long _timeout;
}

// The application for "com.apple.AddressBook", running or not; nil for every other identifier.
+ (id)applicationWithBundleIdentifier:(NSString*)identifier;

// NO as well when there is no bus or it does not answer in time.
- (BOOL)isRunning;

// Brings the application to the front.
- (void)activate;

// How long to wait for an answer, in sixtieths of a second: five seconds unless set; zero or less sets it
// back.
- (long)timeout;
- (void)setTimeout:(long)ticks;

@end
