// mesh, nurbsCurve, nurbsSurface, camera and locator.
#include <algorithm>
#include <cfloat>
#include <cmath>

#include <maya/MBoundingBox.h>
#include <maya/MPoint.h>
#include <maya/MPxLocatorNode.h>

#include "dag/dag.h"
#include "data/mobject.h"
#include "dynamics/particle.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "mesh/mesh.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/dag_attrs.h"
#include "nodes/geometry_shape.h"
#include "nodes/shape_box.h"
#include "nurbs/curve.h"
#include "nurbs/nurbs_data.h"
#include "nurbs/surface.h"

namespace mirk::nodes {
namespace {

GeometryAttrs meshAttrs, curveAttrs, surfaceAttrs;
const Attribute *g_localPosition, *g_localScale, *g_worldPosition;

template <class T>
Ref<GeometryData> freshData() { return make<T>(); }

class MeshShape final : public GeometryShape, public MeshSource
{
public:
    MeshShape(NodeType* type, std::string name) : GeometryShape(type, std::move(name), meshAttrs) {}
    Ref<MeshData> meshForRead() override { return cast(read()); }
    Ref<MeshData> meshForWrite() override { return cast(write(freshData<MeshData>)); }
    void          meshChanged() override { changed(); }

private:
    static Ref<MeshData> cast(const Ref<GeometryData>& d) { return Ref<MeshData>(dynamic_cast<MeshData*>(d.get())); }
    void addOffsets(GeometryData& geometry, const Elements& offsets) override
    {
        auto* mesh = dynamic_cast<MeshData*>(&geometry);
        if (!mesh)
            return;
        float* points = mesh->body->writePoints();
        for (Cell* c : offsets.cells)
            if (c->index < mesh->body->vertexCount())
                for (int k = 0; k < 3; ++k)
                    points[3 * c->index + k] += float(c->number(k));
    }
};

void offsetCvs(Buffer<MPoint>& cvs, const Elements& offsets)
{
    for (Cell* c : offsets.cells)
        if (size_t(c->index) < cvs.size()) {
            MPoint& cv = cvs[size_t(c->index)];
            cv.x += c->number(0) * cv.w;   // homogeneous
            cv.y += c->number(1) * cv.w;
            cv.z += c->number(2) * cv.w;
        }
}

class CurveShape final : public GeometryShape, public CurveSource
{
public:
    CurveShape(NodeType* type, std::string name) : GeometryShape(type, std::move(name), curveAttrs) {}
    Ref<CurveData> curveForRead() override { return cast(read()); }
    Ref<CurveData> curveForWrite() override { return cast(write(freshData<CurveData>)); }
    void           curveChanged() override { changed(); }

private:
    static Ref<CurveData> cast(const Ref<GeometryData>& d) { return Ref<CurveData>(dynamic_cast<CurveData*>(d.get())); }
    void addOffsets(GeometryData& geometry, const Elements& offsets) override
    {
        if (auto* curve = dynamic_cast<CurveData*>(&geometry)) {
            offsetCvs(detach(curve->body->cvs), offsets);
            syncPeriodic(*curve->body);
        }
    }
};

class SurfaceShape final : public GeometryShape, public SurfaceSource
{
public:
    SurfaceShape(NodeType* type, std::string name) : GeometryShape(type, std::move(name), surfaceAttrs) {}
    Ref<SurfaceData> surfaceForRead() override { return cast(read()); }
    Ref<SurfaceData> surfaceForWrite() override { return cast(write(freshData<SurfaceData>)); }
    void             surfaceChanged() override { changed(); }

private:
    static Ref<SurfaceData> cast(const Ref<GeometryData>& d) { return Ref<SurfaceData>(dynamic_cast<SurfaceData*>(d.get())); }
    void addOffsets(GeometryData& geometry, const Elements& offsets) override
    {
        if (auto* surface = dynamic_cast<SurfaceData*>(&geometry)) {
            offsetCvs(detach(surface->body->cvs), offsets);
            syncPeriodic(*surface->body);
        }
    }
};

template <class Shape>
Node* makeShape(NodeType* type, std::string name) { return new Shape(type, std::move(name)); }

bool computeGeometry(Node& node, Cell& cell)
{
    auto* shape = dynamic_cast<GeometryShape*>(&node);
    return (shape && shape->compute(cell)) || computeDag(node, cell);
}

bool computeLocator(Node& node, Cell& cell)
{
    const Attribute* a = cell.attr;
    while (a && a != g_worldPosition)
        a = a->parent;
    if (!a || !g_worldPosition)
        return computeDag(node, cell);
    Cell* element = &cell;
    while (element && !element->isElement())
        element = element->parent;
    if (!element)
        return true;
    double p[3];
    pulledTriple(node, g_localPosition, p);
    Cell* matrix = node.cell(dagAttrs().worldMatrix)->element(element->index);
    eval::pull(*matrix);
    const double* m = matrix->own.matrix;
    for (size_t k = 0; k < 3; ++k)
        element->child(k)->setNumber(p[0] * m[k] + p[1] * m[4 + k] + p[2] * m[8 + k] + m[12 + k]);
    eval::clean(*element);
    return true;
}

// ---- attributes --------------------------------------------------------------------------------------------------

MObject base(const Attribute* a) { return wrap(const_cast<Attribute*>(a)); }

/// What all geometry shapes declare: world space follows the input and the world matrix, the box the input.
void connectGeometry(const MObject& input, const MObject& stored, const MObject& offsets, const MObject& local, const MObject& world)
{
    const DagAttrs& d = dagAttrs();
    affects({input, stored, offsets}, {local, world, base(d.boundingBox), base(d.center)});
    affects({base(d.worldMatrix)}, {world});
    affects({base(d.instObjGroups)}, {local, world});
}

MStatus initControlPoint()
{
    add({typed("tweakLocation", "twl", MFnData::kComponentList, kHide)});
    return MS::kSuccess;
}

MStatus initMesh()
{
    MObject in = typed("inMesh", "i", MFnData::kMesh, kNoStore), stored = typed("cachedInMesh", "cim", MFnData::kMesh, kHide);
    MObject out = typed("outMesh", "o", MFnData::kMesh, kOut), world = typed("worldMesh", "w", MFnData::kMesh, kOut | kWorld);
    MObject points = tuple("pnts", "pt",
                           {unit("pntx", "px", Unit::kDistance), unit("pnty", "py", Unit::kDistance), unit("pntz", "pz", Unit::kDistance)},
                           kMulti);
    add({in, stored, out, world, points, number("displayColors", "dcol", Number::kBoolean, 0, kChannel),
         typed("displayColorChannel", "dcc", MFnData::kString), typed("currentColorSet", "ccls", MFnData::kString),
         typed("currentUVSet", "cuvs", MFnData::kString), number("displayVertices", "dv", Number::kBoolean),
         number("displayEdges", "de", Number::kByte), number("displayNormal", "dn", Number::kBoolean),
         number("normalSize", "ns", Number::kFloat, 0.4), number("displaySmoothMesh", "dsm", Number::kShort),
         number("smoothLevel", "lev", Number::kShort, 2, 0, 7), choice("quadSplit", "qsp", 1, {"Left", "Best Shape", "Right"}),
         number("doubleSided", "ds", Number::kBoolean, 1), number("opposite", "op", Number::kBoolean),
         number("smoothShading", "smo", Number::kBoolean, 1), number("castsShadows", "csh", Number::kBoolean, 1),
         number("receiveShadows", "rcsh", Number::kBoolean, 1), number("primaryVisibility", "vis", Number::kBoolean, 1)});
    connectGeometry(in, stored, points, out, world);
    return MS::kSuccess;
}

MObject controlPoints()
{
    return tuple("controlPoints", "cp",
                 {unit("xValue", "xv", Unit::kDistance), unit("yValue", "yv", Unit::kDistance), unit("zValue", "zv", Unit::kDistance)},
                 kMulti);
}

MStatus initCurve()
{
    MObject in = typed("create", "cr", MFnData::kNurbsCurve, kNoStore), stored = typed("cached", "cc", MFnData::kNurbsCurve, kHide);
    MObject out = typed("local", "l", MFnData::kNurbsCurve, kOut), world = typed("worldSpace", "ws", MFnData::kNurbsCurve, kOut | kWorld);
    MObject points = controlPoints();
    add({in, stored, out, world, points, number("dispCV", "dcv", Number::kBoolean), number("dispEP", "dep", Number::kBoolean),
         number("dispHull", "dh", Number::kBoolean), number("lineWidth", "lw", Number::kFloat, -1),
         number("dispCurveEndPoints", "dcep", Number::kBoolean)});
    connectGeometry(in, stored, points, out, world);
    return MS::kSuccess;
}

MStatus initSurface()
{
    MObject in = typed("create", "cr", MFnData::kNurbsSurface, kNoStore), stored = typed("cached", "cc", MFnData::kNurbsSurface, kHide);
    MObject out = typed("local", "l", MFnData::kNurbsSurface, kOut), world = typed("worldSpace", "ws", MFnData::kNurbsSurface, kOut | kWorld);
    MObject points = controlPoints();
    add({in, stored, out, world, points, number("doubleSided", "ds", Number::kBoolean, 1), number("opposite", "op", Number::kBoolean),
         number("curvePrecision", "cvp", Number::kShort, 4), number("divisionsU", "nufa", Number::kShort, 0), number("divisionsV", "nvfa", Number::kShort, 0),
         number("dispCV", "dcv", Number::kBoolean), number("dispHull", "dh", Number::kBoolean),
         number("castsShadows", "csh", Number::kBoolean, 1), number("receiveShadows", "rcsh", Number::kBoolean, 1),
         number("primaryVisibility", "vis", Number::kBoolean, 1)});
    connectGeometry(in, stored, points, out, world);
    return MS::kSuccess;
}

MStatus initCamera()
{
    add({number("renderable", "rnd", Number::kBoolean, 0), number("horizontalFilmAperture", "hfa", Number::kDouble, 1.41732, 0.001, 0),
         number("verticalFilmAperture", "vfa", Number::kDouble, 0.94488, 0.001, 0),
         number("focalLength", "fl", Number::kDouble, 35, 2.5, 100000, kKey), number("lensSqueezeRatio", "lsr", Number::kDouble, 1, 0.0001, 0),
         number("cameraScale", "cs", Number::kDouble, 1, kKey), number("horizontalFilmOffset", "hfo", Number::kDouble, 0, kKey),
         number("verticalFilmOffset", "vfo", Number::kDouble, 0, kKey), unit("nearClipPlane", "ncp", Unit::kDistance, 0.1, kKey),
         unit("farClipPlane", "fcp", Unit::kDistance, 10000, kKey), number("fStop", "fs", Number::kDouble, 5.6, 1, 64, kKey),
         unit("focusDistance", "fd", Unit::kDistance, 5, kKey), unit("shutterAngle", "sa", Unit::kAngle, 2.5132741228718345, kKey),
         unit("centerOfInterest", "coi", Unit::kDistance, 5, kKey), number("orthographic", "o", Number::kBoolean),
         unit("orthographicWidth", "ow", Unit::kDistance, 10), choice("filmFit", "ff", 0, {"Fill", "Horizontal", "Vertical", "Overscan"}),
         number("overscan", "ovr", Number::kDouble, 1), triple("tumblePivot", "tp", Unit::kDistance),
         triple("backgroundColor", "col", Number::kFloat, 0, kColor, "RGB"), typed("imageName", "imn", MFnData::kString),
         typed("depthName", "den", MFnData::kString), typed("maskName", "man", MFnData::kString), typed("homeCommand", "hc", MFnData::kString),
         number("displayFilmGate", "dfg", Number::kBoolean), number("displayResolution", "dr", Number::kBoolean)});
    return MS::kSuccess;
}

MStatus initLocator()
{
    const DagAttrs& d = dagAttrs();
    MObject         position = triple("localPosition", "lp", Unit::kDistance, 0, kChannel), scale = triple("localScale", "los", Number::kDouble, 1, kChannel);
    MObject         world = triple("worldPosition", "wp", Unit::kDistance, 0, kOut);
    flagged(world, kOut | kWorld);
    add({position, world, scale});
    affects({position, base(d.worldMatrix)}, {world});
    affects({position, scale}, {base(d.boundingBox), base(d.center)});
    MObject* mine[] = {&MPxLocatorNode::localPosition, &MPxLocatorNode::worldPosition, &MPxLocatorNode::localScale};
    MObject* parts[] = {&MPxLocatorNode::localPositionX, &MPxLocatorNode::worldPositionX, &MPxLocatorNode::localScaleX,
                        &MPxLocatorNode::localPositionY, &MPxLocatorNode::worldPositionY, &MPxLocatorNode::localScaleY,
                        &MPxLocatorNode::localPositionZ, &MPxLocatorNode::worldPositionZ, &MPxLocatorNode::localScaleZ};
    const MObject made[] = {position, world, scale};
    for (unsigned i = 0; i < 3; ++i) {
        *mine[i] = made[i];
        for (unsigned k = 0; k < 3; ++k)
            *parts[3 * k + i] = childOf(made[i], k);
    }
    return MS::kSuccess;
}

GeometryAttrs find(const NodeType& t, const char* input, const char* stored, const char* offsets, const char* local, const char* world)
{
    return {t.find(input), t.find(stored), t.find(offsets), t.find(local), t.find(world)};
}

class ShapeUser : public MPxNode
{
public:
    static void* creator() { return new ShapeUser; }
};

// ---- what other layers ask of shapes -----------------------------------------------------------------------------

bool extentOf(Node& node, MFn::Type type, int extent[3])
{
    extent[0] = extent[1] = extent[2] = 0;
    if (auto* source = dynamic_cast<MeshSource*>(&node)) {
        const Ref<MeshData> mesh = source->meshForRead();
        const MeshBody*     b = mesh ? mesh->body.get() : nullptr;
        switch (type) {
        case MFn::kMeshVertComponent: extent[0] = b ? b->vertexCount() : 0; return true;
        case MFn::kMeshPolygonComponent: extent[0] = b ? b->faceCount() : 0; return true;
        case MFn::kMeshEdgeComponent: extent[0] = b ? b->edgeCount() : 0; return true;
        case MFn::kMeshMapComponent:
            extent[0] = b ? int(b->uvSets().sets[size_t(b->uvSets().current)].uvs->size()) : 0;
            return true;
        case MFn::kMeshVtxFaceComponent:
            extent[0] = b ? b->vertexCount() : 0;
            extent[1] = b ? b->faceCount() : 0;
            return true;
        default: return false;
        }
    }
    if (auto* source = dynamic_cast<CurveSource*>(&node)) {
        const Ref<CurveData> curve = source->curveForRead();
        extent[0] = curve ? curve->body->cvCount() : 0;
        return type == MFn::kCurveCVComponent;
    }
    if (auto* source = dynamic_cast<SurfaceSource*>(&node)) {
        const Ref<SurfaceData> surface = source->surfaceForRead();
        extent[0] = surface ? surface->body->cvsU : 0;
        extent[1] = surface ? surface->body->cvsV : 0;
        return type == MFn::kSurfaceCVComponent;
    }
    return false;
}

Node* shapeBelow(const char* type, Node* parent) { return dag::createNode(findNodeType(type), "", parent); }

/// The new shape's node and, without a parent, the transform made for it.
Node* returned(Node* shape, bool underParent) { return underParent ? shape : shape->dag->parents.front(); }

template <class T>
Ref<Object> newShape(const char* type, Object* parent, Ref<T> geometry, Ref<Object>& shape)
{
    Node* above = dynamic_cast<Node*>(parent);
    if (parent && (!above || !above->hasFn(MFn::kTransform)))
        return nullptr;
    Node* made = shapeBelow(type, above);
    static_cast<GeometryShape*>(made)->store(geometry);
    shape = Ref<Object>(made);
    return Ref<Object>(returned(made, above));
}

Ref<Object> meshShape(Object* parent, Ref<MeshData> mesh, Ref<Object>& shape) { return newShape("mesh", parent, mesh, shape); }
Ref<Object> curveShape(Object* parent, Ref<CurveData> curve, Ref<Object>& shape) { return newShape("nurbsCurve", parent, curve, shape); }
Ref<Object> surfaceShape(Object* parent, Ref<SurfaceData> surface, Ref<Object>& shape) { return newShape("nurbsSurface", parent, surface, shape); }

struct Box
{
    double v[6];
    bool   empty = true;
    void add(double x, double y, double z)
    {
        const double p[3] = {x, y, z};
        for (int k = 0; k < 3; ++k) {
            v[k] = empty ? p[k] : std::min(v[k], p[k]);
            v[3 + k] = empty ? p[k] : std::max(v[3 + k], p[k]);
        }
        empty = false;
    }
    bool give(double out[6]) const
    {
        if (!empty)
            std::copy(v, v + 6, out);
        return !empty;
    }
};

constexpr int kSamples = 16;   // a span: within a few thousandths of its size

std::vector<double> sampleParams(const nurbs::Knots& k)
{
    std::vector<double> params;
    for (int span : nurbs::spans(k))
        for (int i = 0; i < kSamples; ++i)
            params.push_back(k.low(span) + (k.high(span) - k.low(span)) * i / kSamples);
    params.push_back(k.end());
    return params;
}

bool curveBox(CurveSource& source, double out[6])
{
    const Ref<CurveData> data = source.curveForRead();
    Box                  box;
    if (data && !data->body->empty()) {
        const nurbs::CurveView curve(*data->body);
        for (double u : sampleParams(curve.k)) {
            const MVector p = nurbs::pointAt(curve, u);
            box.add(p.x, p.y, p.z);
        }
    }
    return box.give(out);
}

bool surfaceBox(SurfaceSource& source, double out[6])
{
    const Ref<SurfaceData> data = source.surfaceForRead();
    Box                    box;
    if (data && !data->body->empty()) {
        const nurbs::SurfaceView  surface(*data->body);
        const std::vector<double> us = sampleParams(surface.u), vs = sampleParams(surface.v);
        for (double u : us)
            for (double v : vs) {
                const MVector p = nurbs::pointAt(surface, u, v);
                box.add(p.x, p.y, p.z);
            }
    }
    return box.give(out);
}

bool locatorBox(Node& node, double out[6])
{
    double p[3], s[3];
    pulledTriple(node, g_localPosition, p);
    pulledTriple(node, g_localScale, s);
    for (int k = 0; k < 3; ++k) {
        out[k] = p[k] - std::abs(s[k]);
        out[3 + k] = p[k] + std::abs(s[k]);
    }
    return true;
}

}  // namespace

bool shapeBox(Node& node, double box[6])
{
    if (auto* source = dynamic_cast<MeshSource*>(&node)) {
        const Ref<MeshData> mesh = source->meshForRead();
        if (!mesh || mesh->body->vertexCount() == 0)
            return false;
        float b[6];
        mesh->body->bounds(b);
        std::copy(b, b + 6, box);
        return true;
    }
    if (auto* source = dynamic_cast<CurveSource*>(&node))
        return curveBox(*source, box);
    if (auto* source = dynamic_cast<SurfaceSource*>(&node))
        return surfaceBox(*source, box);
    if (auto* user = dynamic_cast<MPxLocatorNode*>(node.user.get()); user && user->isBounded()) {
        const MBoundingBox b = user->boundingBox();
        const MPoint       corners[2] = {b.min(), b.max()};
        for (unsigned k = 0; k < 6; ++k)
            box[k] = corners[k / 3][k % 3];
        return box[0] <= box[3] && box[1] <= box[4] && box[2] <= box[5];
    }
    if (dynamics::isParticle(node))
        return dynamics::box(node, box);
    return node.type->isA("locator") && locatorBox(node, box);
}

void registerShapeTypes()
{
    const auto geometryHooks = [](NodeType& t) { t.computeBase = computeGeometry; };
    const auto locatorHooks = [](NodeType& t) { t.computeBase = computeLocator; };
    registerRow({"deformableShape", "geometryShape", 0, MFn::kShape, nullptr, nullptr}, Role::shape);
    registerRow({"controlPoint", "deformableShape", 0, MFn::kShape, nullptr, initControlPoint}, Role::shape);
    registerRow({"curveShape", "controlPoint", 0, MFn::kShape, nullptr, nullptr}, Role::shape);
    registerRow({"surfaceShape", "controlPoint", 0, MFn::kShape, nullptr, nullptr}, Role::shape);
    meshAttrs = find(*registerRow({"mesh", "surfaceShape", 0x444D5348, MFn::kMesh, ShapeUser::creator, initMesh, "polySurface", "", makeShape<MeshShape>},
                                  Role::shape, geometryHooks),
                     "inMesh", "cachedInMesh", "pnts", "outMesh", "worldMesh");
    curveAttrs = find(*registerRow({"nurbsCurve", "curveShape", 0x4E435256, MFn::kNurbsCurve, ShapeUser::creator, initCurve, "curve", "", makeShape<CurveShape>},
                                   Role::shape, geometryHooks),
                      "create", "cached", "controlPoints", "local", "worldSpace");
    surfaceAttrs = find(*registerRow({"nurbsSurface", "surfaceShape", 0x4E535246, MFn::kNurbsSurface, ShapeUser::creator, initSurface, "surface", "", makeShape<SurfaceShape>},
                                     Role::shape, geometryHooks),
                        "create", "cached", "controlPoints", "local", "worldSpace");
    registerRow({"camera", "shape", 0x4443414D, MFn::kCamera, ShapeUser::creator, initCamera}, Role::shape);
    NodeType* locator = registerRow({"locator", "geometryShape", 0x4C4F4354, MFn::kLocator, ShapeUser::creator, initLocator}, Role::shape, locatorHooks);
    g_localPosition = locator->find("localPosition");
    g_localScale = locator->find("localScale");
    g_worldPosition = locator->find("worldPosition");

    createMeshShape = meshShape;
    createCurveShape = curveShape;
    createSurfaceShape = surfaceShape;
    names::componentExtent = extentOf;
}

}  // namespace mirk::nodes
