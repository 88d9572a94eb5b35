// Pictures for tests: small cameras, and reading of pixels.
#pragma once
#include <gtest/gtest.h>

#include "view/builders.h"
#include "view/renderer.h"

namespace picture {

using namespace mirk::view;

struct Pixel
{
    int r, g, b, a;
    bool operator==(const Pixel&) const = default;
};

inline std::ostream& operator<<(std::ostream& os, const Pixel& p)
{
    return os << "(" << p.r << ", " << p.g << ", " << p.b << ", " << p.a << ")";
}

/// Counted from the upper left.
inline Pixel at(const Image& image, int x, int y)
{
    const uint8_t* p = &image.bytes.at((size_t(y) * image.width + x) * 4);
    return {p[0], p[1], p[2], p[3]};
}

/// Looks down -z at x and y from -1 to 1, orthographic, from z = 10; plain background.
inline Camera flatCamera(int size = 64, Color background = {0, 0, 0, 1})
{
    Lens lens;
    lens.orthographic = true;
    lens.orthographicWidth = 2;
    lens.farClip = 100;
    Camera camera = makeCamera(lookAt(0, 0, 10, 0, 0, 0), lens, size, size);
    camera.backgroundTop = camera.backgroundBottom = background;
    return camera;
}

/// A square of half size `half` that faces the flat camera.
inline Item square(float half, float z, Color color, uint32_t id = 0)
{
    Item item;
    item.positions = {-half, -half, z, half, -half, z, half, half, z, -half, half, z};
    item.indices = {0, 1, 2, 0, 2, 3};
    item.state.color = color;
    item.state.id = id;
    return item;
}

inline Image render(const DrawList& list, const Camera& camera, int samples = 4)
{
    RenderRequest request;
    request.camera = camera;
    request.list = &list;
    request.samples = samples;
    return renderer().render(request);
}

inline constexpr Color kRed{1, 0, 0, 1}, kGreen{0, 1, 0, 1}, kBlue{0, 0, 1, 1}, kWhite{1, 1, 1, 1};

}  // namespace picture
