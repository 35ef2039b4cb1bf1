// What libraries keep or lose, so that a leak checker tells of our own leaks: the font library keeps what it
// read until the process ends, and the AV1 decoder of the HEIF library loses a note on data that it could not
// take.
extern "C" const char* __lsan_default_suppressions() { // the checker's own name
    return "leak:libfontconfig\nleak:libdav1d\n";
}
