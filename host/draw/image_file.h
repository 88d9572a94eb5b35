// Image files of all formats that OpenImageIO knows.
#pragma once
#include <string>

#include "view/renderer.h"

namespace mirk::draw {

/// Throws view::Error naming the path and the library's reason.
void        writeImage(const std::string& path, const view::Image& image);
view::Image readImage(const std::string& path);

}  // namespace mirk::draw
