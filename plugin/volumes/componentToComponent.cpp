#include "volumes/componentToComponent.h"

#include <maya/MDataHandle.h>
#include <maya/MFnGeometryData.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include <algorithm>

#include "core/attr.h"
#include "core/node.h"
#include "volumes/componentLists.h"
#include "volumes/meshTables.h"

namespace {

int countOf(const MeshTables& mesh, ComponentKind kind)
{
    switch (kind) {
    case ComponentKind::kVertex: return mesh.vertexCount;
    case ComponentKind::kEdge:   return mesh.edgeCount;
    case ComponentKind::kFace:   return mesh.faceCount();
    case ComponentKind::kMap:    return mesh.uvCount;
    default:                     return 0;
    }
}

bool isMeshKind(ComponentKind kind) { return kind <= ComponentKind::kMap; }

/// All that the vertices touch, or what consists of nothing but them.
Marks ofVertices(const MeshTables& mesh, ComponentKind to, const Marks& vertices, bool contained)
{
    if (contained && to == ComponentKind::kEdge)
        return edgesWithBoth(mesh, vertices);
    if (contained && to == ComponentKind::kFace)
        return facesWithAll(mesh, mesh.cornerEdges, edgesWithBoth(mesh, vertices));
    return fromVertices(mesh, to, countOf(mesh, to), vertices);
}

Marks converted(const MeshTables& mesh, ComponentKind from, ComponentKind to, const Marks& marks, bool contained)
{
    switch (from) {
    case ComponentKind::kVertex: return ofVertices(mesh, to, marks, contained);
    case ComponentKind::kMap:    return ofVertices(mesh, to, verticesOfUVs(mesh, marks), contained);
    case ComponentKind::kEdge:
        if (contained && to == ComponentKind::kFace)
            return facesWithAll(mesh, mesh.cornerEdges, marks);
        return fromEdges(mesh, to, countOf(mesh, to), marks);
    default: return fromFaces(mesh, to, countOf(mesh, to), marks);
    }
}

MeshTables tablesFor(const MObject& mesh, const MString& uvSet, ComponentKind from, ComponentKind to)
{
    MeshTables tables = readFaces(mesh);
    const auto either = [&](ComponentKind kind) { return from == kind || to == kind; };
    if (either(ComponentKind::kMap))
        addUVs(mesh, uvSet, tables);
    if (either(ComponentKind::kEdge) || to == ComponentKind::kFace)
        addEdges(mesh, tables);
    return tables;
}

} // namespace

MStatus componentToComponent::initialize()
{
    const attr::Row rows[] = {
        attr::generic(aInMesh, "inMesh", "im", {MFnData::kMesh}, attr::kInput),
        attr::typed(aInComp, "inComponents", "ic", MFnData::kComponentList, attr::kInput),
        attr::typed(aOutComp, "outComponents", "oc", MFnData::kComponentList, attr::kOutput),
        attr::numeric(aEnvelope, "envelope", "en", MFnNumericData::kBoolean, 1.0, attr::kControl),
        attr::enumeration(aUseComp, "useComponents", "uc", {{"Input Components List", 0}, {"Input Object Group", 1}}, 0,
                          attr::kControl),
        attr::numeric(aGroupId, "groupId", "gid", MFnNumericData::kInt, -1.0, attr::kControl),
        attr::enumeration(aOutCompType, "outComponentType", "oct",
                          {{"vertex", 0}, {"edge", 1}, {"face", 2}, {"map", 3}}, 0, attr::kControl),
        attr::text(aUvSet, "uvSet", "uvs", attr::kStored),
        attr::numeric(aContained, "contained", "con", MFnNumericData::kBoolean, 0.0, attr::kControl),
    };
    return attr::declare(rows);
}

MStatus componentToComponent::compute(const MPlug& plug, MDataBlock& block)
{
    if (nodeState(block) == kBlocking || plug != aOutComp)              // node state, plug test
        return MS::kUnknownParameter;
    MFnComponentListData list;
    const MObject        data = list.create();
    MDataHandle          inMesh = block.inputValue(aInMesh);
    const MObject        mesh = inMesh.type() == MFnData::kMesh ? inMesh.asMesh() : MObject::kNullObj;
    MObject              input = inputComponent(block, inMesh.data());
    const short          wanted = block.inputValue(aOutCompType).asShort();
    ComponentKind        from = ComponentKind::kVertex;
    const bool           known = !input.isNull() && kindOf(input.apiType(), from) && isMeshKind(from);
    if (block.inputValue(aEnvelope).asBool() && known && wanted >= 0 && wanted <= 3) {   // switch
        const auto to = static_cast<ComponentKind>(wanted);             // work
        if (from != to) {
            const MeshTables tables = tablesFor(mesh, block.inputValue(aUvSet).asString(), from, to);
            const Marks      marks = marksOf(input, {from, countOf(tables, from), 1});
            const Marks      out = converted(tables, from, to, marks, block.inputValue(aContained).asBool());
            input = std::find(out.begin(), out.end(), 1) != out.end()
                        ? makeComponent({to, countOf(tables, to), 1}, out)
                        : MObject::kNullObj;
        }
        if (!input.isNull())
            list.add(input);
    }
    return block.outputValue(aOutComp).set(data);                       // write
}

MObject componentToComponent::inputComponent(MDataBlock& block, const MObject& mesh) const
{
    if (block.inputValue(aUseComp).asShort() != 1)
        return firstOf(readComponents(block, MPlug(thisMObject(), aInComp)));
    const int             groupId = block.inputValue(aGroupId).asInt();
    const MFnGeometryData fn(mesh);
    const bool            exists = groupId >= 0 && fn.hasObjectGroup(static_cast<unsigned int>(groupId));
    return exists ? fn.objectGroupComponent(static_cast<unsigned int>(groupId)) : MObject::kNullObj;
}
