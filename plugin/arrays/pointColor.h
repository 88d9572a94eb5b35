// Colours of points out of a flat array of numbers.
#pragma once
#include <cstddef>

namespace pointColor {

/// How the values of an array make colours. The enumerator tells what stands in the array for each point.
enum class Layout {
    kNone,    ///< the length fits no layout
    kXyz,     ///< vectors: colour, no alpha
    kXyzw,    ///< points: colour in x, y, z; w is not looked at
    kRgba,    ///< four doubles
    kRgb,     ///< three doubles; alpha stays as the point has it
    kValue,   ///< one double for all channels
};

/// The layout of `length` doubles for `pointCount` points: the first of 4, 3 and 1 values a point that fits. No points
/// and no values count as four values a point. Three are refused without `allowRgb`.
constexpr Layout layoutOfDoubles(std::size_t length, std::size_t pointCount, bool allowRgb)
{
    if (length == 4 * pointCount)
        return Layout::kRgba;
    if (allowRgb && length == 3 * pointCount)
        return Layout::kRgb;
    return length == pointCount ? Layout::kValue : Layout::kNone;
}

struct Rule
{
    Layout layout = Layout::kNone;
    bool   clamp = false;        ///< keep channels within min and max
    double min = 0.0;
    double max = 1.0;
    bool   solidAlpha = false;   ///< alpha is 1, whatever the array says
};

struct Rgba
{
    float r, g, b, a;
};

/// The minimum comes first: with min above max a value below min gives min, any other gives max.
constexpr double clamped(double value, const Rule& rule)
{
    if (!rule.clamp)
        return value;
    if (value < rule.min)
        return rule.min;
    return value > rule.max ? rule.max : value;
}

/// The colour of point `i`. Vectors and points without solid alpha are transparent: their alpha is 0, not the present
/// one.
///
/// @param values        the array's first value; point `i` must lie within it by the rule's layout
/// @param presentAlpha  the point's alpha before, kept by three values a point
inline Rgba at(const double* values, std::size_t i, const Rule& rule, float presentAlpha)
{
    const auto channel = [&](std::size_t k) { return static_cast<float>(clamped(values[k], rule)); };
    switch (rule.layout) {
    case Layout::kXyz: {
        const std::size_t k = 3 * i;
        return {channel(k), channel(k + 1), channel(k + 2), rule.solidAlpha ? 1.0f : 0.0f};
    }
    case Layout::kXyzw: {
        const std::size_t k = 4 * i;
        return {channel(k), channel(k + 1), channel(k + 2), rule.solidAlpha ? 1.0f : 0.0f};
    }
    case Layout::kRgba: {
        const std::size_t k = 4 * i;
        return {channel(k), channel(k + 1), channel(k + 2), rule.solidAlpha ? 1.0f : channel(k + 3)};
    }
    case Layout::kRgb: {
        const std::size_t k = 3 * i;
        return {channel(k), channel(k + 1), channel(k + 2), rule.solidAlpha ? 1.0f : presentAlpha};
    }
    case Layout::kValue: {
        const float v = channel(i);
        return {v, v, v, rule.solidAlpha ? 1.0f : v};
    }
    case Layout::kNone: break;
    }
    return {-1.0f, -1.0f, -1.0f, -1.0f};
}

/// Colours of all points, in place: each takes its value from the array by the rule. The same numbers as `at` gives.
inline void fill(const double* values, std::size_t count, const Rule& rule, Rgba* colors)
{
    if (rule.layout == Layout::kRgba && !rule.clamp && !rule.solidAlpha) {   // the usual case: a plain narrowing
        for (std::size_t i = 0; i < count; ++i, values += 4)
            colors[i] = {float(values[0]), float(values[1]), float(values[2]), float(values[3])};
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        colors[i] = at(values, i, rule, colors[i].a);
}

} // namespace pointColor
