// noise: octaves of lattice noise in five manners.
#include <algorithm>

#include "texture/lattice.h"
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

enum Manner { kPerlin, kBillow, kWave, kWispy, kSpaceTime };

constexpr int   kMostOctaves = 64, kMostWaves = 32;
constexpr float kTwoPi = 6.28318530717959f;

struct Turbulence
{
    int   manner = kPerlin, octaves = 3, waves = 5, falloff = 0;
    float threshold = 0, amplitude = 1, ratio = 0.707f, frequencyRatio = 2, frequency = 8, time = 0, implode = 0, center[2] = {0.5f, 0.5f};
    float density = 1, spottyness = 0, sizeRandomness = 0, randomness = 1;
    bool  inflection = false;

    /// Soft spots about the lattice cells' points; 1 in the middle of a spot, densest where spots meet.
    float spots(float x, float y) const
    {
        if (!(std::fabs(x) < 1e9f && std::fabs(y) < 1e9f))
            return 0;
        const auto i = int32_t(std::floor(x)), j = int32_t(std::floor(y));
        float      sum = 0;
        for (int32_t cj = j - 1; cj <= j + 1; ++cj)
            for (int32_t ci = i - 1; ci <= i + 1; ++ci) {
                const auto  any = [&](uint32_t seed) { return hashed(ci, cj, 0, seed); };
                const float cx = float(ci) + 0.5f + randomness * (any(1) - 0.5f), cy = float(cj) + 0.5f + randomness * (any(2) - 0.5f);
                const float radius = 0.75f * density * (1 - sizeRandomness * any(3));
                const float dx = x - cx, dy = y - cy, squared = dx * dx + dy * dy;
                if (squared < radius * radius)
                    sum += (1 - spottyness * any(4)) * height(1 - std::sqrt(squared) / radius);
            }
        return std::min(sum, 1.f);
    }

    float height(float t) const
    {
        switch (falloff) {
        case 1:  return t * t * (3 - 2 * t);           // smooth
        case 2:  return std::sqrt(t);                  // fast
        case 3:  return t < 0.5f ? 0.f : 2 * t - 1;    // bubble: a plain ring about a peak
        default: return t;
        }
    }

    /// Standing waves in directions that the lattice chooses.
    float standing(float x, float y, float t) const
    {
        float sum = 0;
        for (int w = 0; w < waves; ++w) {
            const float angle = kTwoPi * hashed(w, 0, 0, 5), phase = kTwoPi * hashed(w, 1, 0, 5);
            sum += std::cos(kTwoPi * 0.5f * (x * std::cos(angle) + y * std::sin(angle)) + phase + kTwoPi * t);
        }
        return waves > 0 ? sum / float(waves) : 0;
    }

    /// One octave, in [-1, 1].
    float octave(float x, float y, float t, float scale) const
    {
        switch (manner) {
        case kBillow:    return 2 * spots(x, y + t) - 1;
        case kWave:      return standing(x, y, t);
        case kSpaceTime: return gradientNoise(x, y, t * scale);   // finer detail changes faster
        default:         return gradientNoise(x, y, t);
        }
    }

    Texel at(float u, float v) const
    {
        float x = u, y = v;
        if (implode != 0) {
            const float dx = u - center[0], dy = v - center[1], away = std::sqrt(dx * dx + dy * dy);
            const float pull = away > 0 ? std::pow(away, 1 - implode) / away : 1;
            x = center[0] + dx * pull;
            y = center[1] + dy * pull;
        }
        x *= frequency, y *= frequency;
        if (manner == kWispy) {
            const float bend = gradientNoise(x * 0.5f, y * 0.5f, time + 41.5f);
            x += bend * 1.5f, y += gradientNoise(x * 0.5f, y * 0.5f, time + 53.5f) * 1.5f;
        }
        float sum = 0, size = amplitude, scale = 1;
        for (int i = 0; i < octaves; ++i) {
            const float n = octave(x * scale, y * scale, time, scale);
            sum += size * (inflection ? std::fabs(n) : n);
            size *= ratio, scale *= frequencyRatio;
        }
        const float value = std::clamp(threshold + (inflection ? sum : 0.5f + 0.5f * sum), 0.f, 1.f);
        return {value, value, value, value};
    }
};

