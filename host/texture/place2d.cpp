// place2dTexture: where on a texture a point of a surface lies.
#include <maya/MPlug.h>

#include "nodes/builtin.h"
#include "texture/lattice.h"
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

/// The frame is the piece of the surface that the texture is laid into; within it the texture turns, repeats and moves.
struct Frame final : Placement
{
    float coverage[2] = {1, 1}, translate[2] = {}, repeat[2] = {1, 1}, offset[2] = {}, noise[2] = {};
    float frameCos = 1, frameSin = 0, textureCos = 1, textureSin = 0;
    bool  wrap[2] = {true, true}, mirror[2] = {}, stagger = false;

    static void turn(float (&p)[2], float c, float s)
    {
        const float x = p[0] - 0.5f, y = p[1] - 0.5f;
        p[0] = c * x + s * y + 0.5f;
        p[1] = c * y - s * x + 0.5f;
    }

    /// From the surface into the frame; false outside it.
    bool enter(float& x, int axis) const
    {
        if (coverage[axis] == 1 && wrap[axis])
            return true;   // frame beside frame: the repetition goes on through all of them
        if (wrap[axis])
            x = inTile(x);
        if (!(x >= 0 && x <= coverage[axis]) || coverage[axis] == 0)
            return false;
        x /= coverage[axis];
        return true;
    }

    UV placed(const UV& at) const
    {
        constexpr UV kOut{kNowhere, kNowhere};
        if (!somewhere(at))
            return kOut;
        float p[2] = {at.u, at.v};
        if (noise[0] != 0 || noise[1] != 0)
            for (int i = 0; i < 2; ++i)
                p[i] += noise[i] * gradientNoise(at.u * 8, at.v * 8, float(i) * 31.5f);
        p[0] -= translate[0];
        p[1] -= translate[1];
        if (frameSin != 0 || frameCos != 1)
            turn(p, frameCos, frameSin);
        if (!enter(p[0], 0) || !enter(p[1], 1))
            return kOut;
        if (textureSin != 0 || textureCos != 1)
            turn(p, textureCos, textureSin);
        for (int i = 0; i < 2; ++i)
            p[i] = p[i] * repeat[i] + offset[i];
        if (stagger && std::fmod(std::floor(p[1]), 2.f) != 0)   // every second row of tiles
            p[0] += 0.5f;
        for (int i = 0; i < 2; ++i)
            if (const float tile = std::floor(p[i]); mirror[i] && std::fmod(tile, 2.f) != 0)
                p[i] = 2 * tile + 1 - p[i];
        return {p[0], p[1]};
    }

    void place(const UV* in, UV* out, size_t count) const override
    {
        const Frame frame = *this;
        for (size_t i = 0; i < count; ++i)
            out[i] = frame.placed(in[i]);
    }
};

MObject size(const char* longName, const char* shortName, unsigned flags)
{
    const std::string l = longName, s = shortName;
    return tuple(longName, shortName, {number((l + "X").c_str(), (s + "x").c_str(), Number::kFloat, 0, flags),
                                       number((l + "Y").c_str(), (s + "y").c_str(), Number::kFloat, 0, flags)}, flags);
}

class Place2dTexture : public MPxNode, public PlacingNode
{
public:
    static void*   creator() { return new Place2dTexture; }
    static MStatus initialize()
    {
        aUV = tuple("uvCoord", "uv", {number("uCoord", "u", Number::kFloat), number("vCoord", "v", Number::kFloat)});
        aFilterSize = size("uvFilterSize", "fs", kIn);
        aCoverage = uvPair("coverage", "c", 1, kKey);
        aTranslate = uvPair("translateFrame", "tf", 0, kKey);
        aRotate = unit("rotateFrame", "rf", Unit::kAngle, 0, kKey);
        aMirror[0] = number("mirrorU", "mu", Number::kBoolean, 0, kKey);
        aMirror[1] = number("mirrorV", "mv", Number::kBoolean, 0, kKey);
        aStagger = number("stagger", "s", Number::kBoolean, 0, kKey);
        aWrap[0] = number("wrapU", "wu", Number::kBoolean, 1, kKey);
        aWrap[1] = number("wrapV", "wv", Number::kBoolean, 1, kKey);
        aRepeat = uvPair("repeatUV", "re", 1, kKey);
        aOffset = uvPair("offset", "of", 0, kKey);
        aRotateUV = unit("rotateUV", "r", Unit::kAngle, 0, kKey);
        aNoise = uvPair("noiseUV", "n", 0, kKey);
        aOut = uvPair("outUV", "o", 0, kOut);
        aOutFilterSize = size("outUvFilterSize", "ofs", kOut);
        add({aUV, aFilterSize, aCoverage, aTranslate, aRotate, aMirror[0], aMirror[1], aStagger, aWrap[0], aWrap[1], aRepeat, aOffset,
             aRotateUV, aNoise, aOut, aOutFilterSize});
        for (const MObject& corner : corners())
            add({corner});
        affects({aUV, aCoverage, aTranslate, aRotate, aMirror[0], aMirror[1], aStagger, aWrap[0], aWrap[1], aRepeat, aOffset, aRotateUV,
                 aNoise},
                {aOut});
        affects({aFilterSize, aCoverage, aRepeat}, {aOutFilterSize});
        return MS::kSuccess;
    }

