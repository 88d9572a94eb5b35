// The history nodes that change which vertices and faces a mesh has: polyMergeVert, polyDelVertex, polyDelFacet,
// polyNormal, polyTriangulate, and polyUnite and polySeparate, which have several meshes on one side.
#include <cstring>

#include <maya/MArrayDataBuilder.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>

#include "data/mobject.h"
#include "graph/access.h"
#include "mesh/face_ops.h"
#include "mesh/merge.h"
#include "mesh/unite.h"
#include "nodes/poly_edit.h"
#include "nodes/poly_modifier.h"

namespace mirk::nodes {
namespace {

void take(MeshBody& mesh, const Ref<MeshBody>& changed)
{
    if (changed)
        mesh.assign(*changed, true);
}

/// A modifier that is told nothing but components.
template <Ref<MeshBody> (*Change)(const MeshBody&, const ElementSet&), ElementSet (*Named)(const MeshBody&, const ComponentListData*)>
class ComponentModifier final : public PolyModifier
{
public:
    static void*   creator() { return new ComponentModifier; }
    static MStatus initialize() { return MS::kSuccess; }

private:
    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock&) override
    {
        take(mesh, Change(mesh, Named(mesh, components)));
    }
};

using PolyDelVertex = ComponentModifier<deleteVertices, verticesNamed>;
using PolyDelFacet = ComponentModifier<deleteFaces, facesNamed>;
using PolyTriangulate = ComponentModifier<triangulateFaces, facesNamed>;

class PolyMergeVert final : public PolyModifier
{
public:
    static void*   creator() { return new PolyMergeVert; }
    static MStatus initialize()
    {
        aDistance = unit("distance", "d", Unit::kDistance, 0, kKey);
        MFnUnitAttribute(aDistance).setMin(0);
        aTwo = number("alwaysMergeTwoVertices", "am", Number::kBoolean);
        parameters({aDistance, aTwo});
        addSpace(aWorldSpace, aMatrix);
        return MS::kSuccess;
    }

private:
    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock& block) override
    {
        const MMatrix     m = block.inputValue(aMatrix).asMatrix();
        const SpaceMatrix space = block.inputValue(aWorldSpace).asBool() ? SpaceMatrix(m.matrix) : SpaceMatrix();
        take(mesh, mergeVertices(mesh, verticesNamed(mesh, components), block.inputValue(aDistance).asDouble(),
                                 block.inputValue(aTwo).asBool(), space));
    }

    static inline MObject aDistance, aTwo, aWorldSpace, aMatrix;
};

class NormalModifier final : public PolyModifier
{
public:
    static void*   creator() { return new NormalModifier; }
    static MStatus initialize()
    {
        aMode = number("normalMode", "nm", Number::kShort, 0, kKey);
        aUserMode = number("userNormalMode", "unm", Number::kBoolean);
        parameters({aMode, aUserMode});
        return MS::kSuccess;
    }

private:
    enum Mode { kReverse = 0, kConform = 2 };

    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock& block) override
    {
        const int mode = block.inputValue(aMode).asShort();
        if (mode == kReverse)
            take(mesh, reverseFaces(mesh, facesNamed(mesh, components)));
        else if (mode == kConform)
            take(mesh, conformFaces(mesh, facesNamed(mesh, components)));
        else
            MGlobal::displayWarning(name() + ": the normal mode " + mode + " is none of 0 (reverse) and 2 (conform)");
    }

    static inline MObject aMode, aUserMode;
};

Ref<MeshData> meshOf(const MDataHandle& handle) { return Ref<MeshData>(dynamic_cast<MeshData*>(HandleAccess::data(handle))); }

class PolyUnite final : public MPxNode
{
public:
    static void*   creator() { return new PolyUnite; }
    static MStatus initialize()
    {
        aMeshes = typed("inputPoly", "ip", MFnData::kMesh, kMulti | kHide | kNoStore | kReset);   // a source that goes leaves nothing
        aMatrices = matrix("inputMat", "im", kMulti | kHide);
        aMergeUVs = choice("mergeUVSets", "mus", 1, {"Don't merge", "By Name", "By UV Links"});
        aOutput = typed("output", "out", MFnData::kMesh, kOut | kHide);
        add({number("useOldPolyArchitecture", "uopa", Number::kBoolean, 0, kHide), aMeshes, aMatrices, aMergeUVs, aOutput});
        affects({aMeshes, aMatrices, aMergeUVs, state}, {aOutput});
        return MS::kSuccess;
    }

    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        std::vector<Ref<MeshData>> meshes;
        std::vector<UnitePart>     parts;
        MArrayDataHandle           in = block.inputArrayValue(aMeshes), matrices = block.inputArrayValue(aMatrices);
        for (unsigned i = 0; i < in.elementCount(); ++i) {
            in.jumpToArrayElement(i);
            Ref<MeshData> mesh = meshOf(in.inputValue());
            if (!mesh)
                continue;
            const MMatrix m = matrices.jumpToElement(in.elementIndex()) ? matrices.inputValue().asMatrix() : MMatrix::identity;
            std::memcpy(parts.emplace_back(UnitePart{mesh->body.get(), {}}).matrix, m.matrix, sizeof m.matrix);
            meshes.push_back(std::move(mesh));
        }
        MDataHandle out = block.outputValue(aOutput);
        out.setClean();
        if (block.inputValue(state).asShort() != 0 && !meshes.empty()) {
            const Ref<Data> first = meshes[0]->share();
            out.setMObject(wrap(first));
            return MS::kSuccess;
        }
        std::string         why;
        const auto          how = block.inputValue(aMergeUVs).asShort() == 0 ? UniteUVs::apart : UniteUVs::byName;
        const Ref<MeshBody> whole = unite(parts, how, &why);
        if (!whole) {
            MGlobal::displayError(name() + ": " + why.c_str() + ".");
            return MS::kFailure;
        }
        out.setMObject(wrap(make<MeshData>(whole)));
        return MS::kSuccess;
    }

