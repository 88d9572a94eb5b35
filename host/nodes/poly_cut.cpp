#include "nodes/poly_cut.h"

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>

#include "graph/access.h"
#include "mesh/close_border.h"
#include "mesh/cut.h"
#include "nodes/poly_modifier.h"

namespace mirk::nodes {

namespace {

/// Numbers of a triple in internal units.
MVector vectorOf(MDataBlock& block, const MObject& attribute)
{
    const Cell* cell = HandleAccess::cell(block.inputValue(attribute));
    return {cell->number(0), cell->number(1), cell->number(2)};
}

Vec3 vec3(const MVector& v) { return {v.x, v.y, v.z}; }

bool finite(const MMatrix& m)
{
    for (unsigned i = 0; i < 16; ++i)
        if (!std::isfinite(m[i / 4][i % 4]))
            return false;
    return true;
}

class PolyCut final : public PolyModifier
{
public:
    static void* creator() { return new PolyCut; }
    static MStatus initialize()
    {
        aCenter = triple("cutPlaneCenter", "pc", Unit::kDistance, 0, kKey);
        aRotate = tuple("cutPlaneRotate", "ro",
                        {unit("cutPlaneRotateX", "rx", Unit::kAngle, 0, kKey), unit("cutPlaneRotateY", "ry", Unit::kAngle, 0, kKey),
                         unit("cutPlaneRotateZ", "rz", Unit::kAngle, 0, kKey)}, kKey);
        const MObject size = tuple("cutPlaneSize", "ps", {unit("cutPlaneWidth", "pw", Unit::kDistance, 1, kKey),
                                                          unit("cutPlaneHeight", "ph", Unit::kDistance, 1, kKey)}, kKey);
        aExtract = number("extractFaces", "ef", Number::kBoolean, 0, kKey);
        aOffset = triple("extractOffset", "eo", Unit::kDistance, 0.5, kKey);
        aDelete = number("deleteFaces", "df", Number::kBoolean, 0, kKey);
        aOnObject = number("onObject", "oo", Number::kBoolean);
        add({size, matrix("manipMatrix", "mp", kHide)});   // the plane has no end; these are for its picture
        parameters({aCenter, aRotate, aExtract, aOffset, aDelete, aOnObject});
        addSpace(aWorldSpace, aInputMatrix);
        return MS::kSuccess;
    }

private:
    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock& block) override
    {
        PlaneCut cut;
        if (!placePlane(block, cut))
            return;
        cut.behind = block.inputValue(aDelete).asBool() ? PlaneCut::drop
                     : block.inputValue(aExtract).asBool() ? PlaneCut::moveApart : PlaneCut::keep;
        const bool       all = block.inputValue(aOnObject).asBool();
        const ElementSet faces = facesNamed(mesh, all ? nullptr : components);
        if (const Ref<MeshBody> after = cutByPlane(mesh, cut, &faces))
            mesh.assign(*after, true);
    }

    /// In the space of the points; false if there is no way there from the world.
    static bool placePlane(MDataBlock& block, PlaneCut& cut)
    {
        const MMatrix turn = MEulerRotation(vectorOf(block, aRotate)).asMatrix();
        MPoint        center(vectorOf(block, aCenter));
        MVector       normal(turn[2][0], turn[2][1], turn[2][2]), offset = vectorOf(block, aOffset);
        if (block.inputValue(aWorldSpace).asBool()) {
            const MMatrix m = block.inputValue(aInputMatrix).asMatrix();
            if (!finite(m) || m.det4x4() == 0)
                return false;
            const MMatrix inverse = m.inverse();
            center *= inverse;
            offset = offset * inverse;
            normal = MVector(m[0][0] * normal.x + m[0][1] * normal.y + m[0][2] * normal.z,
                             m[1][0] * normal.x + m[1][1] * normal.y + m[1][2] * normal.z,
                             m[2][0] * normal.x + m[2][1] * normal.y + m[2][2] * normal.z);
        }
        cut.center = vec3(MVector(center));
        cut.normal = vec3(normal);
        cut.offset = vec3(offset);
        return true;
    }

    static inline MObject aCenter, aRotate, aExtract, aOffset, aDelete, aOnObject, aWorldSpace, aInputMatrix;
};

class PolyCloseBorder final : public PolyModifier
{
public:
    static void* creator() { return new PolyCloseBorder; }
    static MStatus initialize() { return MS::kSuccess; }

private:
    /// Told without numbering edges.
    static bool namesAll(const ComponentListData* components)
    {
        for (size_t i = 0; components && i < components->list.size(); ++i)
            if (const Component& c = *components->list[i]; c.apiType() == MFn::kMeshEdgeComponent && c.complete && c.indices.empty())
                return true;
        return !components;
    }

    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock&) override
    {
        if (mesh.topology().border().empty())
            return;
        const ElementSet edges = namesAll(components) ? ElementSet(0, true) : edgesNamed(mesh, components);
        if (const Ref<MeshBody> after = closeBorder(mesh, &edges))
            mesh.assign(*after, true);
    }
};

}  // namespace

void registerPolyCuts()
{
    registerModifier<PolyCut>("polyCut", 0x504C4354, MFn::kPolyCut);
    registerModifier<PolyCloseBorder>("polyCloseBorder", 0x50434C42, MFn::kPolyCloseBorder);
}

}  // namespace mirk::nodes
