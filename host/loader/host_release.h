#pragma once

// Versions of the plug-in interface, and the host releases that introduced them.

#include <string>

namespace host {

// The interface version that the host declares by default: that of the newest release.
inline constexpr int kHostVersion = 77;

// The interface versions that a plug-in may return from start-up.
inline constexpr int kOldestInterface = 4;
inline constexpr int kNewestInterface = 255;

// Returns the release that introduced an interface version, such as "22.0"; start-up gives it to the plug-in
// as the application's version. For a version that no release introduced, returns the release before it.
const std::u16string& hostRelease(int interfaceVersion);

} // namespace host
