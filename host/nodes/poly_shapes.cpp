#include "nodes/poly_shapes.h"

#include <bit>
#include <cmath>
#include <numbers>

#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

namespace mirk::poly {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

int addPoint(Shape& s, double x, double y, double z)
{
    s.points.insert(s.points.end(), {x, y, z});
    return int(s.points.size() / 3) - 1;
}

int addUV(Shape& s, double u, double v)
{
    s.u.push_back(float(u));
    s.v.push_back(float(v));
    return int(s.u.size()) - 1;
}

void addFace(Shape& s, std::initializer_list<int> vertices, std::initializer_list<int> uvs)
{
    s.counts.push_back(int(vertices.size()));
    s.connects.insert(s.connects.end(), vertices);
    s.uvIds.insert(s.uvIds.end(), uvs);
}

/// The faces since the last call are of that side.
void endSide(Shape& s, uint8_t side) { s.sides.resize(s.counts.size(), side); }

double angleAt(int j, int count) { return kTurn * (j + 1) / count; }

}  // namespace

Shape plane(double width, double height, int sw, int sh)
{
    Shape s;
    for (int r = 0; r <= sh; ++r)
        for (int c = 0; c <= sw; ++c) {
            addPoint(s, width * (double(c) / sw - 0.5), 0, height * (0.5 - double(r) / sh));
            addUV(s, double(c) / sw, double(r) / sh);
        }
    for (int r = 0; r < sh; ++r)
        for (int c = 0; c < sw; ++c) {
            const int a = r * (sw + 1) + c, b = a + sw + 1;
            addFace(s, {a, a + 1, b + 1, b}, {a, a + 1, b + 1, b});
        }
    return s;
}

Shape sphere(double radius, int around, int along)
{
    Shape     s;
    const int rings = along - 1;
    for (int i = 1; i <= rings; ++i) {
        const double latitude = kTurn / 2 * i / along, r = radius * std::sin(latitude);
        for (int j = 0; j < around; ++j)
            addPoint(s, r * std::cos(angleAt(j, around)), -radius * std::cos(latitude), -r * std::sin(angleAt(j, around)));
        for (int j = 0; j <= around; ++j)
            addUV(s, double(j) / around, double(i) / along);
    }
    const auto vertex = [&](int i, int j) { return i * around + j % around; };
    const auto uv = [&](int i, int j) { return i * (around + 1) + j; };
    for (int i = 0; i + 1 < rings; ++i)
        for (int j = 0; j < around; ++j)
            addFace(s, {vertex(i, j), vertex(i, j + 1), vertex(i + 1, j + 1), vertex(i + 1, j)}, {uv(i, j), uv(i, j + 1), uv(i + 1, j + 1), uv(i + 1, j)});
    const int south = addPoint(s, 0, -radius, 0), north = addPoint(s, 0, radius, 0);
    for (int j = 0; j < around; ++j)
        addFace(s, {vertex(0, j + 1), vertex(0, j), south}, {uv(0, j + 1), uv(0, j), addUV(s, (j + 0.5) / around, 0)});
    for (int j = 0; j < around; ++j)
        addFace(s, {vertex(rings - 1, j), vertex(rings - 1, j + 1), north},
                {uv(rings - 1, j), uv(rings - 1, j + 1), addUV(s, (j + 0.5) / around, 1)});
    return s;
}

