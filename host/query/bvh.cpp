#include "query/bvh.h"

#include <dlfcn.h>

#include <mutex>
#include <string>

#include "command/message.h"

namespace mirk::query {

namespace {

/// The module lies beside the library that this code is part of.
std::string modulePath()
{
    Dl_info info{};
    if (!dladdr(reinterpret_cast<const void*>(&modulePath), &info) || !info.dli_fname)
        return "libmirkquery.so";
    const std::string self = info.dli_fname;
    const size_t slash = self.rfind('/');
    return (slash == std::string::npos ? "" : self.substr(0, slash + 1)) + "libmirkquery.so";
}

BuildBvh open()
{
    void* module = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    void* entry = module ? dlsym(module, "mirkBuildBvh") : nullptr;
    if (!entry) {
        const char* why = dlerror();
        message::error("The module of mesh queries cannot be opened: "
                       + std::string(why ? why : modulePath().c_str()));
    }
    return reinterpret_cast<BuildBvh>(entry);
}

}  // namespace

BuildBvh bvhBuilder()
{
    static const BuildBvh build = open();
    return build;
}

}  // namespace mirk::query
