#include "plugin/notify/run_script.h"

void runScript() {}
