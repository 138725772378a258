// What the sanitizer keeps of freed blocks counts as memory in use: little, next to the limit of
// the targets.

extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }
