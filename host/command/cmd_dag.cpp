// The hierarchy: parent, group, duplicate, instance, reorder.
#include <map>
#include <set>

#include <maya/MMatrix.h>

#include "command/cmd_util.h"
#include "command/message.h"
#include "command/shape_edit.h"
#include "command/transform_edit.h"
#include "graph/evaluate.h"

namespace mirk::command {

namespace {

constexpr Flag kParent[] = {
    {"a", "absolute"}, {"add", "addObject"}, {"nc", "noConnections"}, {"nis", "noInvScale"}, {"r", "relative"}, {"rm", "removeObject"}, {"s", "shape"}, {"w", "world"},
};

Node* parentOf(const Item& item)
{
    return item.path.nodes.size() > 1 ? item.path.nodes[item.path.nodes.size() - 2].get() : nullptr;
}

/// Puts a node under another one and, unless `relative`, leaves it where it stands in the world.
void place(const Item& item, Node& to, bool relative)
{
    Node& child = *nodeOf(item);
    Node* from = parentOf(item);
    if ((from ? from : &dag::world()) == &to)
    {
        message::warning("Object '" + nodeName(child) + "' is already a child of the parent, '" + (&to == &dag::world() ? "the world" : nodeName(to)) + "'");
        return;
    }
    if (child.locked)
        fail("Cannot parent the locked node '" + nodeName(child) + "'");
    const bool    keep = !relative && isTransform(child);
    const MMatrix world = keep ? worldMatrix(item.path) : MMatrix();
    dag::reparent(child, from ? from : &dag::world(), to);
    if (keep)
        setLocalMatrix(child, world * parentMatrix(dag::firstPath(child)).inverse());
}

Value parent(Call& call)
{
    std::vector<Item> items = callItems(call);
    Node* to = nullptr;
    if (call.has("world"))
        to = &dag::world();
    else if (call.has("removeObject"))
    {
        for (const Item& item : items)
            dag::removeInstance(*nodeOf(item), parentOf(item) ? *parentOf(item) : dag::world());
        return {};
    }
    else
    {
        if (items.size() < 2)
            fail("parent: objects and a parent have to be given");
        to = nodeOf(items.back());
        items.pop_back();
        if (!to || !isTransform(*to))
            fail("'" + (to ? nodeName(*to) : std::string()) + "' is no transform: nothing can be parented to it");
    }
    if (items.empty())
        fail("parent: no object is given or selected");
    Strings out;
    for (const Item& item : items)
    {
        Node* child = nodeOf(item);
        if (!child || !child->dag)
            fail("'" + itemName(item) + "' is not in the hierarchy and cannot be parented");
        if (isShape(*child) && !call.has("shape"))
            fail("'" + nodeName(*child) + "' is a shape: use the -shape flag to parent it");
        if (call.has("addObject"))
            dag::addInstance(*child, *to);
        else
            place(item, *to, call.has("relative") || call.has("shape"));
        out.push_back(nodeName(*child));
    }
    return Value(out);
}

constexpr Flag kGroup[] = {{"a", "absolute"}, {"em", "empty"}, {"n", "name", "s"}, {"p", "parent", "s"}, {"r", "relative"}, {"w", "world"}, {"useAsGroup", "useAsGroup", "s"}};

Value group(Call& call)
{
    const std::vector<Item> items = call.has("empty") ? std::vector<Item>() : callItems(call);
    if (items.empty() && !call.has("empty"))
        fail("Nothing is selected to be grouped; use the -empty flag for an empty group");
    Node* above = nullptr;
    if (call.has("parent"))
        above = &oneNode(call.str("parent"));
    else if (!call.has("world") && !items.empty())
    {
        above = parentOf(items[0]);   // a parent that all share stays above the group
        for (const Item& i : items)
            if (parentOf(i) != above)
                above = nullptr;
    }
    for (const Item& item : items)
        if (!nodeOf(item) || !isTransform(*nodeOf(item)))
            fail("'" + itemName(item) + "' is no transform and cannot be grouped");
    Node* node = dag::createNode(findNodeType("transform"), call.str("name", "group#"), above);
    for (const Item& item : items)
        place(item, *node, call.has("relative"));
    if (!items.empty())
        execute("xform", std::vector<Value>{"-centerPivots", dag::fullName(dag::firstPath(*node))});
    selection::set({itemOf(*node)});
    return Value(nodeName(*node));
}

constexpr Flag kUngroup[] = {{"a", "absolute"}, {"p", "parent", "s"}, {"r", "relative"}, {"w", "world"}};

Value ungroup(Call& call)
{
    const std::vector<Item> groups = callItems(call);
    if (groups.empty())
        fail("ungroup: no group is given or selected");
    Node* given = call.has("parent") ? &oneNode(call.str("parent")) : nullptr;
    if (given && !isTransform(*given))
        fail("'" + nodeName(*given) + "' is no transform: nothing can be parented to it");
    for (const Item& g : groups)
    {
        Node* node = nodeOf(g);
        if (!node || !isTransform(*node) || node->dag->children.empty())
            fail("'" + itemName(g) + "' is no group");
        for (Node* child : node->dag->children)
            if (!isTransform(*child))
                fail("'" + itemName(g) + "' holds the shape '" + nodeName(*child) + "' and cannot be ungrouped");
    }
    std::vector<Item> freed;
    for (const Item& g : groups)
    {
        Node& to = given ? *given : call.has("world") || !parentOf(g) ? dag::world() : *parentOf(g);
        for (Node* child : std::vector<Node*>(nodeOf(g)->dag->children))
        {
            Path path = g.path;
            path.nodes.emplace_back(child);
            place(itemOf(path), to, call.has("relative"));
            freed.push_back(itemOf(*child));
        }
        dag::deleteNode(*nodeOf(g));
    }
    selection::set(freed);
    return {};
}

constexpr Flag kDuplicate[] = {
    {"n", "name", "s"}, {"ic", "inputConnections"}, {"ilf", "instanceLeaf"}, {"po", "parentOnly"}, {"rr", "returnRootsOnly"}, {"rc", "renameChildren"},
    {"st", "smartTransform"}, {"un", "upstreamNodes"},
};

/// Copies values, dynamic attributes and flags of a node; not its connections.
void copyValues(Node& from, Node& to)
{
    std::map<const Attribute*, Attribute*> dynamic;
    for (const auto& a : from.dynamics)
    {
        Ref<Attribute> copy = make<Attribute>(*a);
        std::function<void(Attribute&)> own = [&](Attribute& x) {
            for (auto& c : x.children)
            {
                c = make<Attribute>(*c);
                c->parent = &x;
                own(*c);
            }
        };
        own(*copy);
        edit::addDynamic(to, copy);
    }
    for (Cell* top : from.cells)
    {
        if (!top || top->parent || top->attr->kind == AttrKind::kMessage)
            continue;
        const Attribute* a = top->attr->is(Attribute::kDynamic) ? to.findAttribute(top->attr->longName) : top->attr;
        if (!a || (!a->is(Attribute::kStorable) && !top->is(Cell::kSet)) || from.isComputed(top->attr))
            continue;
        bool any = top->is(Cell::kSet) || top->source;
        walkCells(*top, [&](Cell& c) { any |= c.is(Cell::kSet) || c.source || c.isElement(); });
        if (!any)
            continue;
        eval::pullDeep(*top);
        Cell* cell = to.cell(a);
        edit::change(*cell, [&] { cell->copyFrom(*top); });
    }
    if (from.user && to.user)
        to.user->copyInternalData(from.user.get());
    to.unknownText = from.unknownText;
    to.unknownType = from.unknownType;
}

class Duplicator
{
public:
    explicit Duplicator(const Call& call) : call_(call) {}

