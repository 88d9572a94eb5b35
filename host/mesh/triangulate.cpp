#include <cmath>
#include <vector>

#include "mesh/topology.h"
#include "mesh/vector3.h"

namespace mirk {

namespace {

struct P2 { double x, y; };

double turn(const P2& a, const P2& b, const P2& c) { return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x); }

bool inside(const P2& p, const P2& a, const P2& b, const P2& c)
{
    return turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
}

/// One face projected on its plane, in which it runs counter-clockwise.
class Polygon
{
public:
    void load(std::span<const int> face, const float* points)
    {
        const Vec3 origin(points + 3 * face[0]);
        Vec3 normal;
        for (size_t k = 1; k + 1 < face.size(); ++k)
            normal += cross(Vec3(points + 3 * face[k]) - origin, Vec3(points + 3 * face[k + 1]) - origin);
        const double ax = std::fabs(normal.x), ay = std::fabs(normal.y), az = std::fabs(normal.z);
        corners.clear();
        for (int v : face) {   // drop the axis the face looks along most
            const Vec3 p = Vec3(points + 3 * v) - origin;
            if (az >= ax && az >= ay)
                corners.push_back(normal.z >= 0 ? P2{p.x, p.y} : P2{p.y, p.x});
            else if (ax >= ay)
                corners.push_back(normal.x >= 0 ? P2{p.y, p.z} : P2{p.z, p.y});
            else
                corners.push_back(normal.y >= 0 ? P2{p.z, p.x} : P2{p.x, p.z});
        }
    }
    /// A fan from its first corner covers it: no triangle of it is turned over.
    bool fans() const
    {
        for (size_t k = 1; k + 1 < corners.size(); ++k)
            if (turn(corners[0], corners[k], corners[k + 1]) < 0)
                return false;
        return true;
    }
    bool convex() const
    {
        const size_t n = corners.size();
        for (size_t k = 0; k < n; ++k)
            if (turn(corners[k], corners[(k + 1) % n], corners[(k + 2) % n]) < 0)
                return false;
        return true;
    }
    /// Cuts ears, first one found first; a remainder without ears becomes a fan.
    template <class Emit>
    void cutEars(Emit emit)
    {
        rest_.resize(corners.size());
        for (size_t k = 0; k < rest_.size(); ++k)
            rest_[k] = int(k);
        while (rest_.size() > 3) {
            const size_t ear = findEar();
            if (ear == rest_.size())
                break;
            const size_t n = rest_.size();
            emit(rest_[(ear + n - 1) % n], rest_[ear], rest_[(ear + 1) % n]);
            rest_.erase(rest_.begin() + std::ptrdiff_t(ear));
        }
        for (size_t k = 1; k + 1 < rest_.size(); ++k)
            emit(rest_[0], rest_[k], rest_[k + 1]);
    }

    std::vector<P2> corners;

private:
    const P2& at(size_t i) const { return corners[size_t(rest_[i % rest_.size()])]; }
    size_t findEar() const
    {
        const size_t n = rest_.size();
        for (size_t i = 0; i < n; ++i) {
            const P2 &a = at(i + n - 1), &b = at(i), &c = at(i + 1);
            if (turn(a, b, c) <= 0)
                continue;
            bool empty = true;
            for (size_t k = 2; empty && k + 1 < n; ++k)
                empty = !inside(at(i + k), a, b, c);
            if (empty)
                return i;
        }
        return n;
    }
    std::vector<int> rest_;
};

}  // namespace

bool convexFace(const Topology& t, const float* points, int face)
{
    Polygon polygon;
    polygon.load(t.face(face), points);
    return polygon.convex();
}

Ref<Buffer<int>> triangulate(const Topology& t, const float* points)
{
    auto result = make<Buffer<int>>(size_t(t.cornerCount() - 2 * t.faceCount()) * 3);
    int* out = result->data();
    Polygon polygon;
    for (int f = 0; f < t.faceCount(); ++f) {
        const int first = t.first(f), n = t.faceSize(f);
        const auto emit = [&](int a, int b, int c) {
            *out++ = first + a;
            *out++ = first + b;
            *out++ = first + c;
        };
        if (n > 3)
            polygon.load(t.face(f), points);
        if (n == 3 || polygon.convex() || (n == 4 && polygon.fans())) {
            for (int k = 1; k + 1 < n; ++k)
                emit(0, k, k + 1);
        } else if (n == 4) {   // the other diagonal lies inside
            emit(0, 1, 3);
            emit(1, 2, 3);
        } else {
            polygon.cutEars(emit);
        }
    }
    return result;
}

}  // namespace mirk
