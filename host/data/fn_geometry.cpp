// The function set on geometry data: the matrix that travels with it and its object groups.
#include <maya/MFnGeometryData.h>
#include <maya/MFnNurbsCurveData.h>
#include <maya/MFnNurbsSurfaceData.h>
#include <maya/MMatrix.h>

#include "data/component.h"
#include "data/fn_base.h"
#include "nurbs/nurbs_data.h"

using namespace mirk;

namespace {

GeometryBody* bodyOf(const MObject& object)
{
    auto* data = objectAs<GeometryData>(object);
    return data ? &data->geometry() : nullptr;
}

GeometryBody::Group* groupOf(GeometryBody* body, unsigned id)
{
    if (body)
        for (GeometryBody::Group& g : body->groups)
            if (g.id == id)
                return &g;
    return nullptr;
}

}  // namespace

MFnGeometryData::MFnGeometryData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnGeometryData::~MFnGeometryData() = default;
MFn::Type MFnGeometryData::type() const { return MFn::kGeometryData; }

bool MFnGeometryData::matrixIsIdentity(MStatus* s) const
{
    const GeometryBody* body = bodyOf(object_);
    return reported(s, body ? MS::kSuccess : MS::kFailure, !body || body->identity);
}
bool MFnGeometryData::matrixIsNotIdentity(MStatus* s) const { return !matrixIsIdentity(s); }

MStatus MFnGeometryData::getMatrix(MMatrix& matrix) const
{
    const GeometryBody* body = bodyOf(object_);
    if (!body)
        return MS::kFailure;
    matrix = MMatrix(body->matrix);
    return MS::kSuccess;
}

MStatus MFnGeometryData::setMatrix(const MMatrix& matrix)
{
    GeometryBody* body = bodyOf(object_);
    if (!body)
        return MS::kFailure;
    matrix.get(body->matrix);
    body->identity = matrix == MMatrix::identity;
    return MS::kSuccess;
}

bool MFnGeometryData::hasObjectGroup(unsigned id, MStatus* s) const
{
    GeometryBody* body = bodyOf(object_);
    return reported(s, body ? MS::kSuccess : MS::kFailure, groupOf(body, id) != nullptr);
}

unsigned MFnGeometryData::objectGroupCount(MStatus* s) const
{
    const GeometryBody* body = bodyOf(object_);
    return reported(s, body ? MS::kSuccess : MS::kFailure, body ? unsigned(body->groups.size()) : 0u);
}

unsigned MFnGeometryData::objectGroup(unsigned index, MStatus* s) const
{
    const GeometryBody* body = bodyOf(object_);
    if (!body || index >= body->groups.size())
        return reported(s, body ? MS::kInvalidParameter : MS::kFailure, 0u);
    return reported(s, MS::kSuccess, body->groups[index].id);
}

MFn::Type MFnGeometryData::objectGroupType(unsigned id, MStatus* s) const
{
    const GeometryBody::Group* g = groupOf(bodyOf(object_), id);
    if (!g)
        return reported(s, MS::kFailure, MFn::kInvalid);
    return reported(s, MS::kSuccess, g->component ? g->component->apiType() : MFn::kInvalid);
}

MObject MFnGeometryData::objectGroupComponent(unsigned id, MStatus* s) const
{
    const GeometryBody::Group* g = groupOf(bodyOf(object_), id);
    if (!g)
        return reported(s, MS::kFailure, MObject());
    return reported(s, MS::kSuccess, g->component ? wrap(copyComponent(*g->component)) : MObject());
}

MStatus MFnGeometryData::addObjectGroup(unsigned id)
{
    GeometryBody* body = bodyOf(object_);
    if (!body)
        return MS::kFailure;
    if (!groupOf(body, id))
        body->groups.push_back({id, {}});
    return MS::kSuccess;
}