namespace {

// where caps and sides of cylinders and cones lie in texture space
constexpr double kCapRadius = 0.15625, kLowCap = 0.15625, kHighCap = 0.84375, kSideLow = 0.3125, kSideHigh = 0.6875;

/// Vertices of the whole, then texture coordinates that treat caps and sides apart.
Shape capped(double radius, double height, int around, int along, int caps, bool toPoint)
{
    Shape     s;
    const int inner = caps > 1 ? caps - 1 : 0;   // rings inside a cap
    const int sideRings = toPoint ? along : along + 1;
    struct Row { double radius, y; };
    std::vector<Row> rows;
    for (int i = 1; i <= inner; ++i)
        rows.push_back({radius * i / caps, -height / 2});
    for (int i = 0; i < sideRings; ++i)
        rows.push_back({toPoint ? radius * (along - i) / along : radius, height * (double(i) / along - 0.5)});
    for (int i = inner; i >= 1 && !toPoint; --i)
        rows.push_back({radius * i / caps, height / 2});
    for (const Row& row : rows)
        for (int j = 0; j < around; ++j)
            addPoint(s, row.radius * std::cos(angleAt(j, around)), row.y, -row.radius * std::sin(angleAt(j, around)));
    const int bottom = caps > 0 ? addPoint(s, 0, -height / 2, 0) : -1;
    const int top = caps > 0 || toPoint ? addPoint(s, 0, height / 2, 0) : -1;

    const int firstSide = inner, lastSide = inner + sideRings - 1, lastRow = int(rows.size()) - 1;
    const auto vertex = [&](int i, int j) { return i * around + j % around; };
    const auto circle = [&](double part, double centre) {   // one coordinate a vertex
        const int first = int(s.u.size());
        for (int j = 0; j < around; ++j)
            addUV(s, 0.5 + kCapRadius * part * std::cos(angleAt(j, around)), centre + kCapRadius * part * std::sin(angleAt(j, around)));
        return first;
    };
    std::vector<int> low, side, high;   // first coordinate of each row, seen as part of a cap or of the side
    for (int i = 0; i <= firstSide; ++i)
        low.push_back(circle(caps > 0 ? double(i + 1) / (inner + 1) : 1, kLowCap));
    for (int i = 0; i < sideRings; ++i) {
        side.push_back(int(s.u.size()));
        for (int j = 0; j <= around; ++j)
            addUV(s, 0.375 + 0.25 * j / around, kSideLow + (kSideHigh - kSideLow) * i / along);
    }
    for (int i = lastSide; i <= lastRow && !toPoint; ++i)
        high.push_back(circle(caps > 0 ? double(lastRow - i + 1) / (inner + 1) : 1, kHighCap));

    const auto band = [&](int i, const std::vector<int>& uvs, int k, bool row) {
        for (int j = 0; j < around; ++j) {
            const int a = uvs[size_t(k)], b = uvs[size_t(k) + 1], next = row ? j + 1 : (j + 1) % around;
            addFace(s, {vertex(i, j), vertex(i, j + 1), vertex(i + 1, j + 1), vertex(i + 1, j)}, {a + j, a + next, b + next, b + j});
        }
    };
    enum Side : uint8_t { kBelow, kAround, kAbove };
    for (int i = 0; i < firstSide; ++i)
        band(i, low, i, false);
    endSide(s, kBelow);
    for (int i = firstSide; i < lastSide; ++i)
        band(i, side, i - firstSide, true);
    endSide(s, kAround);
    for (int i = lastSide; i < lastRow; ++i)
        band(i, high, i - lastSide, false);
    endSide(s, kAbove);

    const auto polygon = [&](int i, int uv, bool reversed) {
        s.counts.push_back(around);
        for (int k = 0; k < around; ++k) {
            const int j = reversed ? around - 1 - k : k;
            s.connects.push_back(vertex(i, j));
            s.uvIds.push_back(uv + j);
        }
    };
    if (bottom < 0) {
        polygon(0, low.front(), true);
    } else {
        const int p = addUV(s, 0.5, kLowCap);
        for (int j = 0; j < around; ++j)
            addFace(s, {vertex(0, j + 1), vertex(0, j), bottom}, {low.front() + (j + 1) % around, low.front() + j, p});
    }
    endSide(s, kBelow);
    if (toPoint) {
        for (int j = 0; j < around; ++j) {
            const int p = addUV(s, 0.375 + 0.25 * (j + 0.5) / around, kSideHigh);
            addFace(s, {vertex(lastRow, j), vertex(lastRow, j + 1), top}, {side.back() + j, side.back() + j + 1, p});
        }
    } else if (top < 0) {
        polygon(lastRow, high.back(), false);
    } else {
        const int p = addUV(s, 0.5, kHighCap);
        for (int j = 0; j < around; ++j)
            addFace(s, {vertex(lastRow, j), vertex(lastRow, j + 1), top}, {high.back() + j, high.back() + (j + 1) % around, p});
    }
    endSide(s, toPoint ? kAround : kAbove);
    return s;
}

}  // namespace

