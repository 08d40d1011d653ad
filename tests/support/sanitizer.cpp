// What the leak check of sanitized builds passes over: caches that the font library keeps for the life of the process,
// and the blocks of ended applications, which are left behind when their slots are used again.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n"
           "leak:mclibMain_initMcLibExtended\n";
}
