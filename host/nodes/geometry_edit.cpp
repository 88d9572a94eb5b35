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
#include "nodes/pass_on.h"
#include "nodes/poly_edit.h"
#include "nodes/poly_modifier.h"
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
        auto* data = passOn<GeometryData>(block, aInput, aOutput);
        if (!data)
            return MS::kSuccess;
        MMatrix m = block.inputValue(aMatrix).asMatrix();
        if (block.inputValue(aInvert).asBool())
            m = m.inverse();
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

class PolyTweak final : public PolyModifier
{
public:
    static void*   creator() { return new PolyTweak; }
    static MStatus initialize()
    {
        aTweak = triple("tweak", "tk", Number::kFloat, 0, kMulti);
        parameters({aTweak});
        return MS::kSuccess;
    }

private:
    void apply(MeshBody& mesh, const ComponentListData*, MDataBlock& block) override
    {
        Cell& tweaks = *HandleAccess::node(block)->cell(objectAs<Attribute>(aTweak));
        eval::pullDeep(tweaks);
        if (tweaks.elementCount() == 0)
            return;
        float* points = mesh.writePoints();
        for (Cell* t : tweaks.elements->cells)
            if (t->index < mesh.vertexCount())
                for (int k = 0; k < 3; ++k)
                    points[3 * size_t(t->index) + size_t(k)] += float(t->number(k));
    }

    static inline MObject aTweak;
};

}  // namespace

void registerGeometryEdits()
{
    registerRow({"transformGeometry", "node", 0x54474D54, MFn::kTransformGeometry, TransformGeometry::creator, TransformGeometry::initialize});
    registerModifier<PolyTweak>("polyTweak", 0x50545754, MFn::kPolyTweak);
}

}  // namespace mirk::nodes
