// What a picture is made of, without any OpenGL: flat arrays with a state each. Draw overrides and the scene write
// draw lists, the renderer module reads them, and tests look inside.
#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirk::view {

/// 4 x 4, row-major, for row vectors: p * M, translation in elements 12 to 14.
using Matrix = std::array<double, 16>;

inline constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

inline Matrix multiply(const Matrix& a, const Matrix& b)
{
    Matrix m{};
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            for (int k = 0; k < 4; ++k)
                m[r * 4 + c] += a[r * 4 + k] * b[k * 4 + c];
    return m;
}

/// Channels in display space (sRGB encoded), 0 to 1; alpha is not premultiplied.
struct Color
{
    float r = 1, g = 1, b = 1, a = 1;
    bool operator==(const Color&) const = default;
};

enum class Primitive : uint8_t { kPoints, kLines, kTriangles };

/// What the positions of an item are.
enum class Space : uint8_t
{
    kObject,    ///< x, y, z in the space of the item's matrix
    kScreen,    ///< x, y in pixels from the lower left corner of the picture; z is ignored
    kAnchored,  ///< x, y in pixels from where `anchor` (object space) falls on the picture; depth is the anchor's
};

/// A picture that covers triangles. Rows from the bottom, four bytes a pixel, as State's colours.
struct Texture
{
    int                  width = 0, height = 0;
    std::vector<uint8_t> rgba;
};

struct State
{
    Color    color;                     ///< where the item has no colours of its own
    float    lineWidth = 1;             ///< pixels
    float    pointSize = 1;             ///< pixels, the diameter
    uint16_t linePattern = 0xffff;      ///< 16 bits, lowest first; each lasts `lineFactor` pixels
    uint16_t lineFactor = 1;
    uint32_t depthPriority = 0;         ///< among items at the same depth the highest wins
    bool     xray = false;              ///< drawn after the rest, in front of everything
    bool     lit = false;               ///< triangles only: shaded, from both sides; else the plain colour
    bool     screenDoor = false;        ///< triangles only: every second pixel left out
    bool     transparent = false;       ///< blended; items with an alpha below 1 are treated so by themselves
    Color    wireColor{0.f, 0.f, 0.f, 1.f};
    uint32_t id = 0;                    ///< what picking reports; 0 cannot be picked
    bool operator==(const State&) const = default;
};

/// Points, lines or triangles. Vertex arrays are flat: 3 floats a position or normal, 4 a colour.
struct Item
{
    Primitive             primitive = Primitive::kTriangles;
    Space                 space = Space::kObject;
    State                 state;
    Matrix                matrix = kIdentity;   ///< object to world
    std::vector<Matrix>   copies;               ///< drawn once for each of these, in place of `matrix`, if there are any
    std::array<float, 3>  anchor{0, 0, 0};
    std::vector<float>    positions;
    std::vector<float>    normals;              ///< as many as positions, or empty: facets are found while shading
    std::vector<float>    colors;               ///< one a position, or empty
    std::vector<float>    uvs;                  ///< 2 a position, or empty: (0, 0) is the texture's lower left corner, (1, 1) its upper right
    std::shared_ptr<const Texture> texture;     ///< in place of the colour, but not of its alpha; may be null
    std::vector<uint32_t> indices;              ///< 1, 2 or 3 a primitive; empty: vertices in order
    std::vector<uint32_t> wire;                 ///< 2 an edge: drawn over the triangles in `wireColor`
    std::string           text;                 ///< what the item spells, if it is text
};

struct Camera
{
    Matrix view = kIdentity;         ///< world to eye; the eye looks down -z
    Matrix projection = kIdentity;   ///< eye to clip, z from -w to w
    int    width = 640;              ///< pixels
    int    height = 480;
    Color  backgroundTop{0.53f, 0.57f, 0.61f, 1.f};
    Color  backgroundBottom{0.17f, 0.18f, 0.20f, 1.f};
};

/// Code that draws with OpenGL by itself. It runs with a context current that knows the fixed pipeline, the item's
/// matrix times the camera's loaded: after what is opaque, after what is transparent, or last.
struct Callback
{
    enum class Order : uint8_t { kOpaque, kTransparent, kLast };

    std::function<void(const Camera&)> draw;
    Matrix                             matrix = kIdentity;
    Order                              order = Order::kOpaque;
};

struct DrawList
{
    std::vector<Item>     items;
    std::vector<Callback> callbacks;
};

}  // namespace mirk::view
