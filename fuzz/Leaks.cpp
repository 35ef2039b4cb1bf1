// What libraries keep or lose, so that a leak checker tells of our own leaks: the font library keeps what it
// read until the process ends, the AV1 decoder of the HEIF library loses a note on data that it could not
// take, and the HEVC encoder, which the tests run, some of its tables.
extern "C" const char* __lsan_default_suppressions() { // the checker's own name
    return "leak:libfontconfig\nleak:libdav1d\nleak:libx265\n";
}
