// Letters and small icons as strokes, which stay sharp at every size.
#pragma once
#include <string_view>
#include <vector>

namespace mirk::view {

/// Lines of a text: x, y of both ends each, pixels from the start of the first line's baseline. `size` is the height of
/// a line in pixels. A newline starts a line below; characters that the font lacks are drawn as a box.
std::vector<float> textStrokes(std::string_view text, double size);

/// Width in pixels of the longest line.
double textWidth(std::string_view text, double size);

/// Lines of an icon about its middle, `size` pixels wide; empty if there is none of that name.
std::vector<float> iconStrokes(std::string_view name, double size);

std::vector<std::string_view> iconNames();

}  // namespace mirk::view
