#pragma once

namespace koru {

// Runs the current thread's run loop, without waiting, until nothing is due: this is how notifications from
// other threads arrive. Called when the host tells that its user is idle. Does nothing on macOS, where the host
// runs the run loop itself (run_loop_linux.mm, run_loop_macos.mm).
void turnRunLoop();

} // namespace koru
