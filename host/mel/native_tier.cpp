#include "mel/native_tier.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "command/value_text.h"
#include "mel/native.h"

namespace mirk::mel {

namespace {

std::atomic<bool> g_enabled{[] {
    const char* text = std::getenv("MIRK_MEL_NATIVE");
    return !text || std::strcmp(text, "0") != 0;
}()};

std::atomic<int> g_hotTurns{1000};

template <class A, class T>
bool setElement(Heap* array, int32_t index, const T& value)
{
    try
    {
        static_cast<A*>(array)->set(index, value);
        return true;
    }
    catch (...)
    {
        return false;   // the interpreter does it again and reports it
    }
}

bool callBuiltIn(const Site* site, Slot* registers, uint16_t out)
{
    try
    {
        NativeCall c(registers, *site, out);
        site->native->function(c);
        return true;
    }
    catch (...)
    {
        return false;
    }
}

/// The module lies beside the library that this code is part of; null if it is not there (or not for this machine).
MirkMakeNative open()
{
#if defined(__x86_64__)
    Dl_info info{};
    std::string path = "libmirknative.so";
    if (dladdr(reinterpret_cast<const void*>(&open), &info) && info.dli_fname)
    {
        const std::string self = info.dli_fname;
        path = self.substr(0, self.rfind('/') + 1) + path;
    }
    if (void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
        return reinterpret_cast<MirkMakeNative>(dlsym(module, "mirkMakeNative"));
#endif
    return nullptr;
}

}  // namespace

bool nativeEnabled() { return g_enabled; }
int  hotTurns() { return g_hotTurns; }
void setNative(bool on, int turns)
{
    g_enabled = on;
    g_hotTurns = std::max(turns, 1);
}

const NativeCode* nativeCode(const Body& body, const std::atomic<bool>& interrupt)
{
    static_assert(sizeof(std::atomic<bool>) == 1);
    if (!g_enabled)
        return nullptr;
    if (!body.nativeTried)
    {
        static const MirkMakeNative make = open();
        static const NativeSupport  support{
            &interrupt,
            FloatArray::layout(),
            [](Heap* a, int32_t i, int32_t v) { return setElement<IntArray>(a, i, v); },
            [](Heap* a, int32_t i, double v) { return setElement<FloatArray>(a, i, v); },
            [](Heap* a, int32_t i, const Slot* v) { return setElement<VectorArray>(a, i, vec(v)); },
            command::intFromDouble,
            [](double a, double b) { return std::fmod(a, b); },
            callBuiltIn,
        };
        body.nativeTried = true;
        if (make)
            body.native = make(body, support);
    }
    return body.native.get();
}

}  // namespace mirk::mel
