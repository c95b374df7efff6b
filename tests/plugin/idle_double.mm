#include "tests/plugin/idle_double.h"

#include "plugin/notify/run_script.h"

namespace {
int count = 0;
}

int idle_double::calls() {
    return count;
}

void runScript() {
    ++count;
}
