// Linked into the executables that run with the sanitizers.

// The names are the sanitizer's. Fontconfig keeps parts of its configuration by offsets, not by pointers, so
// that memory which it still uses looks lost.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libfontconfig\n";
}

extern "C" const char* __lsan_default_options(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "print_suppressions=0";
}