Shape cylinder(double radius, double height, int around, int along, int caps) { return capped(radius, height, around, along, caps, false); }
Shape cone(double radius, double height, int around, int along, int caps) { return capped(radius, height, around, along, caps, true); }

Shape torus(double radius, double sectionRadius, double twist, int around, int rings)
{
    Shape s;
    for (int i = 0; i < rings; ++i)
        for (int j = 0; j < around; ++j) {
            const double a = angleAt(j, around), b = twist + kTurn * (0.5 + double(i) / rings);   // from the inside
            const double d = radius + sectionRadius * std::cos(b);
            addPoint(s, d * std::cos(a), sectionRadius * std::sin(b), -d * std::sin(a));
        }
    for (int i = 0; i <= rings; ++i)
        for (int j = 0; j <= around; ++j)
            addUV(s, double(j) / around, double(i) / rings);
    const auto vertex = [&](int i, int j) { return i % rings * around + j % around; };
    const auto uv = [&](int i, int j) { return i * (around + 1) + j; };
    for (int i = 0; i < rings; ++i)
        for (int j = 0; j < around; ++j)
            addFace(s, {vertex(i, j), vertex(i, j + 1), vertex(i + 1, j + 1), vertex(i + 1, j)}, {uv(i, j), uv(i, j + 1), uv(i + 1, j + 1), uv(i + 1, j)});
    return s;
}

Shape cube(double width, double height, double depth, int sw, int sh, int sd)
{
    Shape s;
    // a band of rows goes up the front, back over the top, down the back and forward below
    const int  ring = 2 * (sh + sd);
    const auto rowPlace = [&](int r, double& y, double& z, double& v) {
        const double h = height / 2, d = depth / 2;
        if (r <= sh) {
            y = -h + height * r / sh, z = d, v = 0.25 * r / sh;
        } else if (r <= sh + sd) {
            y = h, z = d - depth * (r - sh) / sd, v = 0.25 + 0.25 * (r - sh) / sd;
        } else if (r <= 2 * sh + sd) {
            y = h - height * (r - sh - sd) / sh, z = -d, v = 0.5 + 0.25 * (r - sh - sd) / sh;
        } else {
            y = -h, z = -d + depth * (r - 2 * sh - sd) / sd, v = 0.75 + 0.25 * (r - 2 * sh - sd) / sd;
        }
    };
    double y, z, v;
    for (int r = 0; r <= ring; ++r) {
        rowPlace(r, y, z, v);
        for (int c = 0; c <= sw; ++c) {
            if (r < ring)
                addPoint(s, width * (double(c) / sw - 0.5), y, z);
            addUV(s, 0.375 + 0.25 * c / sw, v);
        }
    }
    const auto band = [&](int r, int c) { return r % ring * (sw + 1) + c; };
    const auto bandUV = [&](int r, int c) { return r * (sw + 1) + c; };
    const auto quarter = [&](int r) { return uint8_t(r <= sh ? 0 : r <= sh + sd ? 1 : r <= 2 * sh + sd ? 2 : 3); };
    for (int r = 0; r < ring; endSide(s, quarter(++r)))
        for (int c = 0; c < sw; ++c)
            addFace(s, {band(r, c), band(r, c + 1), band(r + 1, c + 1), band(r + 1, c)}, {bandUV(r, c), bandUV(r, c + 1), bandUV(r + 1, c + 1), bandUV(r + 1, c)});

    // the right side goes from front to back, the left one from back to front; their borders belong to the band
    for (bool right : {true, false}) {
        const int column = right ? sw : 0;
        const auto back = [&](int k) { return right ? k : sd - k; };   // steps from the front
        const auto border = [&](int k, int h) {
            const int d = back(k);
            if (d == 0)
                return h;
            if (d == sd)
                return 2 * sh + sd - h;
            return h == 0 ? ring - d : sh + d;
        };
        std::vector<int> vertices(size_t((sd + 1) * (sh + 1))), uvs(vertices.size());
        for (int h = 0; h <= sh; ++h)
            for (int k = 0; k <= sd; ++k) {
                const size_t at = size_t(h * (sd + 1) + k);
                const bool   inner = h > 0 && h < sh && k > 0 && k < sd;
                vertices[at] = inner ? addPoint(s, right ? width / 2 : -width / 2, height * (double(h) / sh - 0.5), depth * (0.5 - double(back(k)) / sd))
                                     : band(border(k, h) % ring, column);
                uvs[at] = back(k) == 0 ? bandUV(h, column) : addUV(s, (right ? 0.625 : 0.125) + 0.25 * k / sd, 0.25 * h / sh);
            }
        for (int h = 0; h < sh; ++h)
            for (int k = 0; k < sd; ++k) {
                const size_t a = size_t(h * (sd + 1) + k), b = a + size_t(sd) + 1;
                addFace(s, {vertices[a], vertices[a + 1], vertices[b + 1], vertices[b]}, {uvs[a], uvs[a + 1], uvs[b + 1], uvs[b]});
            }
        endSide(s, right ? 4 : 5);
    }
    return s;
}

