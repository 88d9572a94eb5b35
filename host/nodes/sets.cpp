#include "nodes/sets.h"

#include <algorithm>

#include "command/registry.h"
#include "dag/selection_list.h"
#include "data/component.h"
#include "graph/access.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"

namespace mirk::sets {
namespace {

using command::Error;

Cell* cellOf(Node& node, const char* attribute)
{
    const Attribute* a = node.findAttribute(attribute);
    return a ? node.cell(a) : nullptr;
}

bool flag(Node& node, const char* attribute) { return cellOf(node, attribute)->number() != 0; }

/// One connection into a set.
struct Slot
{
    Cell* element;   ///< of dagSetMembers or dnSetMembers
    Cell* group;     ///< objectGroups element of a shape, for components
    Item  item;      ///< without its component
};

const Attribute* attributeAbove(const Cell& cell, const char* name)
{
    for (const Attribute* a = cell.attr; a; a = a->parent)
        if (a->longName == name)
            return a;
    return nullptr;
}

std::vector<Slot> slots(Node& set)
{
    std::vector<Slot> out;
    for (const char* multi : {"dagSetMembers", "dnSetMembers"})
        if (Cell* cell = cellOf(set, multi))
            for (size_t i = 0; i < cell->elementCount(); ++i) {
                Cell* e = cell->elements->cells[i];
                if (!e->source)
                    continue;
                Slot  slot{e, nullptr, {}};
                Cell& source = *e->source;
                Node& node = *source.node;
                slot.item.node = Ref<Node>(&node);
                if (node.dag && attributeAbove(source, "instObjGroups")) {
                    if (source.attr->longName == "objectGroups")
                        slot.group = &source;
                    const Cell* instance = &source;
                    while (instance->attr->longName != "instObjGroups")
                        instance = instance->parent;
                    const auto paths = dag::allPaths(node);
                    const size_t at = size_t(std::max(instance->index, 0));
                    slot.item.path = at < paths.size() ? paths[at] : dag::firstPath(node);
                } else if (source.attr->kind != AttrKind::kMessage)
                    slot.item.plug = &source;
                out.push_back(slot);
            }
    return out;
}

const ComponentListData* componentsOf(Cell& group)
{
    Cell* list = group.child(0);
    eval::pull(*list);
    return dynamic_cast<ComponentListData*>(list->data());
}

Item withComponent(const Item& item, const Ref<Component>& component)
{
    Item out = item;
    out.component = component;
    return out;
}

/// Components stand on shapes, whatever they were named by; so does all that a shader is on.
Item onShape(const Node& set, Item item)
{
    Node* node = item.path.node();
    if (item.plug || !(item.component || set.type->isA("shadingEngine")) || !node || node->type->shape || !node->dag)
        return item;
    for (Node* child : node->dag->children)
        if (child->type->shape && !cellOf(*child, "intermediateObject")->number()) {
            item.path.nodes.emplace_back(child);
            item.node = Ref<Node>(child);
            break;
        }
    return item;
}

bool sameObject(const Item& a, const Item& b)
{
    return a.node == b.node && a.plug == b.plug && (a.path == b.path || a.path.nodes.empty() || b.path.nodes.empty());
}

/// All elements of a type on a shape, as an explicit component; null if the shape has none of them.
Ref<Component> wholeShape(Node& shape, const Component& like)
{
    int extent[3] = {0, 0, 0};
    if (!names::componentExtent || !names::componentExtent(shape, like.apiType(), extent))
        return {};
    Ref<Component>   all = makeComponent(like.apiType());
    std::vector<int> elements;
    const int        n = like.dimensions();
    for (int u = 0; u < extent[0]; ++u)
        for (int v = 0; v < (n > 1 ? extent[1] : 1); ++v)
            for (int w = 0; w < (n > 2 ? extent[2] : 1); ++w) {
                const int at[3] = {u, v, w};
                elements.insert(elements.end(), at, at + n);
            }
    addElements(*all, elements.data(), elements.size() / size_t(n));
    return all;
}

Ref<Component> explicitOn(Node& shape, const Component& c)
{
    Ref<Component> all = c.complete ? wholeShape(shape, c) : Ref<Component>();
    return all ? all : copyComponent(c);
}

/// What two components of one type have in common; null if nothing.
Ref<Component> common(Node& shape, const Component& a, const Component& b)
{
    if (a.apiType() != b.apiType())
        return {};
    const Ref<Component> rest = explicitOn(shape, a), other = explicitOn(shape, b), both = makeComponent(a.apiType());
    const size_t         n = size_t(a.dimensions());
    std::vector<int>     kept;
    for (size_t i = 0; i < rest->count(); ++i) {
        const int* e = &rest->indices[i * n];
        if (other->has(e[0], n > 1 ? e[1] : 0, n > 2 ? e[2] : 0))
            kept.insert(kept.end(), e, e + n);
    }
    if (kept.empty())
        return {};
    addElements(*both, kept.data(), kept.size() / n);
    return both;
}

Ref<Component> without(Node& shape, const Component& a, const Component& b)
{
    if (a.apiType() != b.apiType())
        return copyComponent(a);
    Ref<Component>         rest = explicitOn(shape, a);
    const std::vector<int> gone = explicitOn(shape, b)->indices;
    removeElements(*rest, gone.data(), gone.size() / size_t(b.dimensions()));
    return rest->count() ? rest : Ref<Component>();
}

// ---- restrictions ------------------------------------------------------------------------------------------------

bool isPoint(MFn::Type t)
{
    return t == MFn::kMeshVertComponent || t == MFn::kCurveCVComponent || t == MFn::kSurfaceCVComponent || t == MFn::kLatticeComponent;
}

void checkKind(Node& set, const Item& item)
{
    if (item.node.get() == &set)
        throw Error("A set cannot be added to itself: " + set.name);
    const MFn::Type t = item.component ? item.component->apiType() : MFn::kInvalid;
    const struct { const char* attribute; const char* what; bool fits; } kinds[] = {
        {"verticesOnlySet", "vertices", isPoint(t)},
        {"edgesOnlySet", "edges", t == MFn::kMeshEdgeComponent},
        {"facetsOnlySet", "faces", t == MFn::kMeshPolygonComponent},
        {"editPointsOnlySet", "edit points", t == MFn::kCurveEPComponent},
        {"renderableOnlySet", "renderable objects", item.component ? t == MFn::kMeshPolygonComponent : !item.path.nodes.empty()},
    };
    for (const auto& k : kinds)
        if (flag(set, k.attribute) && !k.fits)
            throw Error("The set '" + set.name + "' holds only " + k.what + ": '" + names::text(item) + "' cannot be added.");
}

Node* partitionOf(Node& set)
{
    const Cell* out = cellOf(set, "partition");
    return out && out->targets && !out->targets->empty() ? out->targets->front()->node : nullptr;
}

void checkPartition(Node& set, const Item& item, bool force)
{
    Node* partition = partitionOf(set);
    for (Node* other : partition ? setsIn(*partition) : std::vector<Node*>())
        if (other != &set && touches(*other, item)) {
            if (!force)
                throw Error("'" + names::text(item) + "' belongs to '" + other->name + "', which is in the same partition as '" + set.name + "'.");
            remove(*other, item);
        }
}

// ---- connections -------------------------------------------------------------------------------------------------

Cell& freeElement(Cell& multi)
{
    const int next = multi.elementCount() ? multi.elements->cells.back()->index + 1 : 0;
    return edit::addElement(multi, next);
}

int instanceOf(const Item& item) { return item.path.nodes.empty() ? 0 : int(dag::instanceNumber(item.path)); }

Cell& groupsOf(const Item& item)
{
    Cell& instance = edit::addElement(*cellOf(*item.node, "instObjGroups"), instanceOf(item));
    return *instance.child(0);
}

void setComponents(Cell& group, Ref<ComponentListData> list) { edit::setData(*group.child(0), list); }

void joinWhole(Node& set, const Item& item)
{
    if (item.plug)
        edit::connect(*item.plug, freeElement(*cellOf(set, "dnSetMembers")));
    else if (item.node->dag)
        edit::connect(edit::addElement(*cellOf(*item.node, "instObjGroups"), instanceOf(item)), freeElement(*cellOf(set, "dagSetMembers")));
    else
        edit::connect(*cellOf(*item.node, "message"), freeElement(*cellOf(set, "dnSetMembers")));
}

void joinComponents(Node& set, const Item& item)
{
    Node* id = edit::createNode(findNodeType("groupId"), "groupId#");
    Cell& group = freeElement(groupsOf(item));
    auto  list = make<ComponentListData>();
    mergeInto(*list, *item.component);
    setComponents(group, list);
    edit::connect(*cellOf(*id, "groupId"), *group.child(1));
    edit::connect(group, freeElement(*cellOf(set, "dagSetMembers")));
    edit::connect(*cellOf(*id, "message"), freeElement(*cellOf(set, "groupNodes")));
}

void leave(const Slot& slot)
{
    Cell* group = slot.group;
    Cell* idSource = group ? group->child(1)->source : nullptr;
    Node* id = idSource && idSource->node->type->name == "groupId" ? idSource->node : nullptr;
    edit::removeElement(*slot.element);
    if (!group)
        return;
    edit::removeElement(*group);
    if (id) {
        if (const auto* users = cellOf(*id, "message")->targets)
            for (Cell* user : std::vector<Cell*>(*users))
                edit::removeElement(*user);
        if (!cellOf(*id, "groupId")->hasTargets())
            edit::deleteNode(*id);
    }
}

}  // namespace

bool isSet(const Node& node) { return node.type->isA("objectSet"); }

std::vector<Item> members(Node& set)
{
    std::vector<Item> out;
    for (const Slot& s : slots(set)) {
        if (!s.group) {
            out.push_back(s.item);
            continue;
        }
        if (const ComponentListData* list = componentsOf(*s.group))
            for (const auto& c : list->list)
                out.push_back(withComponent(s.item, c));
    }
    return out;
}

std::vector<Item> flattened(Node& set)
{
    std::vector<Item>  out;
    std::vector<Node*> open{&set}, seen{&set};   // sets may hold each other in a ring
    while (!open.empty()) {
        Node* next = open.back();
        open.pop_back();
        for (const Item& item : members(*next)) {
            Node* node = item.node.get();
            if (item.plug || !isSet(*node))
                mergeItem(out, item);
            else if (std::find(seen.begin(), seen.end(), node) == seen.end()) {
                seen.push_back(node);
                open.push_back(node);
            }
        }
    }
    return out;
}

bool contains(Node& set, const Item& given)
{
    const Item item = onShape(set, given);
    for (const Slot& s : slots(set)) {
        if (!sameObject(s.item, item))
            continue;
        if (!s.group)
            return true;
        const ComponentListData* list = item.component ? componentsOf(*s.group) : nullptr;
        if (!list)
            continue;
        const Ref<Component> wanted = explicitOn(*item.node, *item.component);
        for (const auto& c : list->list)
            if (c->apiType() == wanted->apiType() && (c->complete || containsAll(*c, *wanted)))
                return true;
    }
    return false;
}

bool touches(Node& set, const Item& given)
{
    const Item item = onShape(set, given);
    for (const Slot& s : slots(set)) {
        if (!sameObject(s.item, item))
            continue;
        if (!s.group || !item.component)
            return true;
        if (const ComponentListData* list = componentsOf(*s.group))
            for (const auto& c : list->list)
                if (common(*item.node, *c, *item.component))
                    return true;
    }
    return false;
}

void add(Node& set, const Item& given, bool force)
{
    const Item item = onShape(set, given);
    checkKind(set, item);
    if (contains(set, item))
        return;
    checkPartition(set, item, force);
    for (const Slot& s : slots(set)) {
        if (!s.group || !sameObject(s.item, item))
            continue;
        if (!item.component) {
            leave(s);   // the whole object takes the place of its components
            continue;
        }
        auto list = make<ComponentListData>();
        if (const ComponentListData* present = componentsOf(*s.group))
            for (const auto& c : present->list)
                mergeInto(*list, *c);
        mergeInto(*list, *item.component);
        setComponents(*s.group, list);
        return;
    }
    item.component ? joinComponents(set, item) : joinWhole(set, item);
}

void remove(Node& set, const Item& given)
{
    const Item item = onShape(set, given);
    for (const Slot& s : slots(set)) {
        if (!sameObject(s.item, item))
            continue;
        if (!item.component) {
            leave(s);
            continue;
        }
        if (!s.group) {   // a part of a whole member: what is left stays as components
            Ref<Component> all = wholeShape(*item.node, *item.component);
            Ref<Component> rest = all ? without(*item.node, *all, *item.component) : all;
            leave(s);
            if (rest)
                joinComponents(set, withComponent(s.item, rest));
            continue;
        }
        auto list = make<ComponentListData>();
        if (const ComponentListData* present = componentsOf(*s.group))
            for (const auto& c : present->list)
                if (Ref<Component> rest = without(*item.node, *c, *item.component))
                    mergeInto(*list, *rest);
        if (list->list.empty())
            leave(s);
        else
            setComponents(*s.group, list);
    }
}

void clear(Node& set)
{
    for (const Slot& s : slots(set))
        leave(s);
}

std::vector<Node*> setsOf(const Item& item)
{
    std::vector<Node*> out;
    for (Node* node : scene().nodes())
        if (isSet(*node) && (item.component ? touches(*node, item) : contains(*node, item)))
            out.push_back(node);
    return out;
}

std::vector<Item> intersection(const std::vector<Item>& a, const std::vector<Item>& b)
{
    std::vector<Item> out;
    for (const Item& x : a)
        for (const Item& y : b) {
            if (!sameObject(x, y))
                continue;
            if (!x.component || !y.component)
                mergeItem(out, x.component ? x : y);
            else if (Ref<Component> both = common(*x.node, *x.component, *y.component))
                mergeItem(out, withComponent(x, both));
        }
    return out;
}

std::vector<Item> difference(const std::vector<Item>& a, const std::vector<Item>& b)
{
    std::vector<Item> out;
    for (Item x : a) {
        bool gone = false;
        for (const Item& y : b) {
            if (gone || !sameObject(x, y))
                continue;
            if (!y.component) {
                gone = true;
                continue;
            }
            Ref<Component> from = x.component ? x.component : wholeShape(*x.node, *y.component);
            Ref<Component> rest = from ? without(*x.node, *from, *y.component) : from;
            if (rest)
                x.component = rest;
            else
                gone = from != nullptr;
        }
        if (!gone)
            mergeItem(out, x);
    }
    return out;
}

void joinPartition(Node& set, Node& partition)
{
    const std::vector<Item> mine = members(set);
    for (Node* other : setsIn(partition)) {
        if (other == &set)
            return;
        for (const Item& item : mine)
            if (touches(*other, item))
                throw Error("'" + set.name + "' has members in common with '" + other->name + "' and cannot be in the partition '" + partition.name + "' with it.");
    }
    edit::connect(*cellOf(set, "partition"), freeElement(*cellOf(partition, "sets")));
}

std::vector<Node*> setsIn(Node& partition)
{
    std::vector<Node*> out;
    if (Cell* multi = cellOf(partition, "sets"))
        for (size_t i = 0; i < multi->elementCount(); ++i)
            if (Cell* source = multi->elements->cells[i]->source)
                out.push_back(source->node);
    return out;
}

}  // namespace mirk::sets