class Noise : public TextureNode
{
public:
    static void*   creator() { return new Noise; }
    static MStatus initialize()
    {
        const auto real = [](const char* l, const char* s, double v, double low, double high) { return number(l, s, Number::kFloat, v, low, high, kKey); };
        aThreshold = real("threshold", "th", 0, 0, 1);
        aAmplitude = real("amplitude", "a", 1, 0, 1);
        aRatio = real("ratio", "ra", 0.707, 0, 1);
        aFrequencyRatio = number("frequencyRatio", "fr", Number::kFloat, 2, kKey);
        aDepthMax = number("depthMax", "dm", Number::kShort, 3, 0, 100, kKey);
        aInflection = number("inflection", "in", Number::kBoolean, 0, kKey);
        aTime = number("time", "ti", Number::kFloat, 0, kKey);
        aFrequency = number("frequency", "fq", Number::kFloat, 8, kKey);
        aImplode = number("implode", "im", Number::kFloat, 0, kKey);
        aCenter = tuple("implodeCenter", "imc", {number("implodeCenterU", "imu", Number::kFloat, 0.5, kKey),
                                                 number("implodeCenterV", "imv", Number::kFloat, 0.5, kKey)}, kKey);
        aManner = choice("noiseType", "nty", kPerlin, {"Perlin Noise", "Billow", "Wave", "Wispy", "SpaceTime"}, kKey);
        aDensity = real("density", "d", 1, 0, 10);
        aSpottyness = real("spottyness", "sp", 0.1, 0, 1);
        aSizeRandomness = real("sizeRand", "sr", 0, 0, 1);
        aRandomness = real("randomness", "rn", 1, 0, 1);
        aFalloff = choice("falloff", "fof", 0, {"Linear", "Smooth", "Fast", "Bubble"}, kKey);
        aWaves = number("numWaves", "nw", Number::kShort, 5, 0, kMostWaves, kKey);
        return declare({aThreshold, aAmplitude, aRatio, aFrequencyRatio, aDepthMax, aInflection, aTime, aFrequency, aImplode, aCenter, aManner,
                        aDensity, aSpottyness, aSizeRandomness, aRandomness, aFalloff, aWaves});
    }

    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        Turbulence t;
        t.manner = block.inputValue(aManner).asShort();
        t.octaves = std::clamp<int>(block.inputValue(aDepthMax).asShort(), 0, kMostOctaves);
        t.waves = std::clamp<int>(block.inputValue(aWaves).asShort(), 0, kMostWaves);
        t.falloff = block.inputValue(aFalloff).asShort();
        t.inflection = block.inputValue(aInflection).asBool();
        const std::pair<const MObject*, float*> reals[] = {
            {&aThreshold, &t.threshold}, {&aAmplitude, &t.amplitude}, {&aRatio, &t.ratio}, {&aFrequencyRatio, &t.frequencyRatio},
            {&aTime, &t.time}, {&aFrequency, &t.frequency}, {&aImplode, &t.implode}, {&aDensity, &t.density},
            {&aSpottyness, &t.spottyness}, {&aSizeRandomness, &t.sizeRandomness}, {&aRandomness, &t.randomness}};
        for (const auto& [attribute, to] : reals)
            *to = value(block, *attribute);
        const float2& center = block.inputValue(aCenter).asFloat2();
        t.center[0] = center[0], t.center[1] = center[1];
        return paint(block, t);
    }

private:
    static inline MObject aThreshold, aAmplitude, aRatio, aFrequencyRatio, aDepthMax, aInflection, aTime, aFrequency, aImplode, aCenter,
        aManner, aDensity, aSpottyness, aSizeRandomness, aRandomness, aFalloff, aWaves;
};

}  // namespace

void registerNoise() { registerTexture("noise", 0x52544E4F, MFn::kNoise, Noise::creator, Noise::initialize); }

}  // namespace mirk::texture
