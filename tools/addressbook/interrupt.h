#pragma once

// Ctrl-C, SIGTERM and SIGHUP during long work. They do not end the program at once, but by an exception at
// the next place where nothing is left unfinished, so that temporary files are removed and locks released.

namespace addressbook::tool {

// Thrown when a signal has asked the program to end.
struct Interrupted {
    int signal = 0;
    // Returns the exit status by which shells report a program that the signal has ended: 130, 143 or 129.
    int status() const { return 128 + signal; }
};

// Makes the three signals be noted only, from now on; one that is ignored already (nohup) stays ignored.
void noteSignals();

// Throws Interrupted if a signal was noted.
void throwIfInterrupted();

// Waits until [descriptor] can be read. Throws Interrupted when a signal comes first.
void waitForInput(int descriptor);

} // namespace addressbook::tool
