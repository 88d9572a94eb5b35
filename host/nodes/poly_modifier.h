// The base of the history nodes that change a mesh: inputPolymesh and inputComponents in, output out.
#pragma once
#include <initializer_list>

#include <maya/MPxNode.h>

#include "mesh/elements.h"
#include "mesh/mesh.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::nodes {

/// A subclass says what it does to a mesh; the rest of `compute` is here. Its type is registered with the base
/// "polyModifier", which has the attributes; its own ones are declared with `parameters`. Without effect by `nodeState`
/// or without a mesh the input passes as it is.
class PolyModifier : public MPxNode
{
public:
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    MPlug   passThroughToOne(const MPlug& plug) const override;
    static MStatus initialize();   ///< of the abstract base type

protected:
    /// Changes the mesh, which this node alone holds; what it shares with others detaches when written. `components`
    /// null means all, an empty list nothing; elements that do not exist may be named (see mesh/elements.h).
    virtual void apply(MeshBody& mesh, const ComponentListData* components, MDataBlock& block) = 0;
    /// True for modifiers that also change a mesh without vertices.
    virtual bool worksOnEmpty() const { return false; }

    /// For `initialize`: adds attributes that the output depends on, with their children.
    static void parameters(std::initializer_list<MObject> attributes);
    /// worldSpace and inputMatrix, of modifiers that measure: call in `initialize`.
    static void addSpace(MObject& worldSpace, MObject& inputMatrix);

    static inline MObject aInput, aComponents, aOutput;
};

/// Registers polyModifier, the base of the others; before them.
void registerPolyModifier();
/// A row of a modifier type.
template <class N>
void registerModifier(const char* type, unsigned id, MFn::Type apiType)
{
    registerRow({type, "polyModifier", id, apiType, N::creator, N::initialize});
}

}  // namespace mirk::nodes
