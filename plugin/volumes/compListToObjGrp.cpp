#include "volumes/compListToObjGrp.h"

#include <maya/MDataHandle.h>
#include <maya/MPlug.h>

#include "core/attr.h"
#include "core/node.h"
#include "volumes/componentLists.h"

MStatus compListToObjGrp::initialize()
{
    const auto      geometries = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface};
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::generic(aInGeo, "inGeometry", "ig", geometries, attr::kInput),
        attr::generic(aOutGeo, "outGeometry", "og", geometries, attr::kOutput),
        attr::typed(aInComp, "inComponents", "ic", MFnData::kComponentList, attr::kInput),
    };
    return attr::declare(rows);
}

MStatus compListToObjGrp::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking || plug != aOutGeo)               // node state, plug test
        return MS::kUnknownParameter;
    MDataHandle outGeo = block.outputValue(aOutGeo);                    // copy through
    outGeo.copy(block.inputValue(aInGeo));
    const int groupId = block.inputValue(aGroupId).asInt();
    if (!block.inputValue(aEnvelope).asBool() || groupId < 0)           // switch
        return MS::kSuccess;
    const MObject component = firstOf(readComponents(block, MPlug(thisMObject(), aInComp)));   // work
    if (!component.isNull())                                            // write
        writeObjectGroup(outGeo.data(), static_cast<unsigned int>(groupId), component);
    return MS::kSuccess;
}
