// ramp: colours along a line, around a point or between corners, bent by waves and noise.
#include <algorithm>

#include <maya/MArrayDataHandle.h>
#include <maya/MPlug.h>

#include "texture/lattice.h"
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

enum Type { kV, kU, kDiagonal, kRadial, kCircular, kBox, kUV, kFourCorner, kTartan };
enum Interpolation { kNone, kLinear, kExponentialUp, kExponentialDown, kSmooth, kBump, kSpike };

struct Stop
{
    float position;
    Texel color;
};

constexpr float kPi = 3.14159265358979f;

Texel mixed(const Texel& a, const Texel& b, float t) { return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1}; }

/// The share of the upper of two stops at the fraction t between them. Bumps are round about the brighter stop, spikes
/// about the darker.
float share(int interpolation, float t, bool brighter)
{
    const float early = std::sin(t * kPi / 2), late = 1 - std::cos(t * kPi / 2);
    switch (interpolation) {
    case kNone:            return 0;
    case kExponentialUp:   return t * t;
    case kExponentialDown: return 1 - (1 - t) * (1 - t);
    case kSmooth:          return t * t * (3 - 2 * t);
    case kBump:            return brighter ? early : late;
    case kSpike:           return brighter ? late : early;
    default:               return t;
    }
}

/// Hue in turns, saturation and value.
void shiftHsv(Texel& c, float hue, float saturation, float value)
{
    const float high = std::max({c.r, c.g, c.b}), low = std::min({c.r, c.g, c.b}), range = high - low;
    float       h = 0;
    if (range > 0)
        h = (high == c.r ? (c.g - c.b) / range : high == c.g ? 2 + (c.b - c.r) / range : 4 + (c.r - c.g) / range) / 6;
    h = inTile(h + hue);
    const float s = std::clamp((high > 0 ? range / high : 0) + saturation, 0.f, 1.f), v = high + value;
    const auto  part = [&](float n) {
        const float k = std::fmod(n + h * 6, 6.f);
        return v - v * s * std::max(0.f, std::min({k, 4 - k, 1.f}));
    };
    c.r = part(5), c.g = part(3), c.b = part(1);
}

struct Noise
{
    float amount = 0, frequency = 1;
    float at(float u, float v, float plane) const { return amount != 0 ? amount * gradientNoise(u * frequency * 8, v * frequency * 8, plane) : 0; }
};

struct Gradient
{
    std::vector<Stop> stops, corners;   ///< by position; by index
    int               type = kV, interpolation = kLinear;
    float             wave[2] = {};
    Noise             bend, hsv[3];

    Texel along(float t) const
    {
        if (stops.empty())
            return {0, 0, 0, 1};
        if (!(t >= stops.front().position))
            return stops.front().color;
        const auto above = std::upper_bound(stops.begin(), stops.end(), t, [](float p, const Stop& s) { return p < s.position; });
        if (above == stops.end())
            return stops.back().color;
        const Stop &a = above[-1], &b = *above;
        const auto  bright = [](const Texel& c) { return c.r + c.g + c.b; };
        return mixed(a.color, b.color, share(interpolation, (t - a.position) / (b.position - a.position), bright(b.color) > bright(a.color)));
    }

    /// The first four entries on the corners: lower left, upper left, lower right, upper right.
    Texel between(float u, float v) const
    {
        const auto corner = [&](size_t i) { return corners.empty() ? Texel{0, 0, 0, 1} : corners[std::min(i, corners.size() - 1)].color; };
        const float su = share(interpolation, u, true), sv = share(interpolation, v, true);
        return mixed(mixed(corner(0), corner(2), su), mixed(corner(1), corner(3), su), sv);
    }

    Texel shaped(float u, float v) const
    {
        const float x = u - 0.5f, y = v - 0.5f;
        switch (type) {
        case kU:          return along(u);
        case kDiagonal:   return along((u + v) / 2);
        case kRadial:     return along(0.5f + std::atan2(x, y) / (2 * kPi));
        case kCircular:   return along(std::sqrt(2 * (x * x + y * y)));
        case kBox:        return along(2 * std::max(std::fabs(x), std::fabs(y)));
        case kUV:         return mixed(along(2 * std::fabs(x)), along(2 * std::fabs(y)), 0.5f);
        case kFourCorner: return between(u, v);
        case kTartan:     return mixed(along(u), along(v), 0.5f);
        default:          return along(v);
        }
    }

