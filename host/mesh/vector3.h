// Small vectors: the stored ones in single precision, and three doubles for the arithmetic inside mesh code.
#pragma once
#include <cmath>


namespace mirk {

struct F2 { float u, v; };
struct F3 { float v[3]; };

struct Vec3
{
    double x = 0, y = 0, z = 0;
    Vec3() = default;
    Vec3(double a, double b, double c) : x(a), y(b), z(c) {}
    explicit Vec3(const float* p) : x(p[0]), y(p[1]), z(p[2]) {}
    Vec3  operator+(const Vec3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec3  operator-(const Vec3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec3  operator*(double s) const { return {x * s, y * s, z * s}; }
    Vec3& operator+=(const Vec3& o) { x += o.x; y += o.y; z += o.z; return *this; }
    F3    f3() const { return {{float(x), float(y), float(z)}}; }
};

inline double dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3   cross(const Vec3& a, const Vec3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(const Vec3& a) { return std::sqrt(dot(a, a)); }
/// Of length 1; zero for a zero vector.
inline F3 unit(const Vec3& a)
{
    const double l = length(a);
    return l > 0 ? (a * (1 / l)).f3() : F3{};
}

}  // namespace mirk
