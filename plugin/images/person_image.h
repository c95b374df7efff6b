#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// The picture of the current person, whatever the current record type is. Pictures come and go as the host's
// container values, which are named streams of bytes. A change stays in memory until it is saved.

// Sets the person's picture to that of the first stream with a known code; an empty container removes the
// picture. Returns "0", or nil when it fails the call: kUnsupportedImageType (there is no such stream;
// nothing has changed), kNoBitmap (the bytes are no picture; the person's old picture is removed),
// kSettingImageFailed (the framework refused, for instance because there is no current person).
[[nodiscard]] NSString* setImage(const fmx::BinaryData& container);

// Stores the picture in the result as a container; returns empty text when the person has none. When the
// picture cannot be read it fails the call with kNoBitmap, but stores a container of empty streams.
[[nodiscard]] Answer getImage(fmx::Data& result);

} // namespace koru
