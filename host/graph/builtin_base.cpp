// The abstract base of all node types, and the attributes that MPxNode names.
#include <maya/MPxNode.h>

#include "data/mobject.h"
#include "graph/node.h"

MObject MPxNode::message;
MObject MPxNode::caching;
MObject MPxNode::state;
MObject MPxNode::frozen;
MObject MPxNode::isHistoricallyInteresting;

namespace mirk {
namespace {

const Attribute* g_nodeState = nullptr;

Ref<Attribute> number(const char* longName, const char* shortName, MFnNumericData::Type type, double value)
{
    auto a = make<Attribute>(AttrKind::kNumeric, longName, shortName);
    a->numeric = type;
    a->store = storeOf(type);
    a->defaults[0] = value;
    return a;
}

}  // namespace

const Attribute* nodeStateAttribute() { return g_nodeState; }

NodeType* registerBaseType()
{
    if (NodeType* known = findNodeType("node"))
        return known;
    auto type = std::make_unique<NodeType>();
    type->name = "node";
    type->abstract = true;
    type->apiType = MFn::kDependencyNode;

    auto message = make<Attribute>(AttrKind::kMessage, "message", "msg");
    message->set(Attribute::kWritable, false);
    message->set(Attribute::kStorable, false);
    auto caching = number("caching", "cch", MFnNumericData::kBoolean, 0);
    auto frozen = number("frozen", "fzn", MFnNumericData::kBoolean, 0);
    auto interesting = number("isHistoricallyInteresting", "ihi", MFnNumericData::kByte, 2);
    auto state = make<Attribute>(AttrKind::kEnum, "nodeState", "nds");
    state->store = Store::kShort;
    state->fields = {{"Normal", 0}, {"HasNoEffect", 1}, {"Blocking", 2},
                     {"Waiting-Normal", 3}, {"Waiting-HasNoEffect", 4}, {"Waiting-Blocking", 5}};
    auto membership = make<Attribute>(AttrKind::kMessage, "binMembership", "bnm");
    for (auto& a : {caching, frozen, interesting, membership})
        a->set(Attribute::kHidden, true);

    for (auto& a : {message, caching, frozen, interesting, state, membership})
        type->add(a);
    g_nodeState = state.get();
    MPxNode::message = wrap(message);
    MPxNode::caching = wrap(caching);
    MPxNode::state = wrap(state);
    MPxNode::frozen = wrap(frozen);
    MPxNode::isHistoricallyInteresting = wrap(interesting);
    return registerNodeType(std::move(type));
}

}  // namespace mirk
