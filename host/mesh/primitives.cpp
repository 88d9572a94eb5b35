#include "mesh/primitives.h"

#include <cmath>
#include <numbers>

namespace mirk::primitives {

namespace {

constexpr double tau = 2 * std::numbers::pi;
constexpr int64_t mostCorners = int64_t(1) << 28;

/// Collects points, UVs and faces, and makes the mesh.
class Builder
{
public:
    void point(double x, double y, double z)
    {
        for (double d : {x, y, z})
            points_->push(float(d));
    }
    int  uv(double u, double v) { uvs_->push({float(u), float(v)}); return int(uvs_->size()) - 1; }
    void corner(int vertex, int uvId) { connects_.push(vertex); uvIds_->push(uvId); }
    void endFace() { counts_.push(int(connects_.size()) - done_); done_ = int(connects_.size()); }
    int  faceCount() const { return int(counts_.size()); }
    int  pointCount() const { return int(points_->size() / 3); }

    Ref<MeshBody> finish()
    {
        auto body = make<MeshBody>();
        Ref<Topology> topology = Topology::create(pointCount(), counts_.data(), counts_.size(), connects_.data(),
                                                  connects_.size());
        if (!body->reset(points_, std::move(topology)))
            return {};
        body->writeUVSet(0).uvs = uvs_;
        body->assignUVs(0, uvIds_);
        return body;
    }

private:
    Ref<Buffer<float>> points_ = make<Buffer<float>>();
    Ref<Buffer<F2>>    uvs_ = make<Buffer<F2>>();
    Ref<Buffer<int>>   uvIds_ = make<Buffer<int>>();
    Buffer<int>        counts_, connects_;
    int                done_ = 0;
};

/// Makes edges hard whose two faces are on different sides.
template <class Side>
void hardenBetween(MeshBody& body, Side side)
{
    const Topology& t = body.topology();
    for (int e = 0; e < t.edgeCount(); ++e) {
        const auto corners = t.edgeCorners()[e];
        for (int c : corners)
            if (side(t.cornerFaces()[c]) != side(t.cornerFaces()[corners[0]]))
                body.setEdgeSmooth(e, false);
    }
}

bool tooMany(int64_t a, int64_t b) { return a > mostCorners || b > mostCorners || a * b * 4 > mostCorners; }

}  // namespace

Ref<MeshBody> plane(double width, double height, int sx, int sy)
{
    sx = std::max(sx, 1);
    sy = std::max(sy, 1);
    if (tooMany(sx, sy))
        return {};
    Builder b;
    for (int j = 0; j <= sy; ++j)
        for (int i = 0; i <= sx; ++i) {
            const double u = double(i) / sx, v = double(j) / sy;
            b.point((u - 0.5) * width, 0, (0.5 - v) * height);
            b.uv(u, v);
        }
    for (int j = 0; j < sy; ++j)
        for (int i = 0; i < sx; ++i) {
            const int at = j * (sx + 1) + i;
            for (int v : {at, at + 1, at + sx + 2, at + sx + 1})
                b.corner(v, v);
            b.endFace();
        }
    return b.finish();
}

namespace {

/// The vertices of a cube: `rows` rows around it along x, then what is left inside the two sides.
struct CubeGrid
{
    int sx, sy, sz;
    int rows() const { return 2 * (sy + sz); }
    int onRow(int row, int i) const { return row % rows() * (sx + 1) + i; }
    /// Right (1) or left (0) side: k from the front to the back, j from below.
    int onSide(int right, int k, int j) const
    {
        const int i = right ? sx : 0;
        if (k == 0)
            return onRow(j, i);
        if (j == sy)
            return onRow(sy + k, i);
        if (k == sz)
            return onRow(2 * sy + sz - j, i);
        if (j == 0)
            return onRow(2 * sy + 2 * sz - k, i);
        const int inner = (sy - 1) * (sz - 1);
        return rows() * (sx + 1) + (right ? 0 : inner) + (j - 1) * (sz - 1) + k - 1;
    }
};

void cubePoints(Builder& b, const CubeGrid& g, double w, double h, double d)
{
    for (int row = 0; row < g.rows(); ++row) {
        double y, z;
        if (row <= g.sy)
            y = double(row) / g.sy, z = 0;
        else if (row <= g.sy + g.sz)
            y = 1, z = double(row - g.sy) / g.sz;
        else if (row <= 2 * g.sy + g.sz)
            y = double(2 * g.sy + g.sz - row) / g.sy, z = 1;
        else
            y = 0, z = double(g.rows() - row) / g.sz;
        for (int i = 0; i <= g.sx; ++i)
            b.point((double(i) / g.sx - 0.5) * w, (y - 0.5) * h, (0.5 - z) * d);
    }
    for (int right : {1, 0})
        for (int j = 1; j < g.sy; ++j)
            for (int k = 1; k < g.sz; ++k)
                b.point((right - 0.5) * w, (double(j) / g.sy - 0.5) * h, (0.5 - double(k) / g.sz) * d);
}

}  // namespace

Ref<MeshBody> cube(double width, double height, double depth, int sx, int sy, int sz)
{
    const CubeGrid g{std::max(sx, 1), std::max(sy, 1), std::max(sz, 1)};
    if (tooMany(int64_t(g.sx) + g.sz, 2 * (int64_t(g.sy) + g.sz)))
        return {};
    Builder b;
    cubePoints(b, g, width, height, depth);

    // unfolded as a cross: the four sides around in the middle column, right and left beside the front
    const auto rowV = [&](int row) {
        const int side = row < g.sy ? 0 : row < g.sy + g.sz ? 1 : row < 2 * g.sy + g.sz ? 2 : 3;
        const int start[] = {0, g.sy, g.sy + g.sz, 2 * g.sy + g.sz};
        return 0.25 * (side + double(row - start[side]) / (side % 2 ? g.sz : g.sy));
    };
    for (int row = 0; row <= g.rows(); ++row)
        for (int i = 0; i <= g.sx; ++i)
            b.uv(0.375 + 0.25 * i / g.sx, row == g.rows() ? 1 : rowV(row));
    for (int row = 0; row < g.rows(); ++row)
        for (int i = 0; i < g.sx; ++i) {
            const int uv = row * (g.sx + 1) + i;
            b.corner(g.onRow(row, i), uv);
            b.corner(g.onRow(row, i + 1), uv + 1);
            b.corner(g.onRow(row + 1, i + 1), uv + g.sx + 2);
            b.corner(g.onRow(row + 1, i), uv + g.sx + 1);
            b.endFace();
        }
    for (int right : {1, 0}) {
        // the UVs at the front edge are those of the front
        std::vector<int> uvs;
        for (int j = 0; j <= g.sy; ++j)
            for (int k = 0; k <= g.sz; ++k)
                uvs.push_back(k == 0 ? j * (g.sx + 1) + (right ? g.sx : 0)
                                     : b.uv(right ? 0.625 + 0.25 * k / g.sz : 0.375 - 0.25 * k / g.sz, 0.25 * j / g.sy));
        const auto put = [&](int k, int j) { b.corner(g.onSide(right, k, j), uvs[size_t(j * (g.sz + 1) + k)]); };
        for (int j = 0; j < g.sy; ++j)
            for (int n = 0; n < g.sz; ++n) {
                const int k = right ? n : g.sz - n, step = right ? 1 : -1;   // left to right as seen from outside
                put(k, j);
                put(k + step, j);
                put(k + step, j + 1);
                put(k, j + 1);
                b.endFace();
            }
    }
    Ref<MeshBody> body = b.finish();
    const int lower[] = {g.sx * g.sy, g.sx * (g.sy + g.sz), g.sx * (2 * g.sy + g.sz), g.sx * g.rows(),
                         g.sx * g.rows() + g.sy * g.sz};
    hardenBetween(*body, [&](int f) { return std::upper_bound(lower, lower + 5, f) - lower; });
    return body;
}

namespace {

/// A ring of a shape turned around the y axis.
struct Ring { double radius, y; };

void ringPoints(Builder& b, const Ring& ring, int sx)
{
    for (int i = 1; i <= sx; ++i)   // the seam stands at the last vertex
        b.point(ring.radius * std::cos(tau * i / sx), ring.y, -ring.radius * std::sin(tau * i / sx));
}

/// Vertices of ring j at place i, which runs around.
struct Rings
{
    int sx;
    int at(int j, int i) const { return j * sx + (i + sx) % sx; }
};

/// A row of quads between rings j and j + 1, whose UVs are rows of sx + 1 from `lower` and `upper` on.
void quadRow(Builder& b, const Rings& r, int j, int lower, int upper)
{
    for (int i = 0; i < r.sx; ++i) {
        b.corner(r.at(j, i), lower + i);
        b.corner(r.at(j, i + 1), lower + i + 1);
        b.corner(r.at(j + 1, i + 1), upper + i + 1);
        b.corner(r.at(j + 1, i), upper + i);
        b.endFace();
    }
}

}  // namespace

Ref<MeshBody> sphere(double radius, int sx, int sy)
{
    sx = std::max(sx, 3);
    sy = std::max(sy, 2);
    if (tooMany(sx, sy))
        return {};
    Builder b;
    const Rings rings{sx};
    for (int j = 1; j < sy; ++j) {
        const double a = std::numbers::pi * j / sy;
        ringPoints(b, {radius * std::sin(a), -radius * std::cos(a)}, sx);
        for (int i = 0; i <= sx; ++i)
            b.uv(double(i) / sx, double(j) / sy);
    }
    const int south = b.pointCount(), north = south + 1;
    b.point(0, -radius, 0);
    b.point(0, radius, 0);
    for (int j = 0; j + 2 < sy; ++j)
        quadRow(b, rings, j, j * (sx + 1), (j + 1) * (sx + 1));
    const int top = sy - 2;
    for (int i = 0; i < sx; ++i) {
        b.corner(rings.at(0, i + 1), i + 1);
        b.corner(rings.at(0, i), i);
        b.corner(south, b.uv((i + 0.5) / sx, 0));
        b.endFace();
    }
    for (int i = 0; i < sx; ++i) {
        b.corner(rings.at(top, i), top * (sx + 1) + i);
        b.corner(rings.at(top, i + 1), top * (sx + 1) + i + 1);
        b.corner(north, b.uv((i + 0.5) / sx, 1));
        b.endFace();
    }
    return b.finish();
}

namespace {

/// UVs of a cap: a disc around (0.5, v) that shows ring j at `radius`; places as in ringPoints.
int discRow(Builder& b, double v, double radius, int sx, bool fromAbove)
{
    int first = -1;
    for (int i = 1; i <= sx; ++i) {
        const int id = b.uv(0.5 + radius * std::cos(tau * i / sx), v + (fromAbove ? 1 : -1) * radius * std::sin(tau * i / sx));
        first = first < 0 ? id : first;
    }
    return first;
}

/// A cap between two rings whose UVs are closed rows.
void capRow(Builder& b, const Rings& r, int j, int lower, int upper)
{
    for (int i = 0; i < r.sx; ++i) {
        const int next = (i + 1) % r.sx;
        b.corner(r.at(j, i), lower + i);
        b.corner(r.at(j, next), lower + next);
        b.corner(r.at(j + 1, next), upper + next);
        b.corner(r.at(j + 1, i), upper + i);
        b.endFace();
    }
}

/// The inmost part of a cap: triangles to the centre, or one face if there is none (-1).
void capCentre(Builder& b, const Rings& r, int j, int row, int centre, int centreUv, bool facingUp)
{
    for (int n = 0; n < r.sx; ++n) {
        const int i = facingUp || centre >= 0 ? n : r.sx - 1 - n, next = (i + 1) % r.sx;
        if (centre < 0) {
            b.corner(r.at(j, i), row + i);
            continue;
        }
        b.corner(r.at(j, facingUp ? i : next), row + (facingUp ? i : next));
        b.corner(r.at(j, facingUp ? next : i), row + (facingUp ? next : i));
        b.corner(centre, centreUv);
        b.endFace();
    }
    if (centre < 0)
        b.endFace();
}

/// Makes the rims hard: faces of a cap are those that lie flat at its height.
void hardenRims(MeshBody& body, double bottom, double top)
{
    const auto flatAt = [&](int f, double y) {
        for (int v : body.topology().face(f))
            if (body.points()[3 * v + 1] != float(y))
                return false;
        return true;
    };
    hardenBetween(body, [&](int f) { return flatAt(f, bottom) ? 1 : flatAt(f, top) ? 2 : 0; });
}

}  // namespace

Ref<MeshBody> cylinder(double radius, double height, int sx, int sy, int sz)
{
    sx = std::max(sx, 3);
    sy = std::max(sy, 1);
    sz = std::max(sz, 0);
    if (tooMany(sx, int64_t(sy) + 2 * int64_t(sz) + 2))
        return {};
    const double disc = 0.15625, bottomV = 0.15625, topV = 0.84375;
    const int capRings = std::max(sz - 1, 0);   // inside the rim
    Builder b;
    const Rings rings{sx};
    for (int k = 1; k <= capRings; ++k)
        ringPoints(b, {radius * k / sz, -height / 2}, sx);
    for (int j = 0; j <= sy; ++j)
        ringPoints(b, {radius, (double(j) / sy - 0.5) * height}, sx);
    for (int k = capRings; k >= 1; --k)
        ringPoints(b, {radius * k / sz, height / 2}, sx);
    const int bottom = sz ? b.pointCount() : -1, top = sz ? bottom + 1 : -1;
    if (sz) {
        b.point(0, -height / 2, 0);
        b.point(0, height / 2, 0);
    }
    std::vector<int> below, above, side;
    for (int k = 1; k <= capRings + 1; ++k)
        below.push_back(discRow(b, bottomV, disc * k / (capRings + 1), sx, false));
    for (int j = 0; j <= sy; ++j)
        for (int i = 0; i <= sx; ++i) {
            const int id = b.uv(0.375 + 0.25 * i / sx, 0.3125 + 0.375 * j / sy);
            if (i == 0)
                side.push_back(id);
        }
    for (int k = capRings + 1; k >= 1; --k)
        above.push_back(discRow(b, topV, disc * k / (capRings + 1), sx, true));

    for (int k = 0; k < capRings; ++k)
        capRow(b, rings, k, below[size_t(k)], below[size_t(k) + 1]);
    for (int j = 0; j < sy; ++j)
        quadRow(b, rings, capRings + j, side[size_t(j)], side[size_t(j) + 1]);
    for (int k = 0; k < capRings; ++k)
        capRow(b, rings, capRings + sy + k, above[size_t(k)], above[size_t(k) + 1]);
    capCentre(b, rings, 0, below.front(), bottom, sz ? b.uv(0.5, bottomV) : -1, false);
    capCentre(b, rings, 2 * capRings + sy, above.back(), top, sz ? b.uv(0.5, topV) : -1, true);
    Ref<MeshBody> body = b.finish();
    hardenRims(*body, -height / 2, height / 2);
    return body;
}

Ref<MeshBody> cone(double radius, double height, int sx, int sy, int sz)
{
    sx = std::max(sx, 3);
    sy = std::max(sy, 1);
    sz = std::max(sz, 0);
    if (tooMany(sx, int64_t(sy) + sz + 2))
        return {};
    const double disc = 0.25, capV = 0.25;
    const int capRings = std::max(sz - 1, 0);
    Builder b;
    const Rings rings{sx};
    for (int k = 1; k <= capRings; ++k)
        ringPoints(b, {radius * k / sz, -height / 2}, sx);
    for (int j = 0; j < sy; ++j)
        ringPoints(b, {radius * (1 - double(j) / sy), (double(j) / sy - 0.5) * height}, sx);
    const int base = sz ? b.pointCount() : -1;
    if (sz)
        b.point(0, -height / 2, 0);
    const int tip = b.pointCount();
    b.point(0, height / 2, 0);
    std::vector<int> below, side;
    for (int k = 1; k <= capRings + 1; ++k)
        below.push_back(discRow(b, capV, disc * k / (capRings + 1), sx, false));
    for (int j = 0; j < sy; ++j)
        for (int i = 0; i <= sx; ++i) {
            const int id = b.uv(0.25 + 0.5 * i / sx, 0.5 + 0.5 * j / sy);
            if (i == 0)
                side.push_back(id);
        }
    for (int k = 0; k < capRings; ++k)
        capRow(b, rings, k, below[size_t(k)], below[size_t(k) + 1]);
    for (int j = 0; j + 1 < sy; ++j)
        quadRow(b, rings, capRings + j, side[size_t(j)], side[size_t(j) + 1]);
    capCentre(b, rings, 0, below.front(), base, sz ? b.uv(0.5, capV) : -1, false);
    for (int i = 0; i < sx; ++i) {
        b.corner(rings.at(capRings + sy - 1, i), side.back() + i);
        b.corner(rings.at(capRings + sy - 1, i + 1), side.back() + i + 1);
        b.corner(tip, b.uv(0.25 + 0.5 * (i + 0.5) / sx, 1));
        b.endFace();
    }
    Ref<MeshBody> body = b.finish();
    hardenRims(*body, -height / 2, height / 2);
    return body;
}

Ref<MeshBody> torus(double radius, double sectionRadius, int sx, int sy)
{
    sx = std::max(sx, 3);
    sy = std::max(sy, 3);
    if (tooMany(sx, sy))
        return {};
    Builder b;
    const Rings rings{sx};
    for (int j = 0; j < sy; ++j) {   // from the inside down
        const double a = tau * j / sy;
        ringPoints(b, {radius - sectionRadius * std::cos(a), -sectionRadius * std::sin(a)}, sx);
    }
    for (int j = 0; j <= sy; ++j)
        for (int i = 0; i <= sx; ++i)
            b.uv(double(i) / sx, double(j) / sy);
    for (int j = 0; j < sy; ++j)
        for (int i = 0; i < sx; ++i) {
            const int lower = j * (sx + 1) + i, upper = lower + sx + 1, above = (j + 1) % sy;
            b.corner(rings.at(j, i), lower);
            b.corner(rings.at(j, i + 1), lower + 1);
            b.corner(rings.at(above, i + 1), upper + 1);
            b.corner(rings.at(above, i), upper);
            b.endFace();
        }
    return b.finish();
}

}  // namespace mirk::primitives
