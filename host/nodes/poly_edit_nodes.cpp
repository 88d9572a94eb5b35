// The history nodes of the polygon edits: one class a kind.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MString.h>

#include "graph/access.h"
#include "nodes/poly_cut.h"
#include "nodes/poly_edit.h"
#include "nodes/poly_modifier.h"

namespace mirk::nodes {

namespace {

/// `Edit` gives the kind; attributes are made per type.
template <const PolyEdit& (*Edit)()>
class PolyEditNode final : public PolyModifier
{
public:
    static void* creator() { return new PolyEditNode; }

    static MStatus initialize()
    {
        for (size_t i = 0; i < Edit().numbers.size(); ++i)
        {
            const PolyEdit::Number& n = Edit().numbers[i];
            aNumbers[i] = n.angle ? unit(n.longName, n.shortName, Unit::kAngle, n.value, kKey) : number(n.longName, n.shortName, Number::kDouble, n.value, kKey);
            parameters({aNumbers[i]});
        }
        for (size_t i = 0; i < Edit().texts.size(); ++i)
        {
            aTexts[i] = typed(Edit().texts[i].longName, Edit().texts[i].shortName, MFnData::kString);
            parameters({aTexts[i]});
        }
        return MS::kSuccess;
    }

private:
    void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock& block) override
    {
        PolyParameters p;
        for (size_t i = 0; i < Edit().numbers.size(); ++i)
            p.number[i] = Edit().numbers[i].angle ? HandleAccess::cell(block.inputValue(aNumbers[i]))->number() : block.inputValue(aNumbers[i]).asDouble();
        for (size_t i = 0; i < Edit().texts.size(); ++i)
            p.text[i] = block.inputValue(aTexts[i]).asString().asChar();
        Edit().apply(mesh, components, p);
    }
    bool worksOnEmpty() const override { return true; }

    static inline MObject aNumbers[8], aTexts[2];
};

template <const PolyEdit& (*Edit)()>
void registerOne()
{
    registerModifier<PolyEditNode<Edit>>(Edit().type, Edit().id, MFn::kDependencyNode);
}

}  // namespace

void registerPolyEdits()
{
    registerPolyModifier();
    registerOne<softEdgeEdit>();
    registerOne<colorEdit>();
    registerOne<normalEdit>();
    registerOne<uvEdit>();
    registerOne<setEdit>();
    registerGeometryEdits();
    registerPolyOperations();
    registerPolyCuts();
}

}  // namespace mirk::nodes
