// The arithmetic of the copier on flat arrays: per-copy arrays made to fit, and copies of meshes appended to the arrays of
// one mesh. No host header.
#pragma once
#include <cstddef>
#include <vector>

namespace copies {

constexpr int kNoSource = -1;

/// The source that an entry of the index array names among `sources`: its integer part. One that is above the number of
/// sources reads as the last source; the number itself, a negative one and NaN name none (kNoSource).
int sourceOf(double index, std::size_t sources);

/// True if two of the first three diagonal entries are exactly 0. That is meant for scales of 0, but a rotation that
/// exchanges axes has such a diagonal as well, and its copies are left out too: scenes rely on it.
bool lacksSurface(const double matrix[4][4]);

/// `count` draws from `minimum` to `maximum`, by a 64-bit Mersenne Twister: each takes one number x of it, as
/// minimum + (maximum - minimum) * x / 2^64, where the quotient stays below 1.
std::vector<double> randomShifts(int seed, double minimum, double maximum, std::size_t count);

/// Colours of `count` copies, r g b a with alpha 1. `values`: three a copy, or one a copy for greys; `vectors`: three a
/// copy. Black for every copy if `length`, the number of values, is anything else.
std::vector<float> colorsOfCopies(const double* values, std::size_t length, bool vectors, std::size_t count);

/// Data of `count` copies, four values each. `length` values: four a copy as they are, three and an alpha of 1, or one
/// three times and an alpha of 1; any other length is cut or padded with zeros to four a copy. `vectors`: three a copy
/// with an alpha of 1, cut or padded with zero vectors.
std::vector<double> dataOfCopies(const double* values, std::size_t length, bool vectors, std::size_t count);

/// A mesh to be copied. Null pointers where it has nothing of that kind or nothing is asked for.
struct Source
{
    const float* points = nullptr;    std::size_t pointCount = 0;     ///< x y z w
    const int*   counts = nullptr;    std::size_t faceCount = 0;      ///< corners of each face
    const int*   connects = nullptr;  std::size_t cornerCount = 0;
    const float* colors = nullptr;    ///< r g b a of each corner
    const int*   smooth = nullptr;    std::size_t edgeCount = 0;      ///< 0 for hard edges
    const float* u = nullptr;
    const float* v = nullptr;         std::size_t uvCount = 0;
    const int*   uvCounts = nullptr;  ///< corners with UVs of each face
    const int*   uvIds = nullptr;     std::size_t uvIdCount = 0;
};

/// Entries in each array of the result, or where a copy begins in them.
struct Extent
{
    std::size_t points = 0, faces = 0, corners = 0, colors = 0, edges = 0, uvs = 0, uvIds = 0;

    Extent& operator+=(const Extent& other);
};

/// Entries that a copy adds. With `inheritUVs` a source without UVs gets one a point.
Extent extentOf(const Source& source, bool inheritUVs);

/// The arrays of the result, long enough for all copies. Null: not wanted.
struct Target
{
    float* points = nullptr;      ///< x y z 1
    int*   counts = nullptr;
    int*   connects = nullptr;
    float* inherited = nullptr;   ///< r g b a of each point
    float* colors = nullptr;      ///< r g b a of each corner whose source has colours
    int*   colorIds = nullptr;    ///< entry of `colors` for each corner, -1 for none
    int*   smooth = nullptr;
    float* u = nullptr;
    float* v = nullptr;
    int*   uvCounts = nullptr;
    int*   uvIds = nullptr;
};

/// What a copy is given. Null: nothing of that kind.
struct Placement
{
    const double (*matrix)[4];        ///< affine, for row vectors
    const float*  color = nullptr;    ///< r g b a
    const double* uv = nullptr;       ///< is added to the UVs of the source, which are 0 if it has none
};

/// Writes one copy into the arrays, its entries beginning at `at`. Points are transformed in double precision. Copies
/// that begin at places of their own may be written at the same time.
void appendMesh(const Source& source, const Placement& placement, const Extent& at, const Target& to);

/// Four values, `count` times.
void repeat(const double value[4], std::size_t count, double* out);

} // namespace copies
