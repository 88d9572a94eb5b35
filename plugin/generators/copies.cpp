#include "generators/copies.h"

#include <algorithm>
#include <random>

namespace copies {

int sourceOf(double index, std::size_t sources)
{
    if (!(index > -1.0) || sources == 0)        // NaN as well; what lies between -1 and 0 is truncated to 0
        return kNoSource;
    if (index >= double(sources) + 1.0)
        return int(sources - 1);
    const auto i = std::size_t(index < 0.0 ? 0.0 : index);
    return i < sources ? int(i) : kNoSource;
}

bool lacksSurface(const double m[4][4])
{
    return (m[0][0] == 0.0) + (m[1][1] == 0.0) + (m[2][2] == 0.0) >= 2;
}

std::vector<double> randomShifts(int seed, double minimum, double maximum, std::size_t count)
{
    // written out: libraries differ in how they make a double of the generator's bits
    std::mt19937_64     random(static_cast<std::mt19937_64::result_type>(seed));
    std::vector<double> shifts(count);
    for (double& shift : shifts) {
        const double part = std::min(double(random()) * 0x1p-64, 1.0 - 0x1p-53);
        shift = part * (maximum - minimum) + minimum;
    }
    return shifts;
}

std::vector<float> colorsOfCopies(const double* values, std::size_t length, bool vectors, std::size_t count)
{
    std::vector<float> rgba(4 * count, 0.0f);
    const std::size_t  step = length == 3 * count ? 3 : length == count && !vectors ? 1 : 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < 3 && step > 0; ++k)
            rgba[4 * i + k] = float(values[step * i + (step == 3 ? k : 0)]);
        rgba[4 * i + 3] = 1.0f;
    }
    return rgba;
}

std::vector<double> dataOfCopies(const double* values, std::size_t length, bool vectors, std::size_t count)
{
    std::vector<double> data(4 * count, 0.0);
    const bool          grey = !vectors && length == count;
    if (!vectors && !grey && length != 3 * count) {
        if (values)
            std::copy_n(values, std::min(length, data.size()), data.begin());
        return data;
    }
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < 3; ++k)
            if (const std::size_t from = grey ? i : 3 * i + k; from < length)
                data[4 * i + k] = values[from];
        data[4 * i + 3] = 1.0;
    }
    return data;
}

Extent& Extent::operator+=(const Extent& other)
{
    points += other.points;
    faces += other.faces;
    corners += other.corners;
    colors += other.colors;
    edges += other.edges;
    uvs += other.uvs;
    uvIds += other.uvIds;
    return *this;
}

Extent extentOf(const Source& source, bool inheritUVs)
{
    Extent e;
    e.points = source.pointCount;
    e.faces = source.faceCount;
    e.corners = source.cornerCount;
    e.colors = source.colors ? source.cornerCount : 0;
    e.edges = source.edgeCount;
    e.uvs = source.uvCount > 0 ? source.uvCount : inheritUVs ? source.pointCount : 0;
    e.uvIds = source.uvCount > 0 ? source.uvIdCount : inheritUVs ? source.cornerCount : 0;
    return e;
}

namespace {

void transform(const float* points, std::size_t count, const double m[4][4], float* out)
{
    const double xx = m[0][0], xy = m[0][1], xz = m[0][2], yx = m[1][0], yy = m[1][1], yz = m[1][2];
    const double zx = m[2][0], zy = m[2][1], zz = m[2][2], tx = m[3][0], ty = m[3][1], tz = m[3][2];
    for (std::size_t i = 0; i < count; ++i, points += 4, out += 4) {
        const double x = points[0], y = points[1], z = points[2];
        out[0] = float(x * xx + y * yx + z * zx + tx);
        out[1] = float(x * xy + y * yy + z * zy + ty);
        out[2] = float(x * xz + y * yz + z * zz + tz);
        out[3] = 1.0f;
    }
}

void shifted(const int* ids, std::size_t count, std::size_t offset, int* out)
{
    const int by = int(offset);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = ids[i] + by;
}

template <class T>
void repeated(const T value[4], std::size_t count, T* out)
{
    const T a = value[0], b = value[1], c = value[2], d = value[3];
    for (std::size_t i = 0; i < count; ++i, out += 4) {
        out[0] = a;
        out[1] = b;
        out[2] = c;
        out[3] = d;
    }
}

void moved(const float* values, std::size_t count, double by, float* out)
{
    if (by == 0.0) {
        std::copy_n(values, count, out);
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        out[i] = float(double(values[i]) + by);
}

void appendUVs(const Source& s, const double* uv, const Extent& at, const Target& to)
{
    if (s.uvCount > 0) {
        moved(s.u, s.uvCount, uv ? uv[0] : 0.0, to.u + at.uvs);
        moved(s.v, s.uvCount, uv ? uv[1] : 0.0, to.v + at.uvs);
        std::copy_n(s.uvCounts, s.faceCount, to.uvCounts + at.faces);
        shifted(s.uvIds, s.uvIdCount, at.uvs, to.uvIds + at.uvIds);
    } else if (uv) {
        std::fill_n(to.u + at.uvs, s.pointCount, float(uv[0]));
        std::fill_n(to.v + at.uvs, s.pointCount, float(uv[1]));
        std::copy_n(s.counts, s.faceCount, to.uvCounts + at.faces);
        shifted(s.connects, s.cornerCount, at.uvs, to.uvIds + at.uvIds);
    } else {
        std::fill_n(to.uvCounts + at.faces, s.faceCount, 0);
    }
}

} // namespace

void appendMesh(const Source& s, const Placement& placement, const Extent& at, const Target& to)
{
    transform(s.points, s.pointCount, placement.matrix, to.points + 4 * at.points);
    std::copy_n(s.counts, s.faceCount, to.counts + at.faces);
    shifted(s.connects, s.cornerCount, at.points, to.connects + at.corners);
    if (to.inherited)
        repeated(placement.color, s.pointCount, to.inherited + 4 * at.points);
    if (to.colorIds) {
        int* ids = to.colorIds + at.corners;
        for (std::size_t i = 0; i < s.cornerCount; ++i)
            ids[i] = s.colors ? int(at.colors + i) : -1;
        if (s.colors)
            std::copy_n(s.colors, 4 * s.cornerCount, to.colors + 4 * at.colors);
    }
    if (to.smooth && s.smooth)
        std::copy_n(s.smooth, s.edgeCount, to.smooth + at.edges);
    if (to.u)
        appendUVs(s, placement.uv, at, to);
}

void repeat(const double value[4], std::size_t count, double* out)
{
    repeated(value, count, out);
}

} // namespace copies
