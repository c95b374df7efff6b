// A library that is no plug-in.
extern "C" __attribute__((visibility("default"))) int someFunction() {
    return 1;
}
