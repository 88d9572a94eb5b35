#include "graph/node.h"

#include <algorithm>

#include "dag/dag.h"
#include "graph/context.h"
#include "graph/evaluate.h"

namespace mirk {
namespace {

struct Types
{
    std::unordered_map<std::string, NodeType*> byName;
    std::unordered_map<unsigned, NodeType*>    byId;
    std::vector<NodeType*>                     ordered;
    std::vector<NodeType*>                     retired;   // undo steps and unknown nodes may still need them
    size_t                                     next = 0;
};

Types& types()
{
    static Types* t = new Types;   // node types outlive every static object
    return *t;
}

}  // namespace

Attribute* NodeType::find(const std::string& name) const
{
    auto it = byName.find(name);
    return it == byName.end() ? nullptr : it->second;
}

bool NodeType::isA(const std::string& typeName) const
{
    for (const NodeType* t = this; t; t = t->base)
        if (t->name == typeName)
            return true;
    return false;
}

void NodeType::add(Ref<Attribute> top)
{
    walkAttributes(*top, [&](Attribute& a) {
        a.slot = int(table.size());
        a.belowMulti = a.parent && (a.parent->belowMulti || a.parent->isArray());
        table.push_back(Ref<Attribute>(&a));
        byName.emplace(a.longName, &a);
        byName.emplace(a.shortName, &a);
    });
    affects.resize(table.size());
    computed.resize(table.size(), 0);
}

void NodeType::inherit(NodeType* from)
{
    base = from;
    table = from->table;
    affects = from->affects;
    computed = from->computed;
    byName = from->byName;
    ownFirst = table.size();
    functionTypes.push_back(from->apiType);
    functionTypes.insert(functionTypes.end(), from->functionTypes.begin(), from->functionTypes.end());
    dag = from->dag;
    shape = from->shape;
    if (!make)
        make = from->make;
    if (!onDirty)
        onDirty = from->onDirty;
    if (!computeBase)
        computeBase = from->computeBase;
}

bool NodeType::addAffects(const Attribute& when, const Attribute& what)
{
    auto mine = [&](const Attribute& a) { return size_t(a.slot) < table.size() && table[a.slot].get() == &a; };
    if (!mine(when) || !mine(what))
        return false;
    auto& list = affects[when.slot];
    if (std::find(list.begin(), list.end(), what.slot) == list.end())
        list.push_back(what.slot);
    computed[what.slot] = 1;
    return true;
}

NodeType* findNodeType(const std::string& name)
{
    auto it = types().byName.find(name);
    return it == types().byName.end() ? nullptr : it->second;
}

NodeType* findNodeType(unsigned id)
{
    auto it = types().byId.find(id);
    return it == types().byId.end() ? nullptr : it->second;
}

std::vector<NodeType*> nodeTypes() { return types().ordered; }

NodeType* registerNodeType(std::unique_ptr<NodeType> type, std::string* why)
{
    Types& all = types();
    NodeType* sameName = findNodeType(type->name);
    NodeType* sameId = type->id ? findNodeType(type->id) : nullptr;
    if ((sameName || sameId) && (sameName != sameId && !(sameName && !sameName->id && !type->id))) {
        if (why)
            *why = sameName ? "the node type name '" + type->name + "' is taken"
                            : "the node type id of '" + type->name + "' is taken by '" + sameId->name + "'";
        return nullptr;
    }
    NodeType* added = type.release();
    added->order = sameName ? sameName->order : all.next++;
    if (sameName)
        std::replace(all.ordered.begin(), all.ordered.end(), sameName, added);
    else
        all.ordered.push_back(added);
    all.byName[added->name] = added;
    if (added->id)
        all.byId[added->id] = added;
    return added;
}

bool deregisterNodeType(NodeType* type)
{
    Types& all = types();
    auto it = std::find(all.ordered.begin(), all.ordered.end(), type);
    if (it == all.ordered.end())
        return false;
    all.ordered.erase(it);
    all.byName.erase(type->name);
    if (type->id)
        all.byId.erase(type->id);
    all.retired.push_back(type);
    return true;
}

NodeType*& typeBeingBuilt()
{
    static NodeType* type = nullptr;
    return type;
}

Node::Node(NodeType* t, std::string n) : Object(Class::kNode), type(t), name(std::move(n))
{
    cells.resize(type->table.size(), nullptr);
    nextSlot = int(cells.size());
}

Node::~Node()
{
    user.reset();
    for (auto& a : type->table)
        if (!a->parent)
            delete cells[a->slot];
    for (auto& a : dynamics)
        if (size_t(a->slot) < cells.size())
            delete cells[a->slot];
    for (Cell* c : removed)
        delete c;
}

bool Node::hasFn(MFn::Type t) const
{
    if (t == MFn::kBase || t == type->apiType || t == MFn::kDependencyNode)
        return true;
    return std::find(type->functionTypes.begin(), type->functionTypes.end(), t) != type->functionTypes.end();
}

Cell* Node::cell(const Attribute* a)
{
    if (!a || a->slot < 0 || !owns(a))
        return nullptr;
    if (size_t(a->slot) >= cells.size())
        cells.resize(a->slot + 1, nullptr);
    Cell*& place = cells[a->slot];
    if (place)
        return place;
    if (!a->parent) {
        place = new Cell(this, a, nullptr, -1);
        if (eval::other::active)
            eval::other::noteNew(*place);
        return place;
    }
    if (a->hasArrayAncestor())
        return nullptr;
    Cell* p = cell(a->parent);
    return cells[a->slot] = p ? p->child(a->childIndex) : nullptr;
}

Attribute* Node::findAttribute(const std::string& wanted) const
{
    if (Attribute* a = type->find(wanted))
        return a;
    Attribute* found = nullptr;
    for (auto& top : dynamics)
        walkAttributes(*top, [&](Attribute& a) {
            if (!found && (a.longName == wanted || a.shortName == wanted))
                found = &a;
        });
    return found;
}

bool Node::owns(const Attribute* a) const
{
    if (!a)
        return false;
    if (size_t(a->slot) < type->table.size())
        return type->table[a->slot].get() == a;
    const Attribute* top = a;
    while (top->parent)
        top = top->parent;
    for (auto& d : dynamics)
        if (d.get() == top)
            return true;
    return false;
}

std::string plugPath(const Cell& cell, bool shortNames)
{
    auto nameOf = [&](const Cell& c) { return shortNames ? c.attr->shortName : c.attr->longName; };
    std::string path;
    const Cell* c = &cell;
    for (bool leaf = true; c; leaf = false) {
        std::string step;
        if (c->isElement()) {
            step = nameOf(*c) + "[" + std::to_string(c->index) + "]";
            c = c->parent;   // the multi itself
        } else if (leaf || c->isMulti()) {
            step = nameOf(*c);
        }
        if (!step.empty())
            path = path.empty() ? step : step + "." + path;
        c = c ? c->parent : nullptr;
    }
    return path;
}

std::string plugName(const Cell& cell)
{
    return (cell.node->dag ? dag::shortestName(*cell.node) : cell.node->name) + "." + plugPath(cell);
}

}  // namespace mirk