    std::unique_ptr<Placement> placement(MDataBlock& block) override
    {
        auto       frame = std::make_unique<Frame>();
        const auto two = [&](const MObject& attribute, float (&to)[2]) {
            const float2& v = block.inputValue(attribute).asFloat2();
            to[0] = v[0], to[1] = v[1];
        };
        const auto angle = [&](const MObject& attribute, float& c, float& s) {
            const double a = block.inputValue(attribute).asDouble();
            c = float(std::cos(a)), s = float(std::sin(a));
        };
        two(aCoverage, frame->coverage);
        two(aTranslate, frame->translate);
        two(aRepeat, frame->repeat);
        two(aOffset, frame->offset);
        two(aNoise, frame->noise);
        angle(aRotate, frame->frameCos, frame->frameSin);
        angle(aRotateUV, frame->textureCos, frame->textureSin);
        for (int i = 0; i < 2; ++i) {
            frame->wrap[i] = block.inputValue(aWrap[i]).asBool();
            frame->mirror[i] = block.inputValue(aMirror[i]).asBool();
        }
        frame->stagger = block.inputValue(aStagger).asBool();
        return frame;
    }

    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        const MPlug whole = plug.isChild() ? plug.parent() : plug;
        if (whole == aOut) {
            const float2& uv = block.inputValue(aUV).asFloat2();
            UV            at{uv[0], uv[1]};
            placement(block)->place(&at, &at, 1);
            block.outputValue(aOut).set2Float(at.u, at.v);
            block.setClean(aOut);
        } else if (whole == aOutFilterSize) {
            const float2 &size = block.inputValue(aFilterSize).asFloat2(), &repeat = block.inputValue(aRepeat).asFloat2(),
                         &coverage = block.inputValue(aCoverage).asFloat2();
            const auto scaled = [&](int i) { return coverage[i] != 0 ? size[i] * repeat[i] / coverage[i] : 0.f; };
            block.outputValue(aOutFilterSize).set2Float(scaled(0), scaled(1));
            block.setClean(aOutFilterSize);
        } else {
            return MS::kUnknownParameter;
        }
        return MS::kSuccess;
    }

private:
    static inline MObject aUV, aFilterSize, aCoverage, aTranslate, aRotate, aMirror[2], aStagger, aWrap[2], aRepeat, aOffset, aRotateUV,
        aNoise, aOut, aOutFilterSize;
};

}  // namespace

MObject uvPair(const char* longName, const char* shortName, float value, unsigned flags)
{
    const std::string l = longName, s = shortName;
    const std::string stem = l == "repeatUV" ? "repeat" : l == "noiseUV" ? "noise" : l == "outUV" ? "out" : l;
    return tuple(longName, shortName, {number((stem + "U").c_str(), (s + "u").c_str(), Number::kFloat, value, flags),
                                       number((stem + "V").c_str(), (s + "v").c_str(), Number::kFloat, value, flags)}, flags);
}

std::vector<MObject> corners()
{
    std::vector<MObject> out;
    const char* const    names[3][4] = {{"vertexUvOne", "vt1", "t1u", "t1v"}, {"vertexUvTwo", "vt2", "t2u", "t2v"}, {"vertexUvThree", "vt3", "t3u", "t3v"}};
    for (const auto& n : names) {
        const std::string l = n[0];
        out.push_back(tuple(n[0], n[1], {number((l + "U").c_str(), n[2], Number::kFloat), number((l + "V").c_str(), n[3], Number::kFloat)}, kHide));
    }
    out.push_back(tuple("vertexCameraOne", "vc1", {number("vertexCameraOneX", "c1x", Number::kFloat), number("vertexCameraOneY", "c1y", Number::kFloat),
                                                   number("vertexCameraOneZ", "c1z", Number::kFloat)}, kHide));
    return out;
}

void registerPlace2d()
{
    registerRow({"place2dTexture", "node", 0x52504C32, MFn::kPlace2dTexture, Place2dTexture::creator, Place2dTexture::initialize, "",
                 "utility/general/placement/2d"});
}

}  // namespace mirk::texture
