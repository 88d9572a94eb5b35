// Edits of the DAG, each with its inverse on the undo queue.
#include "dag/dag.h"

#include <algorithm>

#include "command/registry.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"

namespace mirk::dag {

void (*onMoved)(Node& node) = nullptr;

namespace {

void moved(Node& node)
{
    if (onMoved)
        onMoved(node);
}

void insertAt(std::vector<Node*>& list, Node* node, size_t place)
{
    list.insert(list.begin() + std::ptrdiff_t(std::min(place, list.size())), node);
}

/// Nodes that come and go are mostly the last ones.
size_t placeOf(const std::vector<Node*>& list, const Node* node)
{
    for (size_t i = list.size(); i-- > 0;)
        if (list[i] == node)
            return i;
    return list.size();
}

/// One parent-child link: `asChild` is its place among the parent's children, `asParent` among the child's parents.
struct Link { size_t asChild, asParent; };

void putLink(Node& parent, Node& child, Link at)
{
    insertAt(parent.dag->children, &child, at.asChild);
    insertAt(child.dag->parents, &parent, at.asParent);
    moved(child);
}

Link takeLink(Node& parent, Node& child)
{
    const Link at{placeOf(parent.dag->children, &child), placeOf(child.dag->parents, &parent)};
    moved(child);
    parent.dag->children.erase(parent.dag->children.begin() + std::ptrdiff_t(at.asChild));
    child.dag->parents.erase(child.dag->parents.begin() + std::ptrdiff_t(at.asParent));
    return at;
}

void link(Node& parent, Node& child, Link at = {size_t(-1), size_t(-1)})
{
    putLink(parent, child, at);
    Ref<Node> p(&parent), c(&child);
    undo::push([p, c] { takeLink(*p, *c); }, [p, c, at] { putLink(*p, *c, at); });
}

Link unlink(Node& parent, Node& child)
{
    const Link at = takeLink(parent, child);
    Ref<Node>  p(&parent), c(&child);
    undo::push([p, c, at] { putLink(*p, *c, at); }, [p, c] { takeLink(*p, *c); });
    return at;
}

bool isAbove(const Node& top, const Node& node)
{
    if (&top == &node)
        return true;
    return std::any_of(node.dag->parents.begin(), node.dag->parents.end(),
                       [&](const Node* p) { return isAbove(top, *p); });
}

Node* sibling(const Node& parent, const std::string& name, const Node* besides)
{
    for (Node* c : scene().named(name))   // few, where a parent may have thousands of children
        if (c != besides && c->dag && std::count(c->dag->parents.begin(), c->dag->parents.end(), &parent))
            return c;
    return nullptr;
}

/// True if a node may have the name below the parent: no sibling and no node outside the DAG has it.
bool nameIsFree(const std::string& name, const Node& parent, const Node* besides)
{
    for (const Node* n : scene().named(name))
        if (n != besides && !n->dag)
            return false;
    return !sibling(parent, name, besides);
}

/// The name itself, or with the next number for which it is free below all parents. '#' at the end asks for a number.
std::string freeNameBelow(const std::string& wanted, const std::vector<Node*>& parents, const Node* besides)
{
    const auto freeEverywhere = [&](const std::string& name) {
        return std::all_of(parents.begin(), parents.end(), [&](Node* p) { return nameIsFree(name, *p, besides); });
    };
    const bool numbered = !wanted.empty() && wanted.back() == '#';
    if (!numbered && freeEverywhere(wanted))
        return wanted;
    std::string base = numbered ? wanted.substr(0, wanted.size() - 1) : wanted;
    if (numbered)
        return base + std::to_string(scene().freeNumber(base));
    int          first = 1;
    const size_t digits = base.find_last_not_of("0123456789") + 1;
    if (digits < base.size() && base.size() - digits < 9)
        first = std::stoi(base.substr(digits)) + 1;
    if (digits > 0)
        base.resize(digits);
    for (int i = first;; ++i)
        if (const std::string name = base + std::to_string(i); freeEverywhere(name))
            return name;
}

void putName(Node& node, const std::string& name)
{
    const std::string old = node.name;
    node.name = name;
    scene().renamed(node, old);
}

void setName(Node& node, const std::string& name)
{
    if (node.name == name)
        return;
    Ref<Node>         n(&node);
    const std::string old = node.name;
    putName(node, name);
    undo::push([n, old] { putName(*n, old); }, [n, name] { putName(*n, name); });
}

Node* makeNode(NodeType* type, const std::string& name, Node& parent)
{
    // The graph keeps names unique in the whole scene; a name that only cousins have is given afterwards.
    const std::string wanted = freeNameBelow(name, {&parent}, nullptr);
    Node*             node = edit::createNode(type, wanted);
    if (!node->dag)
        node->dag = std::make_unique<Dag>(*node);
    setName(*node, wanted);
    link(parent, *node);
    return node;
}

/// "pCube1" for a shape asked for as "pCubeShape1" or of a type that names its nodes "pCubeShape".
std::string transformNameOf(const std::string& shapeName)
{
    const size_t at = shapeName.rfind("Shape");
    return at == std::string::npos ? shapeName : shapeName.substr(0, at) + shapeName.substr(at + 5);
}

std::string shapeNameOf(const std::string& transformName)
{
    const size_t digits = transformName.find_last_not_of("0123456789") + 1;
    return transformName.substr(0, digits) + "Shape" + transformName.substr(digits);
}

std::string defaultName(const NodeType& type) { return (type.namePrefix.empty() ? type.name : type.namePrefix) + "#"; }

void checkName(const std::string& name)
{
    const std::string plain = !name.empty() && name.back() == '#' ? name.substr(0, name.size() - 1) : name;
    if (!plain.empty() && !edit::validName(plain))
        throw command::Error("New name has no legal characters: " + name);
}

Node* createShape(NodeType* type, const std::string& name)
{
    NodeType* transform = findNodeType("transform");
    if (!transform)
        throw command::Error("Cannot create " + type->name + ": the type transform is not registered.");
    if (name.empty()) {
        Node* above = makeNode(transform, transformNameOf(defaultName(*type)), world());
        return makeNode(type, shapeNameOf(above->name), *above);
    }
    const std::string shape = freeNameBelow(name, {&world()}, nullptr);
    std::string       aboveName = transformNameOf(shape);
    if (aboveName == shape)   // a shape and its transform never share a name that the user chose
        aboveName = transformNameOf(defaultName(*type));
    return makeNode(type, shape, *makeNode(transform, aboveName, world()));
}

class WorldNode : public Node
{
public:
    using Node::Node;
    MFn::Type apiType() const override { return MFn::kWorld; }
    bool      hasFn(MFn::Type t) const override
    {
        return t == MFn::kWorld || t == MFn::kDagNode || t == MFn::kDependencyNode || t == MFn::kBase;
    }
};

}  // namespace

Node& world()
{
    static Ref<Node> node = [] {
        static NodeType type;   // not registered: nobody creates a second world
        type.name = "dagNode";
        type.apiType = MFn::kWorld;
        type.dag = true;
        Ref<Node> w(new WorldNode(&type, "world"));
        w->dag = std::make_unique<Dag>(*w);
        w->inScene = true;
        w->isDefault = true;
        return w;
    }();
    return *node;
}

void clear() { world().dag->children.clear(); }

Node* createNode(NodeType* type, const std::string& name, Node* parent)
{
    if (!type)
        throw command::Error("Unknown node type.");
    if (type->abstract)
        throw command::Error("Cannot create a node of type " + type->name + ": the type is abstract.");
    if (!type->dag)
        return edit::createNode(type, name);
    checkName(name);
    if (parent && !parent->dag)
        throw command::Error("Cannot parent " + type->name + " under " + parent->name + ": it is not a DAG node.");
    if (parent && parent->type->shape)
        throw command::Error("Cannot parent " + type->name + " under the shape " + parent->name + ".");
    if (!type->shape)
        return makeNode(type, name.empty() ? defaultName(*type) : name, parent ? *parent : world());
    if (!parent || parent == &world())
        return createShape(type, name);
    return makeNode(type, name.empty() ? shapeNameOf(parent->name) : name, *parent);
}

void renameNode(Node& node, const std::string& name)
{
    if (!node.dag)
        return edit::renameNode(node, name);
    if (node.isDefault || node.locked || node.referenced)
        throw command::Error("Cannot rename a " + std::string(node.isDefault ? "default" : "locked") + " node: " + node.name);
    const std::string plain = !name.empty() && name.back() == '#' ? name.substr(0, name.size() - 1) : name;
    if (!edit::validName(plain))
        throw command::Error("New name has no legal characters: " + name);
    setName(node, freeNameBelow(name, node.dag->parents, &node));
}

void reparent(Node& child, Node* oldParent, Node& newParent)
{
    if (child.isDefault)
        throw command::Error("Cannot reparent the default node " + child.name + ".");
    if (!oldParent)
        oldParent = child.dag->parents.empty() ? nullptr : child.dag->parents.front();
    if (!oldParent || sibling(*oldParent, child.name, nullptr) != &child)
        throw command::Error(child.name + " is not a child of " + (oldParent ? oldParent->name : "the world") + ".");
    if (oldParent == &newParent)
        return;
    if (newParent.type->shape)
        throw command::Error("Cannot parent " + child.name + " under the shape " + newParent.name + ".");
    if (child.type->shape && &newParent == &world())
        throw command::Error("Cannot parent the shape " + child.name + " to the world.");
    if (isAbove(child, newParent))
        throw command::Error("Cannot parent " + child.name + " to itself or one of its children.");
    if (std::count(newParent.dag->children.begin(), newParent.dag->children.end(), &child))
        throw command::Error(child.name + " is already a child of " + newParent.name + ".");
    if (!nameIsFree(child.name, newParent, &child)) {
        std::vector<Node*> parents = child.dag->parents;
        std::replace(parents.begin(), parents.end(), oldParent, &newParent);
        setName(child, freeNameBelow(child.name, parents, &child));
    }
    const Link at = unlink(*oldParent, child);
    link(newParent, child, {size_t(-1), at.asParent});
}

void addInstance(Node& child, Node& newParent)
{
    if (!newParent.dag || newParent.type->shape)
        throw command::Error("Cannot instance " + child.name + " under " + newParent.name + ".");
    if (child.type->shape && &newParent == &world())
        throw command::Error("Cannot parent the shape " + child.name + " to the world.");
    if (isAbove(child, newParent))
        throw command::Error("Cannot instance " + child.name + " under itself or one of its children.");
    if (std::count(newParent.dag->children.begin(), newParent.dag->children.end(), &child))
        throw command::Error(child.name + " is already a child of " + newParent.name + ".");
    if (!nameIsFree(child.name, newParent, &child)) {
        std::vector<Node*> parents = child.dag->parents;
        parents.push_back(&newParent);
        setName(child, freeNameBelow(child.name, parents, &child));
    }
    link(newParent, child);
}

void removeInstance(Node& child, Node& parent)
{
    auto& parents = child.dag->parents;
    if (std::find(parents.begin(), parents.end(), &parent) == parents.end())
        throw command::Error(child.name + " is not a child of " + parent.name + ".");
    if (parents.size() == 1)
        throw command::Error("Cannot remove the only instance of " + child.name + ".");
    unlink(parent, child);
}

void reorder(Node& child, Node& parent, size_t place)
{
    auto&        list = parent.dag->children;
    const size_t old = placeOf(list, &child);
    if (old == list.size())
        throw command::Error(child.name + " is not a child of " + parent.name + ".");
    const auto move = [](Node& p, Node& c, size_t to) {
        auto& l = p.dag->children;
        l.erase(l.begin() + std::ptrdiff_t(placeOf(l, &c)));
        insertAt(l, &c, to);
    };
    move(parent, child, place);
    Ref<Node> p(&parent), c(&child);
    undo::push([p, c, old, move] { move(*p, *c, old); }, [p, c, place, move] { move(*p, *c, place); });
}

void deleteNode(Node& node)
{
    if (!node.dag)
        return edit::deleteNode(node);
    if (node.isDefault || node.locked || node.referenced)
        throw command::Error("Cannot delete " + std::string(node.isDefault ? "the default" : "the locked") + " node: " + node.name);
    Ref<Node> keep(&node);
    while (!node.dag->children.empty()) {
        Node& child = *node.dag->children.back();
        if (child.dag->parents.size() > 1)
            unlink(node, child);
        else
            deleteNode(child);
    }
    edit::deleteNode(node);
    while (!node.dag->parents.empty())
        unlink(*node.dag->parents.back(), node);
}

}  // namespace mirk::dag
