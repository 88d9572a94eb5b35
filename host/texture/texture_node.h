// What all 2D texture nodes share: where they look, how the colour is adjusted, what they give.
#pragma once
#include <initializer_list>
#include <utility>
#include <vector>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPxNode.h>

#include "nodes/attr.h"
#include "texture/sampler.h"

namespace mirk::texture {

/// The colour balance and effects of a texture.
struct Balance
{
    Texel gain{1, 1, 1, 1}, offset{0, 0, 0, 0};
    Texel uncovered{0, 0, 0, 0};   ///< where the texture is not
    bool  invert = false, alphaIsLuminance = false, plain = true;

    void apply(Texel& t) const;
};

inline float luminance(float r, float g, float b) { return 0.3f * r + 0.59f * g + 0.11f * b; }

/// A texture whose pattern is `Pattern::at(u, v)`, a Texel for a place within reach of a float.
template <class Pattern>
class PatternSampler final : public Sampler
{
public:
    PatternSampler(Balance balance, Pattern pattern) : balance_(balance), pattern_(std::move(pattern)) {}
    void sample(const UV* at, Texel* out, size_t count) const override
    {
        const Pattern pattern = pattern_;   // a copy that nothing written through `out` can change
        for (size_t i = 0; i < count; ++i)
            out[i] = somewhere(at[i]) ? pattern.at(at[i].u, at[i].v) : Texel{0, 0, 0, kNothing};
        for (size_t i = 0; i < count; ++i)
            if (out[i].a == kNothing)
                out[i] = balance_.uncovered;
            else if (!balance_.plain)
                balance_.apply(out[i]);
    }

private:
    static constexpr float kNothing = -3e38f;

    Balance balance_;
    Pattern pattern_;
};

/// Base of the node classes. A class reads its own attributes in `sampler`.
class TextureNode : public MPxNode, public SamplingNode
{
public:
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    /// The attributes of the abstract type texture2d.
    static MStatus initialize();

protected:
    static Balance balance(MDataBlock& block);
    /// The texture of a pattern that the class has read.
    template <class Pattern>
    static std::unique_ptr<Sampler> paint(MDataBlock& block, Pattern pattern)
    {
        return std::make_unique<PatternSampler<Pattern>>(balance(block), std::move(pattern));
    }
    /// Adds the attributes of a class; they affect colour and alpha.
    static MStatus declare(std::initializer_list<MObject> attributes);
    static Texel   color(MDataBlock& block, const MObject& attribute);
    static float   value(MDataBlock& block, const MObject& attribute) { return block.inputValue(attribute).asFloat(); }

    static inline MObject aUV, aFilterSize, aFilter, aFilterOffset, aInvert, aAlphaIsLuminance, aColorGain, aColorOffset, aAlphaGain,
        aAlphaOffset, aDefaultColor, aOutColor, aOutAlpha;
};

MObject colorAttribute(const char* longName, const char* shortName, float r, float g, float b);

/// Two numbers, U and V; the children of "repeatUV" and its like are called "repeatU" and "repeatV".
MObject uvPair(const char* longName, const char* shortName, float value, unsigned flags);
/// vertexUvOne, Two, Three and vertexCameraOne: a surface's corner as scene files hand it along.
std::vector<MObject> corners();

/// The built-in textures and their placement.
void registerTextureTypes();

// the families of registerTextureTypes
void registerPlace2d();
void registerPatterns();
void registerRamp();
void registerNoise();
void registerFile();
void registerLambert();

/// Registers a texture type on texture2d.
void registerTexture(const char* name, unsigned id, MFn::Type type, void* (*creator)(), MStatus (*initialize)());

}  // namespace mirk::texture
