#include "command/maker.h"

#include <cstring>

#include "command/shape_edit.h"
#include "graph/evaluate.h"

namespace mirk::command {

namespace {

/// The maker node behind a name: the node itself, or what feeds the shape.
Node& makerOf(const Call& call, const Maker& maker)
{
    for (const Item& item : callItems(call))
    {
        Node* node = nodeOf(item);
        if (node->type->isA(maker.nodeType))
            return *node;
        if (node->dag)
            for (Node* shape : shapesOf(*node))
                if (const Attribute* in = shape->findAttribute(maker.input))
                    for (Cell* c = shape->cellIfAny(in); c && c->source;)
                    {
                        if (c->source->node->type->isA(maker.nodeType))
                            return *c->source->node;
                        const Attribute* next = c->source->node->findAttribute("inputPolymesh");
                        c = next ? c->source->node->cellIfAny(next) : nullptr;
                    }
    }
    fail(std::string(call.command->name) + ": no node of type " + maker.nodeType + " is given");
}

void setFromFlags(const Call& call, const Maker& maker, Node& node)
{
    for (const Call::Use& use : call.uses)
        for (const MakerFlag& f : maker.flags)
            if (std::strcmp(f.flag, use.flag->longName) == 0 && !use.args.empty())
            {
                const Attribute* a = node.findAttribute(f.attribute);
                Cell* cell = a ? node.cell(a) : nullptr;
                if (!cell)
                    fail(std::string("The attribute '") + f.attribute + "' of '" + nodeName(node) + "' is missing");
                for (size_t k = 0; k < use.args.size(); ++k)
                {
                    Cell* leaf = use.args.size() > 1 ? cell->child(k) : cell;
                    double v = fromUi(*leaf->attr, use.args[k].asFloat());
                    if (leaf->attr->limits & Attribute::kMin)
                        v = std::max(v, leaf->attr->min);
                    if (leaf->attr->limits & Attribute::kMax)
                        v = std::min(v, leaf->attr->max);
                    edit::setNumber(*leaf, v);
                }
            }
}

Value queryFlag(Call& call, const Maker& maker)
{
    Node& node = makerOf(call, maker);
    for (const MakerFlag& f : maker.flags)
        if (call.has(f.flag))
        {
            Cell& cell = *node.cell(node.findAttribute(f.attribute));
            eval::pullDeep(cell);
            if (cell.attr->children.empty())
                return storeElement(cell.store()) == Store::kDouble || cell.store() == Store::kDouble || cell.store() == Store::kFloat
                           ? Value(toUi(*cell.attr, cell.number())) : Value(int(cell.number()));
            std::vector<double> out;
            for (size_t k = 0; k < cell.attr->children.size(); ++k)
                out.push_back(toUi(*cell.child(k)->attr, cell.child(k)->number()));
            return Value(out);
        }
    if (call.has("name"))
        return Value(nodeName(node));
    fail(std::string(call.command->name) + ": a flag that says what to ask has to be given");
}

}  // namespace

Value runMaker(Call& call, const Maker& maker)
{
    if (call.isQuery())
        return queryFlag(call, maker);
    if (call.isEdit())
    {
        setFromFlags(call, maker, makerOf(call, maker));
        return Value(true);
    }
    if (!call.args.empty())
        fail(std::string(call.command->name) + ": '" + call.names()[0] + "' is not expected here");
    NodeType* type = findNodeType(maker.nodeType);
    if (!type)
        fail(std::string("Unknown object type: ") + maker.nodeType);
    const bool history = call.boolean("constructionHistory", true), object = call.boolean("object", true);
    Node* node = edit::createNode(type);
    setFromFlags(call, maker, *node);
    if (!object)
        return Value(Strings{nodeName(*node)});
    Node* transform = dag::createNode(findNodeType("transform"), call.str("name", maker.transformName));
    Node* shape = dag::createNode(findNodeType(maker.shapeType), shapeName(transform->name), transform);
    Cell& output = *node->cell(node->findAttribute(maker.output));
    Cell& input = *shape->cell(shape->findAttribute(maker.input));
    edit::connect(output, input);
    selection::set({itemOf(*transform)});
    if (history)
        return Value(Strings{nodeName(*transform), nodeName(*node)});
    eval::pull(input);
    const Ref<Data> data = input.data() ? input.data()->share() : Ref<Data>();
    edit::disconnect(output, input);
    setGeometry(*shape, data);
    edit::deleteNode(*node);
    return Value(Strings{nodeName(*transform)});
}

}  // namespace mirk::command
