#include "codec.h"

#include "decode.h"
#include "encode.h"

namespace appkit {

extern "C" __attribute__((visibility("default"))) const Codec velocardPictureCodec = {decode, encode};

} // namespace appkit
