// Suppressions of sanitizer reports about GNUstep and the Objective-C runtime, which every program would get
// that is linked with them.

// Of leaks there are two, and no more are to come:
// - libgnustep-base: Foundation keeps constants and caches for as long as the process lives;
// - libobjc: so does the runtime with classes, selectors and locks.
// Both leave out what is made by way of them, and so all Objective-C objects. Of those, ours are counted instead: by class
// around each failure in plugin_test, and by the memory in use after very many calls (make test-leaks).
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libgnustep-base\nleak:libobjc\n";
}

// What is left out is not listed either: tests read what programs print.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// One thread takes the runtime's lock and Foundation's in both orders while classes are set up. No race is
// suppressed.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "deadlock:libgnustep-base\ndeadlock:libobjc\n";
}
