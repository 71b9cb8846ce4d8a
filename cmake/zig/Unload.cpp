// What other toolchains bring in crtbeginS.o and Zig does not: static objects are destroyed when the plug-in
// is unloaded, and not when the process ends, by code that is no longer there.

extern "C" {

void __cxa_finalize(void* library);
extern __attribute__((visibility("hidden"))) void* __dso_handle;

}  // extern "C"

namespace {

__attribute__((destructor)) void DestroyStatics() {
    __cxa_finalize(&__dso_handle);
}

}  // namespace