private:
    static inline MObject aMeshes, aMatrices, aMergeUVs, aOutput;
};

/// output[i] has the i-th shell. A shell listed in removeShells is left out and has no number.
class PolySeparate final : public MPxNode
{
public:
    static void*   creator() { return new PolySeparate; }
    static MStatus initialize()
    {
        aInput = typed("inputPoly", "ip", MFnData::kMesh, kHide | kNoStore);
        aCount = number("icount", "ic", Number::kInt, 0);
        aRemove = number("removeShells", "rs", Number::kInt, 0, kMulti | kLoose);
        aOutput = typed("output", "out", MFnData::kMesh, kOut | kHide | kMulti | kBuilder);
        add({aInput, aCount, aRemove, aOutput});
        affects({aInput, aCount, aRemove, state}, {aOutput});
        return MS::kSuccess;
    }

    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug != aOutput)
            return MS::kUnknownParameter;
        const Ref<MeshData> mesh = meshOf(block.inputValue(aInput));
        const std::vector<Ref<MeshData>> parts = mesh ? shells(*mesh, block) : std::vector<Ref<MeshData>>();
        MArrayDataHandle    out = block.outputArrayValue(aOutput);
        MArrayDataBuilder   builder = out.builder();
        for (unsigned i = 0; i < parts.size(); ++i)
            builder.addElement(i).setMObject(wrap(parts[i]));
        out.set(builder);
        for (unsigned i = 0; i < out.elementCount(); ++i) {   // connected ones that have no shell any more
            out.jumpToArrayElement(i);
            if (out.elementIndex() >= parts.size())
                out.outputValue().setMObject(wrap(make<MeshData>()));
        }
        out.setAllClean();
        return MS::kSuccess;
    }

private:
    static std::vector<Ref<MeshData>> shells(const MeshData& mesh, MDataBlock& block)
    {
        std::vector<Ref<MeshData>> out;
        const FaceShells& all = mesh.body->topology().shells();
        if (block.inputValue(state).asShort() != 0 || all.count() < 2) {
            const Ref<Data> same = mesh.share();
            out.emplace_back(static_cast<MeshData*>(same.get()));
            return out;
        }
        std::vector<char> removed(size_t(all.count()), 0);
        MArrayDataHandle  remove = block.inputArrayValue(aRemove);
        for (unsigned i = 0; i < remove.elementCount(); ++i) {
            remove.jumpToArrayElement(i);
            if (const int s = remove.inputValue().asInt(); s >= 0 && s < all.count())
                removed[size_t(s)] = 1;
        }
        const int most = block.inputValue(aCount).asInt();
        for (int s = 0; s < all.count() && (most <= 0 || int(out.size()) < most); ++s)
            if (!removed[size_t(s)])
                out.push_back(make<MeshData>(extractFaces(*mesh.body, (*all.faces)[s])));
        return out;
    }

    static inline MObject aInput, aCount, aRemove, aOutput;
};

}  // namespace

void registerPolyOperations()
{
    registerModifier<PolyMergeVert>("polyMergeVert", 0x504D5645, MFn::kPolyMergeVert);
    registerModifier<PolyDelVertex>("polyDelVertex", 0x5044454C, MFn::kPolyDelVertex);
    registerModifier<PolyDelFacet>("polyDelFacet", 0x50444641, MFn::kPolyDelFacet);
    registerModifier<PolyTriangulate>("polyTriangulate", 0x50545249, MFn::kPolyTriangulate);
    registerModifier<NormalModifier>("polyNormal", 0x504E4F52, MFn::kPolyNormal);
    registerRow({"polyUnite", "polyBase", 0x50554E49, MFn::kPolyUnite, PolyUnite::creator, PolyUnite::initialize});
    registerRow({"polySeparate", "polyBase", 0x50534550, MFn::kPolySeparate, PolySeparate::creator, PolySeparate::initialize});
}

}  // namespace mirk::nodes
