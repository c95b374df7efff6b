#pragma once

namespace host {

// Whether so little of the thread's stack is left that a calculation must go no deeper; what is kept back is for
// plug-ins and for the way out.
bool isStackShort();

// Lets the main thread's stack grow to what the system grants without a new start of the program, so that
// functions may call themselves to FileMaker's depth. To be called before the first calculation.
void growStack();

} // namespace host