MStatus MFnGeometryData::removeObjectGroup(unsigned id)
{
    GeometryBody*        body = bodyOf(object_);
    GeometryBody::Group* g = groupOf(body, id);
    if (!g)
        return MS::kFailure;
    body->groups.erase(body->groups.begin() + (g - body->groups.data()));
    return MS::kSuccess;
}

MStatus MFnGeometryData::changeObjectGroupId(unsigned sourceId, unsigned destId)
{
    GeometryBody*        body = bodyOf(object_);
    GeometryBody::Group* g = groupOf(body, sourceId);
    if (!g)
        return MS::kFailure;
    if (sourceId != destId && groupOf(body, destId))
        return MS::kInvalidParameter;
    g->id = destId;
    return MS::kSuccess;
}

MStatus MFnGeometryData::addObjectGroupComponent(unsigned id, MObject& component)
{
    GeometryBody::Group* g = groupOf(bodyOf(object_), id);
    const Component*     added = objectAs<Component>(component);
    if (!g)
        return MS::kFailure;
    if (!added || (g->component && g->component->apiType() != added->apiType()))
        return MS::kInvalidParameter;
    if (g->component && g->component->complete)
        return MS::kSuccess;
    if (!g->component || added->complete) {
        g->component = copyComponent(*added);
        return MS::kSuccess;
    }
    Ref<Component> merged = copyComponent(*g->component);
    addElements(*merged, added->indices.data(), added->count());
    g->component = merged;
    return MS::kSuccess;
}

MStatus MFnGeometryData::setObjectGroupComponent(unsigned id, MObject& component)
{
    GeometryBody::Group* g = groupOf(bodyOf(object_), id);
    const Component*     c = objectAs<Component>(component);
    if (!g)
        return MS::kFailure;
    if (!c)
        return MS::kInvalidParameter;
    g->component = copyComponent(*c);
    return MS::kSuccess;
}

MStatus MFnGeometryData::removeObjectGroupComponent(unsigned id, MObject& component)
{
    GeometryBody::Group* g = groupOf(bodyOf(object_), id);
    const Component*     c = objectAs<Component>(component);
    if (!g || !g->component)
        return MS::kFailure;
    if (!c || c->apiType() != g->component->apiType())
        return MS::kInvalidParameter;
    Ref<Component>         rest = copyComponent(*g->component);
    const std::vector<int> gone = allElements(*c);
    removeElements(*rest, gone.data(), gone.size() / size_t(c->dimensions()));
    g->component = rest;
    return MS::kSuccess;
}

MStatus MFnGeometryData::copyObjectGroups(MObject& sourceGeometry)
{
    GeometryBody* body = bodyOf(object_);
    GeometryBody* source = bodyOf(sourceGeometry);
    if (!body)
        return MS::kFailure;
    if (!source)
        return MS::kInvalidParameter;
    if (source == body)
        return MS::kSuccess;
    for (const GeometryBody::Group& g : source->groups) {
        if (GeometryBody::Group* present = groupOf(body, g.id))
            present->component = g.component;
        else
            body->groups.push_back(g);
    }
    return MS::kSuccess;
}

// --- curve and surface data ------------------------------------------------------------------------------------------

MFnNurbsCurveData::MFnNurbsCurveData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnNurbsCurveData::~MFnNurbsCurveData() = default;
MFn::Type MFnNurbsCurveData::type() const { return MFn::kNurbsCurveData; }
MObject   MFnNurbsCurveData::create(MStatus* s)
{
    object_ = wrap(make<CurveData>());
    return reported(s, MS::kSuccess, object_);
}

MFnNurbsSurfaceData::MFnNurbsSurfaceData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnNurbsSurfaceData::~MFnNurbsSurfaceData() = default;
MFn::Type MFnNurbsSurfaceData::type() const { return MFn::kNurbsSurfaceData; }
MObject   MFnNurbsSurfaceData::create(MStatus* s)
{
    object_ = wrap(make<SurfaceData>());
    return reported(s, MS::kSuccess, object_);
}
