#pragma once

#import "plugin/shell/handler_frame.h"

namespace koru {

// The picture of the current person, whatever the current record type is, and the host's container values:
// named streams of bytes. A change stays in memory until it is saved.

// Gives the person the picture of the first stream of a known code; an empty container takes the picture
// away. Returns "0", or nil when it fails the call: kUnsupportedImageType (no such stream; nothing has
// changed), kNoBitmap (the bytes are no picture: the person has none now), kSettingImageFailed (refused, as
// without a current person).
[[nodiscard]] NSString* setImage(const fmx::BinaryData& container);

// Stores the picture in the result as a container; returns empty text when there is none. A picture that
// cannot be read fails the call with kNoBitmap, and a container of empty streams is stored all the same.
[[nodiscard]] Answer getImage(fmx::Data& result);

} // namespace koru
