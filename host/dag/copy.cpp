#include "dag/copy.h"

#include "command/registry.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"

namespace mirk::dag {
namespace {

Ref<Attribute> copyAttribute(const Attribute& a)
{
    auto copy = make<Attribute>(a);
    copy->slot = -1;
    copy->parent = nullptr;
    copy->children.clear();
    for (const auto& c : a.children) {
        Ref<Attribute> child = copyAttribute(*c);
        child->parent = copy.get();
        copy->children.push_back(child);
    }
    return copy;
}

/// Takes the values that are set or come in; a cell nobody touched keeps its default.
bool touched(Cell& cell)
{
    bool any = false;
    walkCells(cell, [&](Cell& c) { any = any || c.is(Cell::kSet) || c.source; });
    return any;
}

Node* copyBelow(Node& node, Node& parent, const std::string& name, const CopyOptions& options);

void copyChildren(Node& from, Node& to, const CopyOptions& options)
{
    const std::vector<Node*> children = from.dag->children;
    for (Node* child : children)
        if (options.instanceLeaf && child->type->shape)
            addInstance(*child, to);
        else
            copyBelow(*child, to, child->name, options);
}

Node* copyBelow(Node& node, Node& parent, const std::string& name, const CopyOptions& options)
{
    Node* copy = createNode(node.type, name, &parent);
    copyValues(node, *copy);
    copyChildren(node, *copy, options);
    return copy;
}

}  // namespace

void copyValues(Node& from, Node& to)
{
    for (const auto& d : from.dynamics)
        if (!to.findAttribute(d->longName))
            edit::addDynamic(to, copyAttribute(*d));
    for (size_t slot = 0; slot < from.cells.size(); ++slot) {
        Cell* cell = from.cells[slot];
        if (!cell || cell->parent || from.isComputed(cell->attr) || cell->attr->kind == AttrKind::kMessage || !touched(*cell))
            continue;
        Attribute* own = to.findAttribute(cell->attr->longName);
        Cell*      target = own ? to.cell(own) : nullptr;
        if (!target)
            continue;
        eval::pullDeep(*cell);
        edit::change(*target, [&] { target->copyFrom(*cell); });
    }
    if (from.user && to.user)
        to.user->copyInternalData(from.user.get());
}

Node* duplicate(Node& node, const CopyOptions& options)
{
    if (!node.dag || node.dag->parents.empty())
        throw command::Error("Cannot duplicate " + node.name + ".");
    Node& parent = *node.dag->parents.front();
    if (node.type->shape) {
        Node* transform = createNode(parent.type, parent.name, parent.dag->parents.front());
        copyValues(parent, *transform);
        if (options.instance || options.instanceLeaf)
            addInstance(node, *transform);
        else
            copyBelow(node, *transform, node.name, options);
        return transform;
    }
    if (!options.instance)
        return copyBelow(node, parent, node.name, options);
    // an instance of a transform: a transform of its own above the same children
    Node* copy = createNode(node.type, node.name, &parent);
    copyValues(node, *copy);
    const std::vector<Node*> children = node.dag->children;
    for (Node* child : children)
        addInstance(*child, *copy);
    return copy;
}

}  // namespace mirk::dag
