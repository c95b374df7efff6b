#pragma once

// Called when the host and its user are idle. Does nothing: no script is ever started from here.
void runScript();
