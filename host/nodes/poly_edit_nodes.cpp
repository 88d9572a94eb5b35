// The history nodes of the polygon edits: one class a kind, all with the same compute.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include "data/mobject.h"
#include "graph/access.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/poly_edit.h"

namespace mirk::nodes {

namespace {

/// `Edit` gives the kind; attributes are made per type.
template <const PolyEdit& (*Edit)()>
class PolyEditNode : public MPxNode
{
public:
    static void* creator() { return new PolyEditNode; }

    static MStatus initialize()
    {
        aInput = typed("inputPolymesh", "ip", MFnData::kMesh, kHide | kNoStore);
        aComponents = typed("inputComponents", "ics", MFnData::kComponentList, kHide);
        aOutput = typed("output", "out", MFnData::kMesh, kOut | kHide);
        add({aInput, aComponents, aOutput});
        affects({aInput, aComponents, state}, {aOutput});
        for (size_t i = 0; i < Edit().numbers.size(); ++i)
        {
            const PolyEdit::Number& n = Edit().numbers[i];
            aNumbers[i] = n.angle ? unit(n.longName, n.shortName, Unit::kAngle, n.value, kKey) : number(n.longName, n.shortName, Number::kDouble, n.value, kKey);
            add({aNumbers[i]});
            affects({aNumbers[i]}, {aOutput});
        }
        for (size_t i = 0; i < Edit().texts.size(); ++i)
        {
            aTexts[i] = typed(Edit().texts[i].longName, Edit().texts[i].shortName, MFnData::kString);
            add({aTexts[i]});
            affects({aTexts[i]}, {aOutput});
        }
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
        if (!dynamic_cast<MeshData*>(HandleAccess::data(out)))
            return MS::kSuccess;
        HandleAccess::detachForWrite(out);
        auto* mesh = dynamic_cast<MeshData*>(HandleAccess::data(out));
        PolyParameters p;
        for (size_t i = 0; i < Edit().numbers.size(); ++i)
            p.number[i] = Edit().numbers[i].angle ? HandleAccess::cell(block.inputValue(aNumbers[i]))->number() : block.inputValue(aNumbers[i]).asDouble();
        for (size_t i = 0; i < Edit().texts.size(); ++i)
            p.text[i] = block.inputValue(aTexts[i]).asString().asChar();
        const MObject list = block.inputValue(aComponents).data();
        Edit().apply(*mesh->body, objectAs<ComponentListData>(list), p);
        return MS::kSuccess;
    }

    static inline MObject aInput, aComponents, aOutput, aNumbers[8], aTexts[2];
};

template <const PolyEdit& (*Edit)()>
void registerOne()
{
    using N = PolyEditNode<Edit>;
    registerRow({Edit().type, "node", Edit().id, MFn::kDependencyNode, N::creator, N::initialize});
}

}  // namespace

void registerPolyEdits()
{
    registerOne<softEdgeEdit>();
    registerOne<colorEdit>();
    registerOne<normalEdit>();
    registerOne<uvEdit>();
    registerOne<setEdit>();
    registerGeometryEdits();
}

}  // namespace mirk::nodes
