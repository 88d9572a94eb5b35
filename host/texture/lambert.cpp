// lambert: what a matt surface is made of. Its result here is the surface's own light: lights are the viewport's.
#include <maya/MPlug.h>

#include "nodes/builtin.h"
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

class Lambert : public MPxNode
{
public:
    static void*   creator() { return new Lambert; }
    static MStatus initialize()
    {
        aColor = colorAttribute("color", "c", 0.5f, 0.5f, 0.5f);
        aTransparency = colorAttribute("transparency", "it", 0, 0, 0);
        aAmbient = colorAttribute("ambientColor", "ambc", 0, 0, 0);
        aIncandescence = colorAttribute("incandescence", "ic", 0, 0, 0);
        aDiffuse = number("diffuse", "dc", Number::kFloat, 0.8, kKey);
        aOutColor = triple("outColor", "oc", Number::kFloat, 0, kOut | kColor, "RGB");
        aOutTransparency = triple("outTransparency", "ot", Number::kFloat, 0, kOut | kColor, "RGB");
        add({aColor, aTransparency, aAmbient, aIncandescence, aDiffuse, aOutColor, aOutTransparency});
        affects({aColor, aAmbient, aIncandescence, aDiffuse}, {aOutColor});
        affects({aTransparency}, {aOutTransparency});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        const MPlug whole = plug.isChild() ? plug.parent() : plug;
        if (whole == aOutTransparency) {
            const float3& t = block.inputValue(aTransparency).asFloat3();
            block.outputValue(aOutTransparency).set3Float(t[0], t[1], t[2]);
        } else if (whole == aOutColor) {
            const float3 &c = block.inputValue(aColor).asFloat3(), &a = block.inputValue(aAmbient).asFloat3(), &i = block.inputValue(aIncandescence).asFloat3();
            const float   d = block.inputValue(aDiffuse).asFloat();
            const auto    part = [&](int k) { return c[k] * (d + a[k]) + i[k]; };
            block.outputValue(aOutColor).set3Float(part(0), part(1), part(2));
        } else {
            return MS::kUnknownParameter;
        }
        block.setClean(whole);
        return MS::kSuccess;
    }

private:
    static inline MObject aColor, aTransparency, aAmbient, aIncandescence, aDiffuse, aOutColor, aOutTransparency;
};

}  // namespace

void registerLambert()
{
    registerRow({"lambert", "node", 0x524C414D, MFn::kLambert, Lambert::creator, Lambert::initialize, "", "shader/surface"});
}

}  // namespace mirk::texture
