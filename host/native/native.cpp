// The module's entry.
#include <cstdio>

#include "native/emitter.h"

// the library's archive reaches for this variable in a way that a shared object cannot offer; the linker gives it ours
extern "C" __attribute__((visibility("hidden"))) FILE* __wrap_stderr;
FILE* __wrap_stderr = nullptr;

extern "C" __attribute__((visibility("default"))) std::unique_ptr<mirk::mel::NativeCode> mirkMakeNative(
    const mirk::mel::Body& body, const mirk::mel::NativeSupport& support)
{
    static auto* const runtime = new asmjit::JitRuntime;   // code may run as long as the process
    return mirk::mel::native::Emitter(body, support, *runtime).make();
}
