#include "texture/network.h"

#include "graph/source.h"
#include "texture/evaluate.h"

namespace mirk::texture {
namespace {

/// For each attribute the top-level attributes whose dirt reaches it.
std::vector<std::vector<int>> invert(const NodeType& type)
{
    std::vector<std::vector<int>> from(type.table.size());
    for (size_t slot = 0; slot < type.affects.size(); ++slot)
        for (const int affected : type.affects[slot]) {
            const int top = type.table[slot]->topParent()->slot;
            auto&     list = from[size_t(affected)];
            if (list.empty() || list.back() != top)
                list.push_back(top);
        }
    return from;
}

bool computed(const Cell& cell)
{
    for (const Attribute* a = cell.attr; a; a = a->parent)
        if (cell.node->isComputed(a))
            return true;
    return !cell.attr->is(Attribute::kWritable);
}

/// A connection from outside the scene's textures gives way: readers of many places put theirs in its place.
bool driven(Cell& uv)
{
    bool children = false;
    for (size_t i = 0; i < uv.attr->children.size(); ++i)
        if (const Cell* c = uv.childIfAny(i))
            children = children || c->source;
    const Cell* source = eval::sourceOf(uv);
    return children || (source && source->node->user);
}

}  // namespace

const Attribute* uvAttribute(const Node& node)
{
    const Attribute* a = node.type->find("uvCoord");
    const bool usable = a && !a->parent && !a->isArray() && a->children.size() == 2 && storeDimension(a->store) == 2 &&
                        a->is(Attribute::kWritable) && !node.isComputed(a);
    return usable ? a : nullptr;
}

Network::Network(const std::vector<Cell*>& roots)
{
    for (Cell* root : roots)
        add(*root, -1);
    while (!queue_.empty()) {
        const int next = queue_.back();
        queue_.pop_back();
        expand(next);
    }
    spreadVarying();
}

int Network::find(const Cell& cell) const
{
    const auto it = places_.find(&cell);
    return it == places_.end() ? -1 : it->second;
}

int Network::add(Cell& cell, int dependent)
{
    const auto [it, fresh] = places_.try_emplace(&cell, int(vertices_.size()));
    if (fresh) {
        vertices_.emplace_back().cell = &cell;
        queue_.push_back(it->second);
    }
    if (dependent >= 0) {
        vertices_[size_t(it->second)].dependents.push_back(dependent);
        vertices_[size_t(dependent)].inputs.push_back(it->second);
    }
    return it->second;
}

void Network::expand(int vertex)
{
    Cell& cell = *vertices_[size_t(vertex)].cell;
    if (cell.attr == uvAttribute(*cell.node) && !driven(cell)) {
        vertices_[size_t(vertex)].seed = true;
        return;
    }
    walkCells(cell, [&](Cell& below) {
        if (&below != &cell && below.source)
            add(below, vertex);
    });
    if (Cell* source = eval::sourceOf(cell))
        add(*source, vertex);
    else if (computed(cell) && !cell.node->computing)
        expandNode(vertex);
}

void Network::expandNode(int vertex)
{
    Node& node = *vertices_[size_t(vertex)].cell->node;
    hasTexture_ = hasTexture_ || isTexture2d(*node.type);
    if (node.dependsOnDirtyCall || node.ownDependsOn) {   // it alone knows: any input may matter
        node.eachAttribute([&](const Attribute& a) {
            if (!a.parent && !node.isComputed(&a))
                addInputs(node, a, vertex);
        });
        return;
    }
    auto [from, fresh] = affectedBy_.try_emplace(node.type);
    if (fresh)
        from->second = invert(*node.type);
    const auto take = [&](const Attribute& output) {
        if (size_t(output.slot) < from->second.size())
            for (const int slot : from->second[size_t(output.slot)])
                addInputs(node, *node.type->table[size_t(slot)], vertex);
    };
    const Attribute& asked = *vertices_[size_t(vertex)].cell->attr;
    for (const Attribute* a = asked.parent; a; a = a->parent)
        take(*a);
    walkAttributes(const_cast<Attribute&>(asked), take);
}

void Network::addInputs(Node& node, const Attribute& top, int dependent)
{
    if (&top == uvAttribute(node)) {
        add(*node.cell(&top), dependent);
        return;
    }
    Cell* cell = node.isComputed(&top) ? node.cell(&top) : node.cellIfAny(&top);
    if (!cell)
        return;
    walkCells(*cell, [&](Cell& c) {
        if (c.source || node.isComputed(c.attr))
            add(c, dependent);
    });
}

void Network::spreadVarying()
{
    std::vector<int> queue;
    const auto mark = [&](int i) {
        if (!std::exchange(vertices_[size_t(i)].varying, true))
            queue.push_back(i);
    };
    for (size_t i = 0; i < vertices_.size(); ++i)
        if (vertices_[i].seed)
            mark(int(i));
    while (!queue.empty()) {
        const int next = queue.back();
        queue.pop_back();
        for (const int dependent : vertices_[size_t(next)].dependents)
            mark(dependent);
    }
}

}  // namespace mirk::texture
