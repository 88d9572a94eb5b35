#include "view/renderer.h"

#include <dlfcn.h>

#include <mutex>

namespace mirk::view {

namespace {

std::mutex openingMutex;
Renderer*  opened = nullptr;

/// The module lies beside the library that this code is part of.
std::string modulePath()
{
    Dl_info info{};
    if (!dladdr(reinterpret_cast<const void*>(&modulePath), &info) || !info.dli_fname)
        return "libmirkdraw.so";
    const std::string self = info.dli_fname;
    const size_t slash = self.rfind('/');
    return (slash == std::string::npos ? "" : self.substr(0, slash + 1)) + "libmirkdraw.so";
}

}  // namespace

Renderer& openRenderer(const std::string& path)
{
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        const char* why = dlerror();
        throw Error("The drawing module cannot be opened: " + std::string(why ? why : path.c_str()));
    }
    const auto create = reinterpret_cast<MirkCreateRenderer>(dlsym(module, "mirkCreateRenderer"));
    if (!create)
        throw Error("The drawing module '" + path + "' has no entry mirkCreateRenderer");
    // never deleted: the graphics driver's own threads may outlive any order of destruction
    return *create();
}

Renderer& renderer()
{
    const std::lock_guard lock(openingMutex);
    if (!opened)
        opened = &openRenderer(modulePath());
    return *opened;
}

bool rendererIsOpen()
{
    const std::lock_guard lock(openingMutex);
    return opened != nullptr;
}

}  // namespace mirk::view
