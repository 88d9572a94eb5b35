// A placed checker and a placed image sampled by plain loops.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace plain {

/// Repetition and offset of a placement without turns.
struct Tiling
{
    float repeat[2] = {1, 1}, offset[2] = {0, 0};
};

/// n colours (3 doubles each) of a black and white checker at n places.
void checker(const Tiling& tiling, const double* u, const double* v, std::size_t n, double* rgb);

/// Bytes of four channels a pixel, rows from the top; between four pixels, beyond the borders from the other side.
struct Bitmap
{
    int                       width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};
void image(const Bitmap& bitmap, const Tiling& tiling, const double* u, const double* v, std::size_t n, double* rgb);

}  // namespace plain
