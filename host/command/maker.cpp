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

namespace {

/// The maker of a command that creates; with its flags' values.
Node& newMaker(Call& call, const Maker& maker)
{
    if (!call.args.empty())
        fail(std::string(call.command->name) + ": '" + call.names()[0] + "' is not expected here");
    NodeType* type = findNodeType(maker.nodeType);
    if (!type)
        fail(std::string("Unknown object type: ") + maker.nodeType);
    Node* node = edit::createNode(type);
    setFromFlags(call, maker, *node);
    return *node;
}

/// A shape fed by an output of the maker; without history it keeps what came and is fed no more.
void addShape(const Maker& maker, Node& node, const std::string& output, Node& transform, bool history)
{
    Node* shape = dag::createNode(findNodeType(maker.shapeType), shapeName(transform.name), &transform);
    Cell& from = *node.cell(node.findAttribute(output));
    Cell& input = *shape->cell(shape->findAttribute(maker.input));
    edit::connect(from, input);
    if (history)
        return;
    eval::pull(input);
    const Ref<Data> data = input.data() ? input.data()->share() : Ref<Data>();
    edit::disconnect(from, input);
    setGeometry(*shape, data);
}

Value made(Node& transform, Node& node, bool history)
{
    selection::set({itemOf(transform)});
    if (history)
        return Value(Strings{nodeName(transform), nodeName(node)});
    edit::deleteNode(node);
    return Value(Strings{nodeName(transform)});
}

}  // namespace

bool isNoCreation(Call& call, const Maker& maker, Value& result)
{
    if (call.isQuery())
        return result = queryFlag(call, maker), true;
    if (!call.isEdit())
        return false;
    setFromFlags(call, maker, makerOf(call, maker));
    return result = Value(true), true;
}

Value runMaker(Call& call, const Maker& maker, std::span<const char* const> parts)
{
    Value result;
    if (isNoCreation(call, maker, result))
        return result;
    Node& node = newMaker(call, maker);
    if (!call.boolean("object", true))
        return Value(Strings{nodeName(node)});
    const bool history = call.boolean("constructionHistory", true);
    Node*      whole = dag::createNode(findNodeType("transform"), call.str("name", maker.transformName));
    if (parts.empty())
        addShape(maker, node, maker.output, *whole, history);
    for (size_t i = 0; i < parts.size(); ++i) {
        Node* transform = dag::createNode(findNodeType("transform"), parts[i] + whole->name, whole);
        addShape(maker, node, maker.output + (i ? std::to_string(i) : std::string()), *transform, history);
    }
    return made(*whole, node, history);
}

}  // namespace mirk::command
