// Nodes whose type nobody registered: they keep what their file said.
#include "nodes/unknown.h"

#include <maya/MPxNode.h>

#include "nodes/builtin.h"

namespace mirk::nodes {

namespace {

class Unknown : public MPxNode
{
public:
    static void* creator() { return new Unknown; }
};

}  // namespace

void registerUnknownTypes()
{
    registerRow({"unknown", "node", 0x554E4B4E, MFn::kUnknown, Unknown::creator, nullptr});
    const NodeType* transform = findNodeType("transform");
    registerRow({"unknownTransform", "transform", 0x554E4B54, MFn::kUnknownTransform, transform->creator, nullptr, "", "", transform->make}, Role::dag);
    registerRow({"unknownDag", "dagNode", 0x554E4B44, MFn::kUnknownDag, Unknown::creator, nullptr}, Role::shape);
}

}  // namespace mirk::nodes
