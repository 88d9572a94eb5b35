#include "volumes/objGrpToCompList.h"

#include <maya/MDataHandle.h>
#include <maya/MFnComponentListData.h>
#include <maya/MFnGeometryData.h>
#include <maya/MPlug.h>

#include "core/attr.h"
#include "core/node.h"

MStatus objGrpToCompList::initialize()
{
    const attr::Row rows[] = {
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::generic(aInGeo, "inGeometry", "ig", {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface},
                      attr::kInput),
        attr::typed(aOutComp, "outComponents", "oc", MFnData::kComponentList, attr::kOutput),
    };
    return attr::declare(rows);
}

MStatus objGrpToCompList::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking || plug != aOutComp)              // node state, plug test
        return MS::kUnknownParameter;
    MFnComponentListData list;
    const MObject        data = list.create();
    const int            groupId = block.inputValue(aGroupId).asInt();
    if (block.inputValue(aEnvelope).asBool() && groupId >= 0) {         // switch
        const MObject         geometry = block.inputValue(aInGeo).data();   // work
        const MFnGeometryData fn(geometry);
        const auto            group = static_cast<unsigned int>(groupId);
        MObject component = fn.hasObjectGroup(group) ? fn.objectGroupComponent(group) : MObject::kNullObj;
        if (!component.isNull())
            list.add(component);
    }
    return block.outputValue(aOutComp).set(data);                       // write
}
