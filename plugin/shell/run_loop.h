#pragma once

namespace koru {

// Lets the current thread's run loop do what is due, without waiting: there the notifications of other
// threads arrive. Called with every idle message of the host. On macOS the host runs its run loop itself, and
// this does nothing (run_loop_linux.mm, run_loop_macos.mm).
void turnRunLoop();

} // namespace koru
