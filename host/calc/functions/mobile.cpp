// Functions of phones and tablets.
#include "host/calc/functions/groups.h"

namespace host {

namespace {

constexpr Builtin kFunctions[] = {
    {u"GetAVPlayerAttribute ( attributeName )", Placeholder{u""},
     "Returns an attribute of the media that is playing."},
    {u"GetSensor ( sensorName {; option1 ; option2 } )", Placeholder{u""},
     "Returns what a sensor of the device measures."},
    {u"Location ( accuracy {; timeout } )", Placeholder{u""}, "Returns the device's latitude and longitude."},
    {u"LocationValues ( accuracy {; timeout } )", Placeholder{u""},
     "Returns the device's place, height and their accuracy as a list."},
    {u"RangeBeacons ( UUID {; timeout ; major ; minor } )", Placeholder{u""}, "Returns the beacons nearby."},
};

} // namespace

std::span<const Builtin> mobileFunctions() {
    return kFunctions;
}

} // namespace host