    Texel at(float u, float v) const
    {
        u = inTile(u), v = inTile(v);
        float x = u, y = v;
        if (wave[0] != 0)
            x = u + 0.5f * wave[0] * std::sin(2 * kPi * v);
        if (wave[1] != 0)
            y = v + 0.5f * wave[1] * std::sin(2 * kPi * u);
        if (bend.amount != 0) {
            x += bend.at(u, v, 0.5f);
            y += bend.at(u, v, 7.5f);
        }
        Texel c = x == u && y == v ? shaped(u, v) : shaped(inTile(x), inTile(y));
        if (hsv[0].amount != 0 || hsv[1].amount != 0 || hsv[2].amount != 0)
            shiftHsv(c, hsv[0].at(u, v, 11.5f), hsv[1].at(u, v, 17.5f), hsv[2].at(u, v, 23.5f));
        c.a = luminance(c.r, c.g, c.b);
        return c;
    }
};

/// Samples without copying the stops at every call.
struct Shared
{
    std::shared_ptr<const Gradient> gradient;
    Texel at(float u, float v) const { return gradient->at(u, v); }
};

class Ramp : public TextureNode
{
public:
    static void*   creator() { return new Ramp; }
    static MStatus initialize()
    {
        aType = choice("type", "t", kV, {"V Ramp", "U Ramp", "Diagonal Ramp", "Radial Ramp", "Circular Ramp", "Box Ramp", "UV Ramp",
                                         "Four Corner Ramp", "Tartan Ramp"}, kKey);
        aInterpolation = choice("interpolation", "in", kLinear, {"None", "Linear", "Exponential Up", "Exponential Down", "Smooth", "Bump", "Spike"}, kKey);
        aPosition = number("position", "ep", Number::kFloat, 0, kKey);
        aColor = colorAttribute("color", "ec", 0, 0, 0);
        aEntries = compound("colorEntryList", "cel", {aPosition, aColor}, kMulti);
        aWave[0] = number("uWave", "uw", Number::kFloat, 0, 0, 1, kKey);
        aWave[1] = number("vWave", "vw", Number::kFloat, 0, 0, 1, kKey);
        aNoise[0] = number("noise", "n", Number::kFloat, 0, 0, 1, kKey);
        aNoise[1] = number("noiseFreq", "nf", Number::kFloat, 0.5, 0, 1, kKey);
        const char* const names[3][4] = {{"hueNoise", "hn", "hueNoiseFreq", "hnf"}, {"satNoise", "sn", "satNoiseFreq", "snf"},
                                         {"valNoise", "vn", "valNoiseFreq", "vnf"}};
        for (int i = 0; i < 3; ++i) {
            aHsv[i][0] = number(names[i][0], names[i][1], Number::kFloat, 0, 0, 1, kKey);
            aHsv[i][1] = number(names[i][2], names[i][3], Number::kFloat, 0.5, 0, 1, kKey);
        }
        return declare({aType, aInterpolation, aEntries, aWave[0], aWave[1], aNoise[0], aNoise[1], aHsv[0][0], aHsv[0][1],
                        aHsv[1][0], aHsv[1][1], aHsv[2][0], aHsv[2][1]});
    }

    /// Black to white.
    void postConstructor() override
    {
        MPlug entries(thisMObject(), aEntries);
        for (unsigned i = 0; i < 2; ++i) {
            MPlug entry = entries.elementByLogicalIndex(i), color = entry.child(aColor);
            entry.child(aPosition).setFloat(float(i));
            for (unsigned c = 0; c < 3; ++c)
                color.child(c).setFloat(float(i));
        }
    }

    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        auto g = std::make_shared<Gradient>();
        g->type = block.inputValue(aType).asShort();
        g->interpolation = block.inputValue(aInterpolation).asShort();
        MArrayDataHandle entries = block.inputArrayValue(aEntries);
        for (unsigned i = 0; i < entries.elementCount(); ++i) {
            entries.jumpToArrayElement(i);
            MDataHandle   entry = entries.inputValue();
            const float3& c = entry.child(aColor).asFloat3();
            g->corners.push_back({entry.child(aPosition).asFloat(), {c[0], c[1], c[2], 1}});
        }
        g->stops = g->corners;
        std::erase_if(g->stops, [](const Stop& s) { return !std::isfinite(s.position); });
        std::stable_sort(g->stops.begin(), g->stops.end(), [](const Stop& a, const Stop& b) { return a.position < b.position; });
        for (int i = 0; i < 2; ++i)
            g->wave[i] = value(block, aWave[i]);
        g->bend = {value(block, aNoise[0]), value(block, aNoise[1])};
        for (int i = 0; i < 3; ++i)
            g->hsv[i] = {value(block, aHsv[i][0]), value(block, aHsv[i][1])};
        return paint(block, Shared{std::move(g)});
    }

private:
    static inline MObject aType, aInterpolation, aEntries, aPosition, aColor, aWave[2], aNoise[2], aHsv[3][2];
};

}  // namespace

void registerRamp() { registerTexture("ramp", 0x52545241, MFn::kRamp, Ramp::creator, Ramp::initialize); }

}  // namespace mirk::texture
