#pragma once

#import <Foundation/Foundation.h>
#include <cstdint>

// The outcome of the last call of an external function, as a message and a number. The two strings are not
// retained: the message is a constant, the extended text a constant or the text that g_sExceptionTxt owns.
@interface koru_PluginError : NSObject {
  @private
    std::int32_t errorID;
    std::int32_t sysID;
    NSString* strError;
    NSString* extendedError;
}

// Clears the error; getError then returns "Success".
- (void)clearError;

// Returns the message, followed by a blank and the extended text unless that is nil.
- (NSString*)getError;

// Returns the code in decimal digits.
- (NSString*)getErrorNumber;

// Sets the error. The message of an unknown code is "Undefined Error.".
- (void)setError:(int)code sysError:(int)sys extDesc:(NSString*)extended;

@end
