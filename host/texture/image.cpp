#include "texture/image.h"

#include <dlfcn.h>

#include <filesystem>
#include <map>
#include <new>

namespace mirk::texture {
namespace {

constexpr const char* kModule = "libmirkimage.so";

/// The module lies beside the library that this code is part of.
std::string modulePath()
{
    Dl_info info{};
    if (!dladdr(reinterpret_cast<const void*>(&modulePath), &info) || !info.dli_fname)
        return kModule;
    const std::string self = info.dli_fname;
    const size_t      slash = self.rfind('/');
    return (slash == std::string::npos ? "" : self.substr(0, slash + 1)) + kModule;
}

ReadImage reader(std::string& why)
{
    static ReadImage entry = nullptr;
    if (entry)
        return entry;
    void* module = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    entry = module ? reinterpret_cast<ReadImage>(dlsym(module, "mirkReadImage")) : nullptr;
    if (!entry) {
        const char* reason = dlerror();
        why = "the image module cannot be opened: " + std::string(reason ? reason : kModule);
    }
    return entry;
}

float channel(const Image& image, int x, int y, int c)
{
    const size_t at = (size_t(y) * size_t(image.width) + size_t(x)) * 4 + size_t(c);
    return image.bytes.empty() ? image.floats[at] : float(image.bytes[at]) / 255.f;
}

}  // namespace

std::string fileStamp(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code failed;
    const auto      time = fs::last_write_time(path, failed);
    const auto      size = failed ? 0 : fs::file_size(path, failed);
    return failed ? "" : std::to_string(time.time_since_epoch().count()) + "/" + std::to_string(size);
}

std::shared_ptr<const Image> readImage(const std::string& path, std::string& why)
{
    static auto& inUse = *new std::map<std::pair<std::string, std::string>, std::weak_ptr<const Image>>;
    const auto   key = std::make_pair(path, fileStamp(path));
    if (key.second.empty()) {
        why = "there is no such file";
        return nullptr;
    }
    if (auto known = inUse.find(key); known != inUse.end())
        if (auto image = known->second.lock())
            return image;
    const ReadImage read = reader(why);
    if (!read)
        return nullptr;
    auto image = std::make_shared<Image>();
    try {
        if (!read(path.c_str(), *image, why))
            return nullptr;
    } catch (const std::bad_alloc&) {
        why = "there is not enough memory for it";
        return nullptr;
    }
    std::erase_if(inUse, [](const auto& entry) { return entry.second.expired(); });
    inUse[key] = image;
    return image;
}

Image halved(const Image& image)
{
    Image half;
    half.width = image.width > 1 ? image.width / 2 : 1;
    half.height = image.height > 1 ? image.height / 2 : 1;
    half.hasAlpha = image.hasAlpha;
    half.floats.resize(size_t(half.width) * size_t(half.height) * 4);
    const auto from = [](int i, int small, int large) { return int(int64_t(i) * large / small); };
    float*     out = half.floats.data();
    for (int y = 0; y < half.height; ++y)
        for (int x = 0; x < half.width; ++x)
            for (int c = 0; c < 4; ++c) {
                const int x0 = from(x, half.width, image.width), x1 = from(x + 1, half.width, image.width);
                const int y0 = from(y, half.height, image.height), y1 = from(y + 1, half.height, image.height);
                float     sum = 0;
                for (int j = y0; j < y1; ++j)
                    for (int i = x0; i < x1; ++i)
                        sum += channel(image, i, j, c);
                *out++ = sum / float((x1 - x0) * (y1 - y0));
            }
    return half;
}

}  // namespace mirk::texture
