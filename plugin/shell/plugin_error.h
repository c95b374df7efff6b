#pragma once

#import <Foundation/Foundation.h>
#include <cstdint>

// The outcome of the last call of an external function, as a message and a number. It keeps its two strings
// without retaining them: the message is a constant, the extended text a constant or the text that
// g_sExceptionTxt owns.
@interface koru_PluginError : NSObject {
  @private
    std::int32_t errorID;
    std::int32_t sysID;
    NSString* strError;
    NSString* extendedError;
}

// Forgets everything; getError then returns "Success".
- (void)clearError;

// Returns the message, and after one blank the extended text when there is one, be it empty.
- (NSString*)getError;

// Returns the code in decimal digits.
- (NSString*)getErrorNumber;

// Records an error. A nil extended text adds nothing to the message, an empty one a blank. Unknown codes read
// "Undefined Error.".
- (void)setError:(int)code sysError:(int)sys extDesc:(NSString*)extended;

@end
