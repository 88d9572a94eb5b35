#include "texture/texture_node.h"

#include <maya/MPlug.h>

#include "nodes/builtin.h"

namespace mirk::texture {

using namespace nodes;

void Balance::apply(Texel& t) const
{
    if (invert)
        t = {1 - t.r, 1 - t.g, 1 - t.b, 1 - t.a};
    t.r = t.r * gain.r + offset.r;
    t.g = t.g * gain.g + offset.g;
    t.b = t.b * gain.b + offset.b;
    t.a = (alphaIsLuminance ? luminance(t.r, t.g, t.b) : t.a) * gain.a + offset.a;
}

MObject colorAttribute(const char* longName, const char* shortName, float r, float g, float b)
{
    const std::string l = longName, s = shortName;
    const auto part = [&](const char* L, const char* S, double v) {
        return number((l + L).c_str(), (s + S).c_str(), Number::kFloat, v, kKey);
    };
    return tuple(longName, shortName, {part("R", "r", r), part("G", "g", g), part("B", "b", b)}, kKey | kColor);
}

MStatus TextureNode::initialize()
{
    aUV = tuple("uvCoord", "uv", {number("uCoord", "u", Number::kFloat), number("vCoord", "v", Number::kFloat)});
    aFilterSize = tuple("uvFilterSize", "fs", {number("uvFilterSizeX", "fsx", Number::kFloat), number("uvFilterSizeY", "fsy", Number::kFloat)});
    aFilter = number("filter", "f", Number::kFloat, 1, kKey);
    aFilterOffset = number("filterOffset", "fo", Number::kFloat, 0, kKey);
    aInvert = number("invert", "i", Number::kBoolean, 0, kKey);
    aAlphaIsLuminance = number("alphaIsLuminance", "ail", Number::kBoolean, 0, kKey);
    aColorGain = colorAttribute("colorGain", "cg", 1, 1, 1);
    aColorOffset = colorAttribute("colorOffset", "co", 0, 0, 0);
    aAlphaGain = number("alphaGain", "ag", Number::kFloat, 1, kKey);
    aAlphaOffset = number("alphaOffset", "ao", Number::kFloat, 0, kKey);
    aDefaultColor = colorAttribute("defaultColor", "dc", 0.5f, 0.5f, 0.5f);
    aOutColor = triple("outColor", "oc", Number::kFloat, 0, kOut | kColor, "RGB");
    aOutAlpha = number("outAlpha", "oa", Number::kFloat, 0, kOut);
    add({aUV, aFilterSize, aFilter, aFilterOffset, aInvert, aAlphaIsLuminance, aColorGain, aColorOffset, aAlphaGain, aAlphaOffset,
         aDefaultColor, aOutColor, aOutAlpha});
    affects({aUV, aFilterSize, aFilter, aFilterOffset, aInvert, aAlphaIsLuminance, aColorGain, aColorOffset, aAlphaGain, aAlphaOffset,
             aDefaultColor},
            {aOutColor, aOutAlpha});
    return MS::kSuccess;
}

MStatus TextureNode::declare(std::initializer_list<MObject> attributes)
{
    add(attributes);
    affects(attributes, {aOutColor, aOutAlpha});
    return MS::kSuccess;
}

Texel TextureNode::color(MDataBlock& block, const MObject& attribute)
{
    const float3& c = block.inputValue(attribute).asFloat3();
    return {c[0], c[1], c[2], 1};
}

Balance TextureNode::balance(MDataBlock& block)
{
    Balance b;
    b.gain = color(block, aColorGain);
    b.offset = color(block, aColorOffset);
    b.gain.a = value(block, aAlphaGain);
    b.offset.a = value(block, aAlphaOffset);
    b.invert = block.inputValue(aInvert).asBool();
    b.alphaIsLuminance = block.inputValue(aAlphaIsLuminance).asBool();
    b.uncovered = color(block, aDefaultColor);
    b.uncovered.a = b.alphaIsLuminance ? luminance(b.uncovered.r, b.uncovered.g, b.uncovered.b) : 0;
    const auto is = [](const Texel& t, float x) { return t.r == x && t.g == x && t.b == x && t.a == x; };
    b.plain = is(b.gain, 1) && is(b.offset, 0) && !b.invert && !b.alphaIsLuminance;
    return b;
}

MStatus TextureNode::compute(const MPlug& plug, MDataBlock& block)
{
    if (plug != aOutColor && plug != aOutAlpha && !(plug.isChild() && plug.parent() == aOutColor))
        return MS::kUnknownParameter;
    const float2& uv = block.inputValue(aUV).asFloat2();
    const UV      at{uv[0], uv[1]};
    Texel         out;
    sampler(block)->sample(&at, &out, 1);
    block.outputValue(aOutColor).set3Float(out.r, out.g, out.b);
    block.outputValue(aOutAlpha).setFloat(out.a);
    block.setClean(aOutColor);
    block.setClean(aOutAlpha);
    return MS::kSuccess;
}

void registerTexture(const char* name, unsigned id, MFn::Type type, void* (*creator)(), MStatus (*initialize)())
{
    registerRow({name, "texture2d", id, type, creator, initialize, "", "texture/2d"});
}

void registerTextureTypes()
{
    registerPlace2d();
    registerRow({"texture2d", "node", 0, MFn::kTexture2d, nullptr, TextureNode::initialize});
    registerPatterns();
    registerRamp();
    registerNoise();
    registerFile();
    registerLambert();
}

}  // namespace mirk::texture