void turnTo(Shape& shape, const double axis[3])
{
    const MVector to(axis[0], axis[1], axis[2]);
    if (!(to.length() > 0) || (to.x == 0 && to.z == 0 && to.y > 0))
        return;
    const MMatrix m = MQuaternion(MVector(0, 1, 0), to.normal()).asMatrix();
    for (size_t i = 0; i < shape.points.size(); i += 3) {
        const double p[3] = {shape.points[i], shape.points[i + 1], shape.points[i + 2]};
        for (unsigned k = 0; k < 3; ++k)
            shape.points[i + k] = p[0] * m[0][k] + p[1] * m[1][k] + p[2] * m[2][k];
    }
}

namespace {

/// An edge is between two sides if both of its vertices are on both.
void hardenBetweenSides(const Shape& shape, MeshBody& body)
{
    std::vector<uint8_t> on(shape.vertexCount());   // a bit a side
    size_t               corner = 0;
    for (size_t f = 0; f < shape.counts.size(); ++f)
        for (int k = 0; k < shape.counts[f]; ++k)
            on[size_t(shape.connects[corner++])] |= uint8_t(1u << shape.sides[f]);
    auto hard = make<HardCorners>();
    hard->corners.resize(shape.connects.size());
    corner = 0;
    for (const int count : shape.counts) {
        for (int k = 0; k < count; ++k) {
            const int a = shape.connects[corner + size_t(k)], b = shape.connects[corner + size_t((k + 1) % count)];
            hard->corners[corner + size_t(k)] = std::popcount(uint8_t(on[size_t(a)] & on[size_t(b)])) > 1;
        }
        corner += size_t(count);
    }
    body.setHardCorners(std::move(hard));
}

}  // namespace

Ref<MeshData> toMesh(const Shape& shape, bool withUVs, std::string& why)
{
    Ref<Topology> topology = Topology::create(int(shape.vertexCount()), shape.counts.data(), shape.counts.size(), shape.connects.data(),
                                              shape.connects.size(), &why);
    if (!topology)
        return nullptr;
    auto points = make<Buffer<float>>(shape.points.size());
    for (size_t i = 0; i < shape.points.size(); ++i)
        (*points)[i] = float(shape.points[i]);
    auto mesh = make<MeshData>();
    mesh->body->reset(points, topology);
    if (withUVs) {
        auto uvs = make<Buffer<F2>>(shape.u.size());
        for (size_t i = 0; i < shape.u.size(); ++i)
            (*uvs)[i] = {shape.u[i], shape.v[i]};
        mesh->body->writeUVSet(0).uvs = uvs;
        mesh->body->assignUVs(0, make<Buffer<int>>(shape.uvIds.data(), shape.uvIds.size()));
    }
    if (!shape.sides.empty())
        hardenBetweenSides(shape, *mesh->body);
    return mesh;
}

}  // namespace mirk::poly
