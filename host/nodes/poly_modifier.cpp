#include "nodes/poly_modifier.h"

#include <maya/MPlug.h>

#include "nodes/pass_on.h"

namespace mirk::nodes {

MStatus PolyModifier::initialize()
{
    aInput = typed("inputPolymesh", "ip", MFnData::kMesh, kHide | kNoStore);
    aComponents = typed("inputComponents", "ics", MFnData::kComponentList, kHide);
    aOutput = typed("output", "out", MFnData::kMesh, kOut | kHide);
    add({number("useOldPolyArchitecture", "uopa", Number::kBoolean, 0, kHide), aInput, aComponents, aOutput});
    affects({aInput, aComponents, state}, {aOutput});
    return MS::kSuccess;
}

void PolyModifier::parameters(std::initializer_list<MObject> attributes)
{
    for (const MObject& a : attributes) {
        add({a});
        affects({a}, {aOutput});
        for (unsigned i = 0; i < objectAs<Attribute>(a)->children.size(); ++i)
            affects({childOf(a, i)}, {aOutput});
    }
}

void PolyModifier::addSpace(MObject& worldSpace, MObject& inputMatrix)
{
    worldSpace = number("worldSpace", "ws", Number::kBoolean, 0, kHide);
    inputMatrix = matrix("inputMatrix", "ix", kHide);
    parameters({worldSpace, inputMatrix});
}

MStatus PolyModifier::compute(const MPlug& plug, MDataBlock& block)
{
    if (plug != aOutput)
        return MS::kUnknownParameter;
    auto* mesh = passOn<MeshData>(block, aInput, aOutput);
    if (!mesh || (mesh->body->vertexCount() == 0 && !worksOnEmpty()))
        return MS::kSuccess;
    const MObject components = block.inputValue(aComponents).data();
    apply(*mesh->body, objectAs<ComponentListData>(components), block);
    return MS::kSuccess;
}

MPlug PolyModifier::passThroughToOne(const MPlug& plug) const
{
    return plug == aInput ? MPlug(thisMObject(), aOutput) : plug == aOutput ? MPlug(thisMObject(), aInput) : MPlug();
}

void registerPolyModifier()
{
    registerRow({"polyModifier", "polyBase", 0, MFn::kMidModifier, nullptr, PolyModifier::initialize});
}

}  // namespace mirk::nodes
