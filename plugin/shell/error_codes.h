#pragma once

#include <cstdint>

namespace koru {

// The codes with which a call can fail. Their messages are in plugin_error.mm.
enum ErrorCode : std::int32_t {
    kSuccess = 0,
    kInvalidParameterCount = -3,
    kInvalidParameterValue = -4,
    kExceptionCaught = -8000,
    kRecordDoesNotExist = -8001,
    kDeleteFailed = -8002,
    kNoActiveRecord = -8003,
    kInvalidCallOrder = -8004,
    kSaveFailed = -8005,
    kInvalidPropertyType = -8006,
    kUidDoesNotExist = -8007,
    kInvalidKey = -8008,
    kNotAnAddress = -8009,
    kInvalidPropertyName = -8010,
    kErrorInProperty = -8011,
    kSettingPropertyFailed = -8012,
    kReplacingMultiValueFailed = -8013,
    kSettingLabelFailed = -8014,
    kCreatingAddressFailed = -8015,
    kAddingPropertyFailed = -8016,
    kRecordReadOnly = -8017,
    kInvalidRecordType = -8018,
    kNoMultiValue = -8019,
    kCreatingPropertyFailed = -8020,
    kNoPropertiesAdded = -8021,
    kRemovingPropertyFailed = -8022,
    kNoPropertiesRemoved = -8023,
    kSettingCustomPropertyFailed = -8024,
    kNoBitmap = -8025,
    kSettingImageFailed = -8026,
    kUnsupportedImageType = -8027,
    kNoLabel = -8028,
    kEmptyValue = -8029,
    kUidMissing = -8030,
    kInvalidCountryCode = -8031,
    kAddressBookNotStarted = -8032,
};

} // namespace koru
