#pragma once

// The host releases that go with the versions of the plug-in interface.

#include <string>

namespace host {

// The interface version that the host says it has, unless told otherwise: that of its newest release.
inline constexpr int kHostVersion = 77;

// The versions that a plug-in may answer to the start-up.
inline constexpr int kOldestInterface = 4;
inline constexpr int kNewestInterface = 255;

// The release that came with an interface version, such as "22.0": what start-up tells the plug-in as the
// application's version. For a version that none came with, the release before it.
const std::u16string& hostRelease(int interfaceVersion);

} // namespace host
