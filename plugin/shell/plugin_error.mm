#import "plugin/shell/plugin_error.h"

#include "plugin/shell/error_codes.h"

namespace koru {
namespace {

struct ErrorMessage {
    ErrorCode code;
    NSString* message;
};

// The message of each code.
const ErrorMessage kMessages[] = {
    {kSuccess, @"SUCCESS"},
    {kInvalidParameterCount, @"Invalid Number of Parameters"},
    {kInvalidParameterValue, @"Invalid Parameter value(s)"},
    {kExceptionCaught, @"Exception caught in function"},
    {kRecordDoesNotExist, @"Record does not exist"},
    {kDeleteFailed, @"Failed to delete record"},
    {kNoActiveRecord, @"No active record in context"},
    {kInvalidCallOrder, @"Function call order is invalid"},
    {kSaveFailed, @"Failed to save record"},
    {kInvalidPropertyType, @"Invalid property type"},
    {kUidDoesNotExist, @"UID does not exist"},
    {kInvalidKey, @"Invalid value for key"},
    {kNotAnAddress, @"Property is not an Address"},
    {kInvalidPropertyName, @"Invalid property name"},
    {kErrorInProperty, @"Error in property"},
    {kSettingPropertyFailed, @"Error setting property"},
    {kReplacingMultiValueFailed, @"Error replacing multi-value array"},
    {kSettingLabelFailed, @"Error setting label"},
    {kCreatingAddressFailed, @"Failed to create address"},
    {kAddingPropertyFailed, @"Failed to add property"},
    {kRecordReadOnly, @"Record is read only"},
    {kInvalidRecordType, @"Invalid record type"},
    {kNoMultiValue, @"Multi-value array does not exist"},
    {kCreatingPropertyFailed, @"Unable to create property"},
    {kNoPropertiesAdded, @"No properties added"},
    {kRemovingPropertyFailed, @"Unable to remove property"},
    {kNoPropertiesRemoved, @"No properties removed"},
    {kSettingCustomPropertyFailed, @"Unable to set custom property"},
    {kNoBitmap, @"Unable to obtain bitmap of image"},
    {kSettingImageFailed, @"Unable to set image data"},
    {kUnsupportedImageType, @"Unsupported image type"},
    {kNoLabel, @"Unable to access label"},
    {kEmptyValue, @"Property value cannot be empty"},
    {kUidMissing, @"UID is missing and is required for this function"},
    {kInvalidCountryCode, @"Invalid country code passed to function"},
    {kAddressBookNotStarted, @"Address Book is not started"},
};

NSString* messageForCode(int code) {
    for (const ErrorMessage& row : kMessages) {
        if (row.code == code) {
            return row.message;
        }
    }
    return @"Undefined Error.";
}

} // namespace
} // namespace koru

using namespace koru;

@implementation koru_PluginError

- (void)clearError {
    errorID = 0;
    sysID = 0;
    strError = nil;
    extendedError = nil;
}

- (NSString*)getError {
    if (strError == nil) {
        return errorID == 0 ? @"Success" : @"!!ERROR!!";
    }
    if (extendedError == nil) {
        return [NSString stringWithFormat:@"%@", strError];
    }
    return [NSString stringWithFormat:@"%@ %@", strError, extendedError];
}

- (NSString*)getErrorNumber {
    return [NSString stringWithFormat:@"%d", errorID];
}

- (void)setError:(int)code sysError:(int)sys extDesc:(NSString*)extended {
    [self clearError];
    errorID = code;
    sysID = sys;
    if (extended != nil) {
        extendedError = extended;
    }
    strError = messageForCode(code);
}

@end
