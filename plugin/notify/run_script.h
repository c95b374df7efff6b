#pragma once

// Does nothing: the hook for the time in which the host and its user are idle. No script is ever started
// here.
void runScript();
