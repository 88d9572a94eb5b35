// Images as textures read them. Files are decoded by a module that is opened with the first image.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace mirk::texture {

/// Four channels a pixel, rows from the top; one of the two arrays is filled.
struct Image
{
    int                  width = 0, height = 0;
    bool                 hasAlpha = false;   ///< else 1 everywhere
    std::vector<uint8_t> bytes;
    std::vector<float>   floats;
};

/// Half the size in both directions, never below one pixel; each pixel is the mean of those that it covers.
Image halved(const Image& image);

/// Reads a file. Images in use are shared: one that is the same on disk is not read twice. Null and a reason if there is
/// no such file or no image in it.
std::shared_ptr<const Image> readImage(const std::string& path, std::string& why);

/// What changes when somebody writes the file; "" if it cannot be looked at.
std::string fileStamp(const std::string& path);

// the module's entry: false and a reason if the file gives no image
using ReadImage = bool (*)(const char* path, Image& image, std::string& why);

}  // namespace mirk::texture
