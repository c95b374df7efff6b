#pragma once

#import "plugin/shell/handler_frame.h"

// The picture of the current person, whatever the current record type is, and the host's container values:
// named streams of bytes. A change stays in memory until it is saved.

// Gives the person the picture of the first stream of a known code; an empty container takes the picture
// away. "0", or nil when it failed the call: kUnsupportedImageType (no such stream; nothing has changed),
// kNoBitmap (the bytes are no picture: the person has none now), kSettingImageFailed (refused, as without a
// current person).
[[nodiscard]] NSString* setImage(const fmx::BinaryData& container);

// The picture as a container, stored in the result: empty text when there is none. A picture that cannot be
// read fails the call with kNoBitmap, and answers a container of empty streams all the same.
[[nodiscard]] Answer getImage(fmx::Data& result);
