// Nodes: making, deleting, renaming, asking about their types.
#include "command/cmd_util.h"
#include "command/message.h"
#include "command/shape_edit.h"
#include "data/mobject.h"
#include "graph/evaluate.h"
#include "io/scene_file.h"
#include "graph/undo.h"

namespace mirk::command {

namespace {

constexpr Flag kCreateNode[] = {
    {"n", "name", "s"}, {"p", "parent", "s"}, {"s", "shared"}, {"ss", "skipSelect"},
};

Value createNode(Call& call)
{
    const Strings args = call.names();
    if (args.size() != 1)
        fail(args.empty() ? "createNode: a node type has to be given" : "Too many arguments: " + args[1]);
    NodeType*   type = findNodeType(args[0]);
    std::string name = call.str("name");
    if (!name.empty() && name[0] == ':')
        name.erase(0, 1);
    if (const size_t bar = name.rfind('|'); bar != std::string::npos)
        name.erase(0, bar + 1);
    if (call.has("shared") && !name.empty())
        if (Node* present = scene().first(name))
        {
            if (!call.has("skipSelect"))
                selection::set({itemOf(*present)});
            return Value(present->name);
        }
    Node* above = call.has("parent") ? &oneNode(call.str("parent")) : nullptr;
    if (!type && io::readingFile())
    {
        Node* kept = io::makeUnknownNode(args[0], name, above);
        io::noteImportedName(name, kept->name);
        selection::set({itemOf(*kept)});
        return Value(nodeName(*kept));
    }
    if (type && type->abstract)
        fail("Cannot create a node of the abstract type '" + args[0] + "'");
    if (!type)
        fail("Unknown object type: " + args[0]);
    if (above && !type->dag)
        fail("A node of type '" + args[0] + "' has no place below '" + call.str("parent") + "'");
    if (above && !isTransform(*above))
        fail("'" + call.str("parent") + "' is no transform: nothing can be parented to it");
    const std::string wanted = name;
    if (io::readingFile() && !name.empty())
        name = io::nameForImport(name);
    Node* node = type->dag ? dag::createNode(type, name, above) : edit::createNode(type, name);
    io::noteImportedName(wanted, node->name);
    if (!call.has("skipSelect"))
        selection::set({itemOf(*node)});
    return Value(nodeName(*node));
}

constexpr Flag kDelete[] = {
    {"all", "all"}, {"at", "attribute", "s", kCreate, true}, {"c", "channels"}, {"ch", "constructionHistory"},
    {"s", "staticChannels"}, {"icn", "inputConnectionsAndNodes"}, {"hi", "hierarchy", "s"}, {"uac", "unitlessAnimationCurves"},
};

/// History is cut by keeping what the shapes show now.
void deleteHistory(Node& node)
{
    for (Node* shape : shapesOf(node))
        for (const char* name : {"inMesh", "create"})
        {
            const Attribute* a = shape->findAttribute(name);
            Cell* cell = a ? shape->cell(a) : nullptr;
            if (!cell || !cell->source)
                continue;
            std::vector<Node*> upstream;
            for (Cell* source = cell->source; source;)
            {
                Node* maker = source->node;
                upstream.push_back(maker);
                source = nullptr;
                for (const char* input : {"inputPolymesh", "inputGeometry", "inputSurface", "inputCurve"})
                    if (const Attribute* in = maker->findAttribute(input))
                        if (Cell* c = maker->cell(in); c && c->source)
                            source = c->source;
            }
            eval::pull(*cell);
            Ref<Data> data = cell->data() ? cell->data()->share() : Ref<Data>();
            edit::disconnect(*cell->source, *cell);
            if (data)
                setGeometry(*shape, data);
            for (Node* maker : upstream)
            {
                bool used = false;
                for (Cell* top : maker->cells)
                    if (top)
                        walkCells(*top, [&](Cell& c) { used |= c.hasTargets(); });
                if (used || maker->isDefault)
                    continue;
                if (!maker->dag)
                    edit::deleteNode(*maker);
                else if (isShape(*maker) && boolAttr(*maker, "intermediateObject"))   // the original of the shape
                    dag::deleteNode(*maker);
            }
        }
}

Value deleteObjects(Call& call)
{
    std::vector<Ref<Node>> nodes;
    std::vector<Cell*>     plugs;
    if (call.has("all"))
    {
        if (!call.has("constructionHistory"))
            fail("delete -all needs one of the flags that say what to delete");
        for (Node* n : scene().nodes())
            if (isShape(*n))
                deleteHistory(*n);
        return {};
    }
    for (const Item& item : callItems(call))
    {
        if (item.component)
            fail("Components cannot be deleted: " + itemName(item));
        if (item.plug)
            plugs.push_back(item.plug);
        else
            nodes.push_back(item.node);
    }
    if (nodes.empty() && plugs.empty())
        fail("Nothing is selected. Select objects to delete.");
    if (call.has("constructionHistory"))
    {
        for (auto& n : nodes)
            deleteHistory(*n);
        return {};
    }
    for (auto& n : nodes)
        if (n->isDefault || n->locked)
            fail(std::string("'") + nodeName(*n) + "' is a " + (n->isDefault ? "default" : "locked") + " node and cannot be deleted");
    for (Cell* plug : plugs)
        if (plug->source)
            edit::disconnect(*plug->source, *plug);
    for (auto& n : nodes)
        if (n->inScene)
            dag::deleteNode(*n);
    return {};
}

/// What node names cannot hold becomes '_'; digits in front are dropped; "" if nothing is left. A '#' at the end asks for a number.
std::string legalName(std::string name)
{
    const bool numbered = !name.empty() && name.back() == '#';
    name.erase(0, std::min(name.find_first_not_of("0123456789"), name.size()));
    while (!name.empty() && name.back() == '#')
        name.pop_back();
    const auto legal = [](unsigned char c) { return std::isalnum(c) || c == '_' || c == ':'; };
    if (std::none_of(name.begin(), name.end(), legal))
        return {};
    for (char& c : name)
        if (!legal(static_cast<unsigned char>(c)))
            c = '_';
    return numbered && !name.empty() ? name + '#' : name;
}

constexpr Flag kRename[] = {{"is", "ignoreShape"}, {"uid", "uuid"}};

Value renameNode(Call& call)
{
    const Strings args = call.names();
    if (call.has("uuid") && args.size() == 1)
    {
        for (const Item& item : selection::get())
            nodeOf(item)->uuid = args[0];
        return Value(args[0]);
    }
    if (args.empty() || args.size() > 2)
        fail("rename: an object and a new name have to be given");
    Node* node = nullptr;
    if (args.size() == 2)
        node = &oneNode(args[0]);
    else if (!selection::get().empty())
        node = nodeOf(selection::get().front());
    if (!node)
        fail("Nothing is selected to be renamed to '" + args.back() + "'");
    std::string name = args.back();
    if (const size_t bar = name.rfind('|'); bar != std::string::npos)
        name.erase(0, bar + 1);
    if (node->isDefault || node->locked)
        fail("Cannot rename the " + std::string(node->isDefault ? "default" : "locked") + " node '" + nodeName(*node) + "'");
    name = legalName(name);
    if (name.empty())
        fail("New name has no legal characters: " + args.back());
    std::vector<Node*> follow;   // a shape that has its transform's name goes along
    if (!call.has("ignoreShape") && isTransform(*node))
        for (Node* shape : shapesOf(*node))
            if (shape->name.find("Shape") != std::string::npos)
                follow.push_back(shape);
    dag::renameNode(*node, name);
    for (Node* shape : follow)
        dag::renameNode(*shape, shapeName(node->name));
    return Value(nodeName(*node));
}

constexpr Flag kObjExists[] = {{"h", "help"}};

Value objExists(Call& call)
{
    call.truth = true;
    bool all = !call.args.empty();
    for (const std::string& name : call.names())
    {
        bool found = false;
        try
        {
            found = !resolveItems(name).empty();
        }
        catch (const Error&)
        {
        }
        all = all && found;
    }
    return Value(all);
}

constexpr Flag kNodeType[] = {
    {"api", "apiType"}, {"d", "derived"}, {"i", "inherited"}, {"itn", "isTypeName"},
};

Value nodeType(Call& call)
{
    const Strings args = call.names();
    if (args.size() != 1)
        fail("nodeType: one object has to be given");
    NodeType* type = nullptr;
    if (call.has("isTypeName"))
    {
        type = findNodeType(args[0]);
        if (!type)
            fail("Unknown object type: " + args[0]);
    }
    else
        type = nodeOf(oneItem(args[0]))->type;   // of a plug its node's
    Strings out;
    if (call.has("apiType"))
        return Value(std::string(apiTypeName(type->apiType)));
    if (call.has("inherited"))
    {
        for (NodeType* t = type; t; t = t->base)
            out.insert(out.begin(), t->name);
        return Value(out);
    }
    if (call.has("derived"))
    {
        for (NodeType* t : nodeTypes())
            if (t->isA(type->name) && !t->abstract)
                out.push_back(t->name);
        return Value(out);
    }
    return Value(type->name);
}

constexpr Flag kObjectType[] = {
    {"isa", "isAType", "s"}, {"i", "isType", "s"}, {"tag", "tagFromType", "s"}, {"tpt", "typeFromTag", "i"}, {"tt", "typeTag"},
};

Value objectType(Call& call)
{
    if (call.has("tagFromType"))
    {
        NodeType* type = findNodeType(call.str("tagFromType"));
        if (!type)
            fail("Unknown object type: " + call.str("tagFromType"));
        return Value(int(type->id));
    }
    if (call.has("typeFromTag"))
    {
        NodeType* type = findNodeType(unsigned(call.integer("typeFromTag")));
        if (!type)
            fail("No node type has the tag " + std::to_string(call.integer("typeFromTag")));
        return Value(type->name);
    }
    const std::vector<Item> items = callItems(call);
    if (items.size() != 1)
        fail("objectType: one object has to be given");
    const Item& item = items.front();
    std::string type = item.plug ? "attribute" : nodeOf(item)->type->name;
    if (item.component)
        type = item.attribute.substr(0, item.attribute.find('['));
    if (call.has("isType"))
        return call.truth = true, Value(type == call.str("isType"));
    if (call.has("isAType"))
        return call.truth = true, Value(nodeOf(item)->type->isA(call.str("isAType")));
    if (call.has("typeTag"))
        return Value(int(nodeOf(item)->type->id));
    return Value(type);
}

constexpr Flag kAllNodeTypes[] = {{"ia", "includeAbstract"}};

Value allNodeTypes(Call& call)
{
    Strings out;
    for (NodeType* t : nodeTypes())
        if (!t->abstract)
            out.push_back(t->name);
        else if (call.has("includeAbstract"))
            out.push_back(t->name + " (abstract)");
    std::sort(out.begin(), out.end());
    return Value(out);
}

constexpr Flag kGetClassification[] = {{"s", "satisfies", "s"}};

/// True if one of the classifications, a path of words, begins with `wanted`.
bool satisfies(const std::string& classification, const std::string& wanted)
{
    for (size_t at = 0; at <= classification.size();)
    {
        const size_t end = std::min(classification.find(':', at), classification.size());
        const std::string one = classification.substr(at, end - at);
        if (one.compare(0, wanted.size(), wanted) == 0 && (one.size() == wanted.size() || one[wanted.size()] == '/'))
            return true;
        at = end + 1;
    }
    return false;
}

Value getClassification(Call& call)
{
    Strings out;
    for (const std::string& name : call.names())
    {
        NodeType* type = findNodeType(name);
        if (!type)
            fail("Unknown object type: " + name);
        if (call.has("satisfies"))
            return call.truth = true, Value(satisfies(type->classification, call.str("satisfies")));
        out.push_back(type->classification);
    }
    return Value(out);
}

constexpr Flag kLockNode[] = {{"l", "lock", "b", kCreate | kQuery}, {"ic", "ignoreComponents"}};

Value lockNode(Call& call)
{
    Ints out;
    for (Node* node : callNodes(call))
    {
        if (call.isQuery())
        {
            out.push_back(node->locked);
            continue;
        }
        const bool to = call.boolean("lock", true), from = node->locked;
        const Ref<Node> held(node);
        node->locked = to;
        undo::push([held, from] { held->locked = from; }, [held, to] { held->locked = to; });
    }
    return call.isQuery() ? Value(out) : Value();
}

const Command kCommands[] = {
    {"createNode", kCreateNode, createNode},
    {"delete", kDelete, deleteObjects},
    {"rename", kRename, renameNode},
    {"objExists", kObjExists, objExists, false},
    {"nodeType", kNodeType, nodeType, false},
    {"objectType", kObjectType, objectType, false},
    {"allNodeTypes", kAllNodeTypes, allNodeTypes, false, false},
    {"getClassification", kGetClassification, getClassification, false},
    {"lockNode", kLockNode, lockNode},
};

}  // namespace

void registerNodeCommands() { add(kCommands); }

}  // namespace mirk::command
