#include "view/stroke_font.h"

#include <algorithm>

namespace mirk::view {

namespace {

// A glyph is words of points, each word one pen stroke. A point is a column, 0 to 4, and a row: c is the baseline, g the
// height of small letters, i that of capitals, a the depth of descenders. Order is that of ASCII from the blank.
constexpr std::string_view kGlyphs[] = {
    "", "2i2e 2d2c", "1i1g 3i3g", "1i1c 3i3c 0g4g 0e4e", "4h1h0g1f3f4e3d0d 2i2c", "4i0c 0i1i1h0h0i 3d4d4c3c3d",
    "4c1g1h2i3h3g0e0d1c2c4e", "2i2g", "3i2h2d3c", "1i2h2d1c", "2h2d 0g4e 4g0e", "2h2d 0f4f", "2d2c1b", "1f3f", "2d2c",
    "4i0c",
    "1c0d0h1i3i4h4d3c1c 0d4h", "1h2i2c 1c3c", "0h1i3i4h4g0c4c", "0h1i3i4h4g3f1f 3f4e4d3c1c0d", "3c3i0e4e",
    "4i0i0f3f4e4d3c1c0d", "4h3i1i0h0d1c3c4d4e3f0f", "0i4i1c", "1f0g0h1i3i4h4g3f1f0e0d1c3c4d4e3f",
    "0d1c3c4d4h3i1i0h0g1f4f", "2g2f 2d2c", "2g2f 2d2c1b", "4h0f4d", "0g4g 0e4e", "0h4f0d", "0h1i3i4h4g2f2e 2d2c",
    "4d3c1c0d0h1i3i4h4e2e2g4g", "0c2i4c 1e3e", "0c0i3i4h4g3f0f 3f4e4d3c0c", "4h3i1i0h0d1c3c4d", "0c0i2i4g4e2c0c",
    "4i0i0c4c 0f3f", "4i0i0c 0f3f", "4h3i1i0h0d1c3c4d4f2f", "0c0i 4c4i 0f4f", "1i3i 2i2c 1c3c", "4i4d3c1c0d",
    "0i0c 4i0f4c", "0i0c4c", "0c0i2f4i4c", "0c0i4c4i", "1c0d0h1i3i4h4d3c1c", "0c0i3i4h4g3f0f", "1c0d0h1i3i4h4d3c1c 2e4c",
    "0c0i3i4h4g3f0f 2f4c", "4h3i1i0h0g1f3f4e4d3c1c0d", "0i4i 2i2c", "0i0d1c3c4d4i", "0i2c4i", "0i1c2f3c4i", "0i4c 4i0c",
    "0i2f4i 2f2c", "0i4i0c4c", "3i1i1c3c", "0i4c", "1i3i3c1c", "0g2i4g", "0b4b", "1i2g",
    "1g3g4f4c 4e1e0d1c3c4d", "0i0c 0f1g3g4f4d3c1c0d", "4f3g1g0f0d1c3c4d", "4i4c 4f3g1g0f0d1c3c4d", "0e4e4f3g1g0f0d1c4c",
    "4i3i2h2c 0g4g", "4g4b3a1a0b 4f3g1g0f0d1c3c4d", "0i0c 0f1g3g4f4c", "2i2h 1g2g2c 1c3c", "3i3h 2g3g3b2a1a",
    "0i0c 4g0e4c", "1i2i2c 1c3c", "0c0g 0f1g2f2c 2f3g4f4c", "0c0g 0f1g3g4f4c", "1c0d0f1g3g4f4d3c1c",
    "0g0a 0f1g3g4f4d3c1c0d", "4g4a 4f3g1g0f0d1c3c4d", "0g0c 0e2g3g4f", "4g1g0f1e3e4d3c0c", "2i2d3c4c 0g4g",
    "0g0d1c3c4d 4g4c", "0g2c4g", "0g1c2f3c4g", "0g4c 4g0c", "0g2c 4g2c1a0a", "0g4g0c4c", "3i2i2g1f2e2c3c", "2i2a",
    "1i2i2g3f2e2c1c", "0f1g3e4f"};
static_assert(std::size(kGlyphs) == '~' - ' ' + 1);

constexpr std::string_view kBox = "0c0i4i4c0c";

struct Icon { std::string_view name, strokes; };

// in the square from 0c to 4g
constexpr Icon kIcons[] = {
    {"CAMERA", "0d0f2f2d0d 2e4g4c2e 0f1g2f"},
    {"CIRCLE", "1c0d0f1g3g4f4d3c1c"},
    {"CROSS", "0c4g 0g4c"},
    {"DIAMOND", "2c0e2g4e2c"},
    {"DIRECTIONAL_LIGHT", "0g4g 0g0f 2g2c 1d2c3d 4g4f"},
    {"PLUS", "2c2g 0e4e"},
    {"POINT_LIGHT", "2g2c 0e4e 1d3f 1f3d"},
    {"SQUARE", "0c0g4g4c0c"},
    {"TRIANGLE", "0c2g4c0c"},
};

/// Units of a glyph to pixels, appended. `x`, `y`: where the glyph's column 0 on the baseline goes.
void addStrokes(std::vector<float>& out, std::string_view glyph, double x, double y, double unitX, double unitY)
{
    for (size_t i = 0; i + 3 < glyph.size(); i += 2) {
        if (glyph[i + 2] == ' ')
            ++i;   // on to the next word
        else
            for (const size_t p : {i, i + 2}) {
                out.push_back(static_cast<float>(x + (glyph[p] - '0') * unitX));
                out.push_back(static_cast<float>(y + (glyph[p + 1] - 'c') * unitY));
            }
    }
}

constexpr double kUnitX = 0.105, kUnitY = 0.12, kAdvance = 0.62, kLeading = 1.25;   // of a line's height

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; }   // UTF-8

}  // namespace

std::vector<float> textStrokes(std::string_view text, double size)
{
    std::vector<float> out;
    double x = 0, y = 0;
    for (const char c : text) {
        if (continuesCharacter(c))
            continue;
        if (c == '\n') {
            x = 0;
            y -= kLeading * size;
            continue;
        }
        const bool known = c >= ' ' && c <= '~';
        addStrokes(out, known ? kGlyphs[c - ' '] : c == '\t' ? std::string_view() : kBox, x, y, kUnitX * size, kUnitY * size);
        x += kAdvance * size;
    }
    return out;
}

double textWidth(std::string_view text, double size)
{
    size_t longest = 0, line = 0;
    for (const char c : text) {
        line = c == '\n' ? 0 : line + !continuesCharacter(c);
        longest = std::max(longest, line);
    }
    return double(longest) * kAdvance * size;
}

std::vector<float> iconStrokes(std::string_view name, double size)
{
    std::vector<float> out;
    for (const Icon& icon : kIcons)
        if (icon.name == name)
            addStrokes(out, icon.strokes, -size / 2, -size / 2, size / 4, size / 4);
    return out;
}

std::vector<std::string_view> iconNames()
{
    std::vector<std::string_view> names;
    for (const Icon& icon : kIcons)
        names.push_back(icon.name);
    return names;
}

}  // namespace mirk::view
