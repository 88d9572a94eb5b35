#pragma once
#include <iosfwd>
#include <type_traits>

#include <maya/MStatus.h>

/// Red, green, blue and alpha, as floats from 0 to 1 and beyond.
class MColor
{
public:
    /// Channels run from 0 to 1, the hue from 0 to 360.
    enum MColorType { kRGB, kHSV, kCMY, kCMYK };

    float r = 0, g = 0, b = 0, a = 1;

    MColor() = default;
    MColor(float r, float g, float b, float a = 1.0f) : r(r), g(g), b(b), a(a) {}
    MColor(const float c[4]) : r(c[0]), g(c[1]), b(c[2]), a(c[3]) {}
    MColor(MColorType model, float c0, float c1, float c2, float alpha = 1.0f) { set(model, c0, c1, c2, alpha); }

    /// kCMYK takes black in the fourth channel, the other models alpha.
    MStatus set(MColorType model, float c0, float c1, float c2, float alpha = 1.0f);
    MStatus get(MColorType model, float& c0, float& c1, float& c2, float& alpha) const;
    MStatus get(MColorType model, float& c0, float& c1, float& c2) const;
    MStatus get(float c[4]) const;

    /// An index past 3 stands for alpha.
    float  operator()(unsigned int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    float  operator[](unsigned int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    float& operator[](unsigned int i) { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }

    /// All four channels take part.
    MColor  operator*(float s) const { return {r * s, g * s, b * s, a * s}; }
    MColor  operator/(float s) const { return {r / s, g / s, b / s, a / s}; }
    MColor  operator*(const MColor& o) const { return {r * o.r, g * o.g, b * o.b, a * o.a}; }
    MColor  operator+(const MColor& o) const { return {r + o.r, g + o.g, b + o.b, a + o.a}; }
    MColor  operator-(const MColor& o) const { return {r - o.r, g - o.g, b - o.b, a - o.a}; }
    MColor  operator-() const { return {-r, -g, -b, -a}; }
    MColor& operator*=(float s) { return *this = *this * s; }
    MColor& operator/=(float s) { return *this = *this / s; }
    MColor& operator*=(const MColor& o) { return *this = *this * o; }
    MColor& operator+=(const MColor& o) { return *this = *this + o; }
    MColor& operator-=(const MColor& o) { return *this = *this - o; }
    bool    operator==(const MColor& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
    bool    operator!=(const MColor& o) const { return !(*this == o); }

    static const MColor kOpaqueBlack;
};

template <class N, std::enable_if_t<std::is_arithmetic_v<N>, int> = 0>
inline MColor operator*(N s, const MColor& c) { return c * static_cast<float>(s); }
std::ostream& operator<<(std::ostream& os, const MColor& c);

static_assert(sizeof(MColor) == 4 * sizeof(float), "an array of colours is an array of floats");
