#include "volumes/componentLists.h"

#include <maya/MDataHandle.h>
#include <maya/MFnComponent.h>
#include <maya/MFnDoubleIndexedComponent.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>
#include <maya/MPlugArray.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr struct { ComponentKind kind; MFn::Type type; } kTypes[] = {
    {ComponentKind::kVertex, MFn::kMeshVertComponent}, {ComponentKind::kEdge, MFn::kMeshEdgeComponent},
    {ComponentKind::kFace, MFn::kMeshPolygonComponent}, {ComponentKind::kMap, MFn::kMeshMapComponent},
    {ComponentKind::kCurveCV, MFn::kCurveCVComponent}, {ComponentKind::kSurfaceCV, MFn::kSurfaceCVComponent}};

MIntArray toIntArray(const std::vector<int>& indices)
{
    MIntArray array(static_cast<unsigned int>(indices.size()), 0);
    if (!indices.empty())
        std::copy(indices.begin(), indices.end(), &array[0]);
    return array;
}

/// A list with one component of mesh vertices.
MObject vertexList(const MIntArray& elements)
{
    MFnSingleIndexedComponent vertices;
    MObject                   component = vertices.create(MFn::kMeshVertComponent);
    vertices.addElements(elements);
    MFnComponentListData list;
    MObject              data = list.create();
    list.add(component);
    return data;
}

void markPairs(const MFnDoubleIndexedComponent& component, const ComponentSpace& space, Marks& marks)
{
    MIntArray u, v;
    component.getElements(u, v);
    const int rows = space.columns > 0 ? space.count / space.columns : 0;
    for (unsigned int i = 0; i < u.length(); ++i)
        if (u[i] >= 0 && u[i] < rows && v[i] >= 0 && v[i] < space.columns)
            marks[static_cast<std::size_t>(u[i]) * static_cast<std::size_t>(space.columns) +
                  static_cast<std::size_t>(v[i])] = 1;
}

} // namespace

MFn::Type componentType(ComponentKind kind)
{
    for (const auto& row : kTypes)
        if (row.kind == kind)
            return row.type;
    return MFn::kInvalid;
}

bool kindOf(MFn::Type type, ComponentKind& kind)
{
    for (const auto& row : kTypes) {
        if (row.type == type) {
            kind = row.kind;
            return true;
        }
    }
    return false;
}

MObject makeComponent(const ComponentSpace& space, const Marks& marks)
{
    const std::vector<int> indices = indicesOf(marks);
    if (space.kind != ComponentKind::kSurfaceCV) {
        MFnSingleIndexedComponent single;
        const MObject             component = single.create(componentType(space.kind));
        single.addElements(toIntArray(indices));
        return component;
    }
    MIntArray u(static_cast<unsigned int>(indices.size()), 0), v = u;
    for (unsigned int i = 0; i < u.length(); ++i) {
        u[i] = indices[i] / space.columns;
        v[i] = indices[i] % space.columns;
    }
    MFnDoubleIndexedComponent pairs;
    const MObject             component = pairs.create(MFn::kSurfaceCVComponent);
    pairs.addElements(u, v);
    return component;
}

MObject emptyMarker(const ComponentSpace& space)
{
    const int outside = space.count + 100;
    if (space.kind == ComponentKind::kSurfaceCV) {
        MFnDoubleIndexedComponent pairs;
        const MObject             component = pairs.create(MFn::kSurfaceCVComponent);
        pairs.addElement(outside, outside);
        return component;
    }
    MFnSingleIndexedComponent single;
    const MObject             component = single.create(componentType(space.kind));
    single.addElement(outside);
    return component;
}

bool isEmptyComponent(const MObject& component)
{
    const MFnComponent fn(component);
    return !fn.isComplete() && fn.elementCount() == 0;
}

Marks marksOf(const MObject& component, const ComponentSpace& space)
{
    Marks marks(static_cast<std::size_t>(std::max(space.count, 0)), 0);
    if (component.apiType() != componentType(space.kind))
        return marks;
    if (MFnComponent(component).isComplete()) {
        std::fill(marks.begin(), marks.end(), static_cast<unsigned char>(1));
    } else if (space.kind == ComponentKind::kSurfaceCV) {
        markPairs(MFnDoubleIndexedComponent(component), space, marks);
    } else {
        MIntArray elements;
        MFnSingleIndexedComponent(component).getElements(elements);
        const MIntArray& ids = elements;
        for (unsigned int i = 0; i < ids.length(); ++i)
            if (ids[i] >= 0 && ids[i] < space.count)
                marks[static_cast<std::size_t>(ids[i])] = 1;
    }
    return marks;
}

Marks marksOf(const MFnComponentListData& list, const ComponentSpace& space)
{
    Marks marks(static_cast<std::size_t>(std::max(space.count, 0)), 0);
    for (unsigned int i = 0; i < list.length(); ++i)
        addMarks(marks, marksOf(list[i], space));
    return marks;
}

MObject counted(const MObject& component, const ComponentSpace& space)
{
    const bool complete = component.apiType() == componentType(space.kind) && MFnComponent(component).isComplete();
    return complete ? makeComponent(space, marksOf(component, space)) : component;
}

MObject firstOf(const MObject& list)
{
    if (list.apiType() != MFn::kComponentListData)
        return MObject::kNullObj;
    const MFnComponentListData fn(list);
    return fn.length() > 0 ? fn[0] : MObject::kNullObj;
}

MObject asVertexList(const MObject& data)
{
    if (data.apiType() == MFn::kIntArrayData) {
        MIntArray ids, vertices;
        MObject   array = data;
        MFnIntArrayData(array).copyTo(ids);
        for (unsigned int i = 0; i < ids.length(); ++i)
            if (ids[i] >= 0)
                vertices.append(ids[i]);
        return vertexList(vertices);
    }
    if (data.apiType() != MFn::kComponentListData)
        return MObject::kNullObj;
    const MObject first = firstOf(data);
    if (first.isNull() || first.apiType() != MFn::kDynParticleSetComponent || MFnComponent(first).isComplete())
        return data;
    MIntArray elements;
    MFnSingleIndexedComponent(first).getElements(elements);
    return vertexList(elements);
}

MObject readComponents(MDataBlock& block, const MPlug& plug)
{
    MPlugArray sources;
    if (plug.connectedTo(sources, true, false) && sources.length() > 0)
        return asVertexList(sources[0].asMObject());
    return asVertexList(block.inputValue(plug).data());
}

void mergeCompLists(MFnComponentListData& to, const MObject& from)
{
    if (from.apiType() != MFn::kComponentListData)
        return;
    const MFnComponentListData list(from);
    for (unsigned int i = 0; i < list.length(); ++i) {
        MObject component = list[i];
        if (!isEmptyComponent(component))
            to.add(component);
    }
}

void writeObjectGroup(MObject geometry, unsigned int id, MObject component)
{
    MFnGeometryData fn;
    if (fn.setObject(geometry) != MS::kSuccess)
        return;
    if (fn.hasObjectGroup(id)) {
        MObject old = fn.objectGroupComponent(id);
        if (!old.isNull())
            fn.removeObjectGroupComponent(id, old);
        fn.removeObjectGroup(id);
    }
    fn.addObjectGroup(id);
    fn.addObjectGroupComponent(id, component);
}
