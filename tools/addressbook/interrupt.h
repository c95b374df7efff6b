#pragma once

// Ctrl-C, SIGTERM and SIGHUP during long work: they do not end the program at once but at the next place
// where nothing is left half-done, by an exception on whose way up temporary files are removed and locks let
// go.

namespace addressbook::tool {

// The user or the system wants the program to end.
struct Interrupted {
    int signal = 0;
    // Returns the exit status that shells give a program that the signal ended: 130, 143 or 129.
    int status() const { return 128 + signal; }
};

// From now on the three signals are only noted; one that is ignored already (nohup) stays so.
void noteSignals();

// Throws Interrupted when one was noted.
void throwIfInterrupted();

// Waits until [descriptor] can be read. Throws Interrupted when a signal comes first.
void waitForInput(int descriptor);

} // namespace addressbook::tool
