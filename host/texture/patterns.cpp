// Textures that a line of arithmetic makes: checker, grid, bulge.
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

Texel mixed(const Texel& a, const Texel& b, float t)
{
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
}

/// Two colours drawn together: at contrast 1 they are themselves, at 0 both their mean.
void contrast(Texel& a, Texel& b, float amount)
{
    const Texel first = a, second = b;
    a = mixed(second, first, 0.5f + 0.5f * amount);
    b = mixed(first, second, 0.5f + 0.5f * amount);
}

// ---- checker -----------------------------------------------------------------------------------------------------

/// Two by two cells a tile; the lower left and the upper right one have the first colour.
struct Checks
{
    Texel one, two;
    Texel at(float u, float v) const
    {
        const bool right = inTile(u) >= 0.5f, upper = inTile(v) >= 0.5f;
        return right == upper ? one : two;
    }
};

class Checker : public TextureNode
{
public:
    static void*   creator() { return new Checker; }
    static MStatus initialize()
    {
        aOne = colorAttribute("color1", "c1", 1, 1, 1);
        aTwo = colorAttribute("color2", "c2", 0, 0, 0);
        aContrast = number("contrast", "ct", Number::kFloat, 1, 0, 1, kKey);
        return declare({aOne, aTwo, aContrast});
    }
    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        Checks checks{color(block, aOne), color(block, aTwo)};
        checks.two.a = 0;
        contrast(checks.one, checks.two, value(block, aContrast));
        return paint(block, checks);
    }
    static inline MObject aOne, aTwo, aContrast;
};

// ---- grid --------------------------------------------------------------------------------------------------------

/// Lines on the borders of the tiles, half their width to either side.
struct Lines
{
    Texel line, filler;
    float half[2];
    static bool on(float x, float half) { return half > 0 && (x < half || x > 1 - half); }
    Texel at(float u, float v) const { return on(inTile(u), half[0]) || on(inTile(v), half[1]) ? line : filler; }
};

class Grid : public TextureNode
{
public:
    static void*   creator() { return new Grid; }
    static MStatus initialize()
    {
        aLine = colorAttribute("lineColor", "lc", 1, 1, 1);
        aFiller = colorAttribute("fillerColor", "fc", 0, 0, 0);
        aWidth[0] = number("uWidth", "uw", Number::kFloat, 0.1, 0, 1, kKey);
        aWidth[1] = number("vWidth", "vw", Number::kFloat, 0.1, 0, 1, kKey);
        aContrast = number("contrast", "c", Number::kFloat, 1, 0, 1, kKey);
        return declare({aLine, aFiller, aWidth[0], aWidth[1], aContrast});
    }
    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        Lines lines{color(block, aLine), color(block, aFiller), {value(block, aWidth[0]) / 2, value(block, aWidth[1]) / 2}};
        lines.filler.a = 0;
        contrast(lines.line, lines.filler, value(block, aContrast));
        return paint(block, lines);
    }
    static inline MObject aLine, aFiller, aWidth[2], aContrast;
};

// ---- bulge -------------------------------------------------------------------------------------------------------

/// A hill a tile, on a black border half as wide as the width to either side.
struct Hills
{
    float half[2];
    static float across(float x, float half)
    {
        const float t = half < 0.5f ? (x - half) / (1 - 2 * half) : 0.f;
        return t > 0 && t < 1 ? std::sin(3.14159265f * t) : 0.f;
    }
    Texel at(float u, float v) const
    {
        const float height = across(inTile(u), half[0]) * across(inTile(v), half[1]);
        return {height, height, height, height};
    }
};

class Bulge : public TextureNode
{
public:
    static void*   creator() { return new Bulge; }
    static MStatus initialize()
    {
        aWidth[0] = number("uWidth", "uw", Number::kFloat, 0.1, 0, 1, kKey);
        aWidth[1] = number("vWidth", "vw", Number::kFloat, 0.1, 0, 1, kKey);
        return declare({aWidth[0], aWidth[1]});
    }
    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        return paint(block, Hills{{value(block, aWidth[0]) / 2, value(block, aWidth[1]) / 2}});
    }
    static inline MObject aWidth[2];
};

}  // namespace

void registerPatterns()
{
    registerTexture("checker", 0x52544348, MFn::kChecker, Checker::creator, Checker::initialize);
    registerTexture("grid", 0x52544752, MFn::kGrid, Grid::creator, Grid::initialize);
    registerTexture("bulge", 0x52544255, MFn::kBulge, Bulge::creator, Bulge::initialize);
}

}  // namespace mirk::texture