    Node* copy(Node& from, Node* above, const std::string& name, bool root)
    {
        if (auto it = copies_.find(&from); it != copies_.end())
            return it->second;
        Node* to = from.dag ? dag::createNode(from.type, name, above ? above : nullptr) : edit::createNode(from.type, name);
        copies_[&from] = to;
        copyValues(from, *to);
        // a shape shows what it showed, without the history of the first
        if (isShape(from) && !call_.has("upstreamNodes") && !call_.has("inputConnections"))
            keepGeometry(from, *to);
        if (root || !call_.has("returnRootsOnly"))
            names.push_back(to);
        if (from.dag && !(call_.has("parentOnly") && isTransform(from)))
            for (Node* child : std::vector<Node*>(from.dag->children))
            {
                std::string childName = child->name;
                if (isShape(*child) && (child->name == from.name + "Shape" || child->name == shapeName(from.name)))
                    childName = shapeName(to->name);
                else if (call_.has("renameChildren"))
                    childName = edit::freeName(child->name);
                copy(*child, to, childName, false);
            }
        return to;
    }

    /// Inputs of the copies: from the same sources, or from copies of these.
    void connect()
    {
        if (!call_.has("inputConnections") && !call_.has("upstreamNodes"))
            return reconnectInside();
        for (size_t i = 0; i < pairs().size(); ++i)
        {
            const auto [from, to] = pairs()[i];
            for (auto& [source, target] : inputs(*from))
            {
                Node* maker = source->node;
                if (call_.has("upstreamNodes") && !maker->dag && !maker->isDefault && !copies_.count(maker))
                {
                    Node* made = edit::createNode(maker->type, maker->name);
                    copies_[maker] = made;
                    copyValues(*maker, *made);
                    pairs_.emplace_back(maker, made);
                }
                link(*source, *target, *to);
            }
        }
    }

