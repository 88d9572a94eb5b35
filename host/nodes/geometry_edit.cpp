// Nodes that move the points of geometry: transformGeometry by a matrix, polyTweak by an offset a vertex.
#include <cstring>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>

#include "data/mobject.h"
#include "graph/access.h"
#include "graph/evaluate.h"
#include "mesh/mesh.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/poly_edit.h"
#include "nurbs/nurbs_data.h"

namespace mirk::nodes {
namespace {

MObject geometry(const char* longName, const char* shortName, unsigned flags)
{
    MFnGenericAttribute fn;
    const MObject       a = fn.create(longName, shortName);
    for (MFnData::Type t : {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface})
        fn.addDataAccept(t);
    return flagged(a, flags);
}

/// Takes points (and normals) through a matrix; the matrix that the geometry carries stays what it was.
template <class Body>
void moveBody(Body& body, const MMatrix& m)
{
    double     carried[4][4];
    const bool identity = body.identity;
    static_assert(sizeof carried == sizeof body.matrix);
    std::memcpy(carried, body.matrix, sizeof carried);
    std::memcpy(body.matrix, m.matrix, sizeof carried);
    body.identity = false;
    if constexpr (std::is_same_v<Body, MeshBody>)
        body.bakeMatrix();
    else
        bakeMatrix(body);
    std::memcpy(body.matrix, carried, sizeof carried);
    body.identity = identity;
}

class TransformGeometry final : public MPxNode
{
public:
    static void*   creator() { return new TransformGeometry; }
    static MStatus initialize()
    {
        aInput = geometry("inputGeometry", "ig", kHide | kNoStore);
        aMatrix = nodes::matrix("transform", "txf");
        aInvert = number("invertTransform", "itf", Number::kBoolean);
        aOutput = geometry("outputGeometry", "og", kOut);
        add({aInput, aMatrix, aInvert, aOutput});
        affects({aInput, aMatrix, aInvert, state}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        MDataHandle out = block.outputValue(aOutput);
        out.copy(block.inputValue(aInput));
        out.setClean();
        if (block.inputValue(state).asShort() != 0)
            return MS::kSuccess;
        MMatrix m = block.inputValue(aMatrix).asMatrix();
        if (block.inputValue(aInvert).asBool())
            m = m.inverse();
        HandleAccess::detachForWrite(out);
        Object* data = HandleAccess::data(out);
        if (auto* mesh = dynamic_cast<MeshData*>(data))
            moveBody(*mesh->body, m);
        else if (auto* curve = dynamic_cast<CurveData*>(data))
            moveBody(*curve->body, m);
        else if (auto* surface = dynamic_cast<SurfaceData*>(data))
            moveBody(*surface->body, m);
        return MS::kSuccess;
    }
    MPlug passThroughToOne(const MPlug& plug) const override
    {
        return plug == aInput ? MPlug(thisMObject(), aOutput) : plug == aOutput ? MPlug(thisMObject(), aInput) : MPlug();
    }

private:
    static inline MObject aInput, aMatrix, aInvert, aOutput;
};

class PolyTweak final : public MPxNode
{
public:
    static void*   creator() { return new PolyTweak; }
    static MStatus initialize()
    {
        aInput = typed("inputPolymesh", "ip", MFnData::kMesh, kHide | kNoStore);
        aTweak = triple("tweak", "tk", Number::kFloat, 0, kMulti);
        aOutput = typed("output", "out", MFnData::kMesh, kOut | kHide);
        add({number("useOldPolyArchitecture", "uopa", Number::kBoolean), aInput, aTweak, aOutput});
        affects({aInput, aTweak, state}, {aOutput});
        for (unsigned i = 0; i < 3; ++i)
            affects({childOf(aTweak, i)}, {aOutput});
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        MDataHandle out = block.outputValue(aOutput);
        out.copy(block.inputValue(aInput));
        out.setClean();
        auto* mesh = dynamic_cast<MeshData*>(HandleAccess::data(out));
        Cell& tweaks = *HandleAccess::node(block)->cell(objectAs<Attribute>(aTweak));
        eval::pullDeep(tweaks);
        if (!mesh || tweaks.elementCount() == 0 || block.inputValue(state).asShort() != 0)
            return MS::kSuccess;
        HandleAccess::detachForWrite(out);
        mesh = dynamic_cast<MeshData*>(HandleAccess::data(out));
        float* points = mesh->body->writePoints();
        for (Cell* t : tweaks.elements->cells)
            if (t->index < mesh->body->vertexCount())
                for (int k = 0; k < 3; ++k)
                    points[3 * size_t(t->index) + size_t(k)] += float(t->number(k));
        return MS::kSuccess;
    }
    MPlug passThroughToOne(const MPlug& plug) const override
    {
        return plug == aInput ? MPlug(thisMObject(), aOutput) : plug == aOutput ? MPlug(thisMObject(), aInput) : MPlug();
    }

private:
    static inline MObject aInput, aTweak, aOutput;
};

}  // namespace

void registerGeometryEdits()
{
    registerRow({"transformGeometry", "node", 0x54474D54, MFn::kTransformGeometry, TransformGeometry::creator, TransformGeometry::initialize});
    registerRow({"polyTweak", "node", 0x50545754, MFn::kPolyTweak, PolyTweak::creator, PolyTweak::initialize});
}

}  // namespace mirk::nodes
