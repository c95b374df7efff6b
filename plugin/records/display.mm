#import "plugin/records/display.h"

#import "plugin/shell/handler_frame.h"
#include "plugin/shell/handlers.h"
#import <ScriptingBridge/ScriptingBridge.h>

// The part of the Address Book application's scripting interface that is used here.
@protocol AddressBookApplication
- (SBElementArray*)people;
- (void)setSelection:(NSArray*)selection;
@end

namespace koru {

NSString* displayPerson(NSString* uniqueId) {
    SBApplication* application = [SBApplication applicationWithBundleIdentifier:@"com.apple.AddressBook"];
    if (![application isRunning]) {
        setError(kAddressBookNotStarted);
        return nil;
    }
    auto addressBook = (id<AddressBookApplication>)application;
    [addressBook setSelection:[NSArray arrayWithObject:[[addressBook people] objectWithID:uniqueId]]];
    [application activate];
    return @"0";
}

} // namespace koru

using namespace koru;

fmx::errcode Do_KORU_Display(short function, const fmx::ExprEnv& /*env*/, const fmx::DataVect& arguments,
                             fmx::Data& result) {
    const auto work = [&]() -> Answer { return displayPerson(textArgument(arguments, 0)); };
    return runHandler(function, arguments, result, work);
}
