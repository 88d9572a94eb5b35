#include <cstdio>

#include "app.h"
#include "command/attr_value.h"
#include "command/message.h"
#include "graph/node.h"
#include "view/registry.h"

namespace app {

using mirk::Attribute;
using mirk::NodeType;

namespace {

const char* kindName(MPxNode::Type kind)
{
    switch (kind)
    {
    case MPxNode::kLocatorNode:      return "locator";
    case MPxNode::kDeformerNode:     return "deformer";
    case MPxNode::kGeometryFilter:   return "deformer";
    case MPxNode::kManipContainer:   return "manipulator container";
    case MPxNode::kSurfaceShape:     return "surface shape";
    case MPxNode::kFieldNode:        return "field";
    case MPxNode::kEmitterNode:      return "emitter";
    case MPxNode::kFluidEmitterNode: return "fluid emitter";
    case MPxNode::kTransformNode:    return "transform";
    case MPxNode::kObjectSet:        return "object set";
    default:                         return "depend";
    }
}

void printRow(const NodeType& t, size_t order)
{
    // an override is known by its registrant; by convention "FooNodePlugin" registers "FooDrawOverride"
    std::string       registrant = mirk::view::drawRegistrant(t.classification);
    const std::string ending = "NodePlugin";
    if (registrant.size() > ending.size() && registrant.ends_with(ending))
        registrant.replace(registrant.size() - ending.size(), ending.size(), "DrawOverride");
    char              line[512];
    std::snprintf(line, sizeof line, "%zu\t%s\t0x%06X\t%s\t%s\t%s\t%s\n", order, t.name.c_str(), t.id, kindName(t.kind),
                  t.classification.empty() ? "none" : t.classification.c_str(), registrant.empty() ? "-" : registrant.c_str(),
                  t.ownFirst < t.table.size() ? "ready" : "registered only");
    mirk::message::print(line);
}

std::string defaultText(const Attribute& a)
{
    using mirk::command::numberText;
    if (!a.children.empty() || mirk::storeDimension(a.store) < 1)
        return "-";
    if (a.kind == mirk::AttrKind::kEnum)
        for (const auto& [field, value] : a.fields)
            if (value == int(a.defaults[0]))
                return field;
    return numberText(mirk::command::toUi(a, a.defaults[0]));
}

std::string rangeText(const Attribute& a)
{
    using mirk::command::numberText;
    using mirk::command::toUi;
    if (a.kind == mirk::AttrKind::kEnum)
    {
        std::string fields;
        for (const auto& [field, value] : a.fields)
            fields += (fields.empty() ? "" : ", ") + field;
        return fields.empty() ? "-" : fields;
    }
    const bool min = a.limits & Attribute::kMin, max = a.limits & Attribute::kMax;
    if (!min && !max)
        return "-";
    return (min ? numberText(toUi(a, a.min)) : "") + ".." + (max ? numberText(toUi(a, a.max)) : "");
}

std::string typeText(const Attribute& a)
{
    std::string type = mirk::command::typeNameOf(a);
    if (a.kind == mirk::AttrKind::kGeneric)
        type = "generic";
    else if (a.kind == mirk::AttrKind::kCompound && !a.isTuple())
        type = "compound";
    return (type.empty() ? "data" : type) + (a.isArray() ? "[]" : "");
}

void printAttribute(const Attribute& a, int depth)
{
    const bool output = !a.is(Attribute::kWritable);
    mirk::message::print(std::string(size_t(depth) * 2, ' ') + a.longName + "\t" + a.shortName + "\t" + typeText(a) + "\t" +
                         (output ? "out" : "in") + "\t" + defaultText(a) + "\t" + rangeText(a) + "\n");
    for (const auto& child : a.children)
        printAttribute(*child, depth + 1);
}

}  // namespace

int nodes(const std::string& name)
{
    start(false);
    if (name.empty())
    {
        size_t order = 0;
        for (const NodeType* t : mirk::nodeTypes())
            if (t->plugin == "mirk")
                printRow(*t, ++order);
        return 0;
    }
    const NodeType* type = mirk::findNodeType(name);
    if (!type)
        mirk::command::fail("Unknown node type: " + name);
    mirk::message::print("attribute\tshort\ttype\tdirection\tdefault\trange\n");
    for (size_t i = type->plugin.empty() ? 0 : type->ownFirst; i < type->table.size(); ++i)
        if (!type->table[i]->parent)
            printAttribute(*type->table[i], 0);
    return 0;
}

}  // namespace app
