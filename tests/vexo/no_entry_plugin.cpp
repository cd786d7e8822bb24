// A shared library without the module entry point.
extern "C" __attribute__((visibility("default"))) int vexoTestNotAModule() { return 0; }