    std::vector<Node*> names;

private:
    using Connection = std::pair<Cell*, Cell*>;

    static std::vector<Connection> inputs(Node& n)
    {
        std::vector<Connection> out;
        for (Cell* top : n.cells)
            if (top && !top->parent)
                walkCells(*top, [&](Cell& c) {
                    if (c.source)
                        out.emplace_back(c.source, &c);
                });
        return out;
    }

    std::vector<std::pair<Node*, Node*>>& pairs()
    {
        if (pairs_.empty())
            pairs_.assign(copies_.begin(), copies_.end());
        return pairs_;
    }

    void link(Cell& source, Cell& target, Node& to)
    {
        auto it = copies_.find(source.node);
        Node& from = it == copies_.end() ? *source.node : *it->second;
        Cell* s = findCell(from, plugPath(source));
        Cell* t = findCell(to, plugPath(target));
        if (s && t && !t->source)
            edit::connect(*s, *t);
    }

    /// Connections among the duplicated nodes go along in any case.
    void reconnectInside()
    {
        for (const auto& [from, to] : pairs())
            for (auto& [source, target] : inputs(*from))
                if (copies_.count(source->node))
                    link(*source, *target, *to);
    }

    static void keepGeometry(Node& from, Node& to)
    {
        for (const char* name : {"inMesh", "create"})
            if (const Attribute* a = from.type->find(name))
                if (Cell* in = from.cell(a); in->source)
                {
                    eval::pull(*in);
                    if (in->data())
                        setGeometry(to, in->data()->share());
                }
    }

    const Call&                          call_;
    std::map<Node*, Node*>               copies_;
    std::vector<std::pair<Node*, Node*>> pairs_;
};

Value duplicate(Call& call)
{
    const std::vector<Item> items = callItems(call);
    if (items.empty())
        fail("Nothing is selected to be duplicated");
    Duplicator        duplicator(call);
    std::vector<Item> roots;
    for (const Item& item : items)
    {
        Node* from = nodeOf(item);
        if (!from || item.plug || item.component)
            fail("'" + itemName(item) + "' cannot be duplicated");
        Node* above = parentOf(item);
        Path  path = item.path;
        if (isShape(*from))   // a shape comes with its transform
        {
            from = transformOf(*from);
            above = path.nodes.size() > 2 ? path.nodes[path.nodes.size() - 3].get() : nullptr;
        }
        std::string name = call.str("name");
        if (name.empty())
            name = from->isDefault ? from->name + "1" : from->name;
        roots.push_back(itemOf(*duplicator.copy(*from, above, name, true)));
    }
    duplicator.connect();
    selection::set(roots);
    Strings out;
    for (Node* n : duplicator.names)
        if (!isShape(*n) || call.has("renameChildren"))
            out.push_back(nodeName(*n));
    return Value(out);
}

constexpr Flag kInstance[] = {{"n", "name", "s"}, {"lf", "leaf"}, {"st", "smartTransform"}};

Value instance(Call& call)
{
    Strings out;
    for (const Item& item : callItems(call))
    {
        Node* from = nodeOf(item);
        if (!from || !isTransform(*from))
            fail("'" + itemName(item) + "' is no transform and cannot be instanced");
        Node* to = dag::createNode(from->type, call.str("name", from->name), parentOf(item));
        copyValues(*from, *to);
        for (Node* child : std::vector<Node*>(from->dag->children))
            dag::addInstance(*child, *to);
        out.push_back(nodeName(*to));
    }
    return Value(out);
}

constexpr Flag kReorder[] = {{"b", "back"}, {"f", "front"}, {"r", "relative", "i"}};

Value reorder(Call& call)
{
    for (const Item& item : callItems(call))
    {
        Node* child = nodeOf(item);
        if (!child || !child->dag)
            fail("'" + itemName(item) + "' is not in the hierarchy");
        Node& above = parentOf(item) ? *parentOf(item) : dag::world();
        const auto& siblings = above.dag->children;
        const long  at = std::find(siblings.begin(), siblings.end(), child) - siblings.begin();
        const long  last = long(siblings.size()) - 1;
        const long  to = call.has("front") ? 0 : call.has("back") ? last : std::clamp(at + call.integer("relative"), 0L, last);
        dag::reorder(*child, above, size_t(to));
    }
    return {};
}

const Command kCommands[] = {
    {"parent", kParent, parent},       {"group", kGroup, group},       {"ungroup", kUngroup, ungroup}, {"duplicate", kDuplicate, duplicate},
    {"instance", kInstance, instance}, {"reorder", kReorder, reorder},
};

}  // namespace

void registerDagCommands() { add(kCommands); }

}  // namespace mirk::command
