#include "frameworks/AppKit/codec/codec.h"

#include "frameworks/AppKit/codec/decode.h"
#include "frameworks/AppKit/codec/encode.h"

namespace appkit {

extern "C" __attribute__((visibility("default")))
const Codec velocardPictureCodec = {decode, encode, encodeResized};

} // namespace appkit
