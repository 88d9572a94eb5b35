#include "generators/linkGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace web {

namespace {

struct Vec
{
    double x, y, z;
};

Vec    operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec    operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec    operator*(Vec a, double k) { return {a.x * k, a.y * k, a.z * k}; }
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec    cross(Vec a, Vec b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double length(Vec a) { return std::sqrt(dot(a, a)); }
Vec    at(const std::vector<double>& xyz, std::size_t i) { return {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]}; }

/// True, and of length 1, if there is a direction. One that is not finite is none.
bool normalize(Vec& v)
{
    const double squared = dot(v, v);
    if (!(squared > 1e-20) || !std::isfinite(squared))
        return false;
    v = v * (1.0 / std::sqrt(squared));
    return true;
}

double mix(double a, double b, double t) { return a + (b - a) * t; }

void addPoint(Pieces& to, Vec p, const double* rgba)
{
    to.xyzw.insert(to.xyzw.end(), {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z), 1.0f});
    for (int c = 0; c < 4; ++c)
        to.rgba.push_back(static_cast<float>(rgba[c]));
}

/// A direction and the two across it: normal x binormal = direction.
struct Frame
{
    Vec direction{0, 0, 0}, normal{0, 1, 0}, binormal{0, 0, 1};

    /// Of a link that begins: the axis that is least along it decides.
    void start(Vec along)
    {
        const double x = std::fabs(along.x), y = std::fabs(along.y), z = std::fabs(along.z);
        const Vec    axis = y <= x && y <= z ? Vec{0, 1, 0} : z <= x ? Vec{0, 0, 1} : Vec{1, 0, 0};
        direction = along;
        normal = axis - along * dot(axis, along);
        normalize(normal);
        binormal = cross(direction, normal);
    }
    /// Turned by the least angle that brings the direction to `along`.
    void turn(Vec along)
    {
        const double straight = 1.0 + dot(direction, along);
        Vec          turned = normal;
        if (straight > 1e-9)   // else it goes back the way it came: the normal stays across it
            turned = normal - (direction + along) * (dot(normal, along) / straight);
        turned = turned - along * dot(turned, along);
        if (!normalize(turned))
            return start(along);
        direction = along;
        normal = turned;
        binormal = cross(direction, normal);
    }
};

} // namespace

Strands subdivide(const Points& points, const Links& links, const StrandStyle& style)
{
    Strands           out;
    const std::size_t places = static_cast<std::size_t>(style.segments) + 1, total = links.size() * places;
    out.segments = places - 1;
    out.xyz.resize(3 * total);
    out.rgba.resize(4 * total);
    out.thickness.resize(total);
    double *xyz = out.xyz.data(), *rgba = out.rgba.data(), *thickness = out.thickness.data();
    for (std::size_t i = 0; i < links.pointCount(); ++i) {
        for (std::size_t n = links.first[i]; n < links.first[i + 1]; ++n) {
            const auto    j = static_cast<std::size_t>(links.to[n]);
            const Vec     from = at(points.xyz, i), whole = at(points.xyz, j) - from;
            const Vec     step{whole.x / style.segments, whole.y / style.segments, whole.z / style.segments};
            const double *near = &points.rgba[4 * i], *far = &points.rgba[4 * j];
            for (std::size_t s = 0; s < places; ++s, xyz += 3) {
                const double t = static_cast<double>(s) / style.segments;
                const Vec    p = from + step * static_cast<double>(s);
                xyz[0] = p.x + (style.shift[0].empty() ? 0.0 : style.shift[0][s]);
                xyz[1] = p.y + (style.shift[1].empty() ? 0.0 : style.shift[1][s]);
                xyz[2] = p.z + (style.shift[2].empty() ? 0.0 : style.shift[2][s]);
                *thickness++ = mix(points.thickness[i], points.thickness[j], t)
                             * (style.thickness.empty() ? 1.0 : style.thickness[s]);
                for (int c = 0; c < 4; ++c)
                    *rgba++ = style.inputColor ? mix(near[c], far[c], t) : style.rgba[c];
            }
        }
    }
    return out;
}

