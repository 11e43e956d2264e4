// A shared module with the plug-in suffix but without the entry point.
extern "C" __attribute__((visibility("default"))) int notAPlugIn() { return 42; }
