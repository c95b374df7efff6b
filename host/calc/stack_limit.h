#pragma once

namespace host {

// Whether so little of the thread's stack is left that a calculation must not be nested deeper. The reserve
// is for plug-ins and for unwinding.
bool isStackShort();

// Raises the limit of the main thread's stack as far as the system allows in a running program, so that
// custom functions can be nested to FileMaker's depth. Call it before the first calculation.
void growStack();

} // namespace host