Pieces tubes(const Strands& strands, double scale)
{
    Pieces            out;
    const std::size_t count = strands.segmentCount();
    out.xyzw.reserve(32 * count);
    out.rgba.reserve(32 * count);
    out.corners.reserve(16 * count);
    Frame       frame;
    bool        framed = false;
    const auto  ring = [&](std::size_t place) {
        const Vec    center = at(strands.xyz, place);
        const double half = 0.5 * scale * strands.thickness[place];
        const Vec    n = frame.normal * half, b = frame.binormal * half;
        for (const Vec& corner : {center + n + b, center - n + b, center - n - b, center + n - b})
            addPoint(out, corner, &strands.rgba[4 * place]);
    };
    eachSegment(strands, [&](std::size_t begin, std::size_t end) {
        if (begin % (strands.segments + 1) == 0) {
            framed = false;
            frame = Frame();
        }
        Vec along = at(strands.xyz, end) - at(strands.xyz, begin);
        if (normalize(along)) {
            framed ? frame.turn(along) : frame.start(along);
            framed = true;
        }
        const int first = static_cast<int>(out.pointCount());
        ring(begin);
        ring(end);
        for (int k = 0; k < 4; ++k) {
            const int next = (k + 1) % 4;
            out.corners.insert(out.corners.end(), {first + k, first + next, first + 4 + next, first + 4 + k});
        }
    });
    return out;
}

void instances(const Strands& strands, const InstanceArrays& out)
{
    InstanceArrays to = out;
    const auto     put = [](double*& where, Vec v) {
        where[0] = v.x;
        where[1] = v.y;
        where[2] = v.z;
        where += 3;
    };
    eachSegment(strands, [&](std::size_t begin, std::size_t end) {
        const Vec    a = at(strands.xyz, begin), b = at(strands.xyz, end);
        Vec          along = b - a;
        const double thickness = 0.5 * (strands.thickness[begin] + strands.thickness[end]);
        put(to.position, (a + b) * 0.5);
        put(to.scale, {length(along), thickness, thickness});
        normalize(along);
        put(to.direction, along);
        *to.thickness++ = thickness;
        for (std::size_t c = 0; c < 4; ++c)
            *to.rgba++ = 0.5 * (strands.rgba[4 * begin + c] + strands.rgba[4 * end + c]);
    });
}

std::vector<int> spannedTriangles(const Points& points, const Links& links, const FaceRule& rule)
{
    std::vector<int> triangles;
    const double     threshold = std::min(std::max(1.0 - rule.density, 0.0), 1.0);
    if (!(threshold < 1.0))   // 1 itself is in reach of the random numbers
        return triangles;
    std::srand(static_cast<unsigned int>(rule.seed));
    for (std::size_t a = 0; a < links.pointCount(); ++a) {
        if (links.first[a] == links.first[a + 1] || std::rand() * 4.656613e-10 < threshold)
            continue;
        for (std::size_t n = links.first[a]; n + 1 < links.first[a + 1]; ++n) {
            const int    b = links.to[n], c = links.to[n + 1];
            const Vec    p = at(points.xyz, a);
            const double area = 0.5 * length(cross(at(points.xyz, static_cast<std::size_t>(b)) - p,
                                                   at(points.xyz, static_cast<std::size_t>(c)) - p));
            if (area >= rule.minArea && area <= rule.maxArea)
                triangles.insert(triangles.end(), {static_cast<int>(a), b, c});
        }
    }
    return triangles;
}

Pieces trianglePieces(const Points& points, const std::vector<int>& triangles, const double* color)
{
    Pieces out;
    out.xyzw.reserve(4 * triangles.size());
    out.rgba.reserve(4 * triangles.size());
    for (const int point : triangles) {
        const auto i = static_cast<std::size_t>(point);
        out.corners.push_back(static_cast<int>(out.pointCount()));
        addPoint(out, at(points.xyz, i), color ? color : &points.rgba[4 * i]);
    }
    return out;
}

} // namespace web
