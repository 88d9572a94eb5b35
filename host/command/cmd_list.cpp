// ls and listRelatives.
#include <maya/MString.h>
#include <maya/MUuid.h>

#include "command/attr_value.h"
#include "command/cmd_util.h"
#include "data/component.h"

namespace mirk::command {

namespace {

constexpr Flag kLs[] = {
    {"ap", "allPaths"}, {"as", "assemblies"}, {"an", "absoluteName"}, {"ca", "cameras"}, {"dag", "dagObjects"}, {"dn", "defaultNodes"},
    {"dep", "dependencyNodes"}, {"et", "exactType", "s", kCreate, true}, {"ext", "excludeType", "s", kCreate, true}, {"fl", "flatten"},
    {"g", "geometry"}, {"hd", "head", "i"}, {"tl", "tail", "i"}, {"hl", "hilite"}, {"io", "intermediateObjects"}, {"iv", "invisible"},
    {"lf", "leaf"}, {"ln", "lockedNodes"}, {"lt", "lights"}, {"l", "long"}, {"mat", "materials"}, {"mod", "modified"},
    {"ni", "noIntermediate"}, {"nt", "nodeTypes"}, {"o", "objectsOnly"}, {"os", "orderedSelection"}, {"pn", "persistentNodes"},
    {"ro", "readOnly"}, {"r", "recursive", "b"}, {"rn", "referencedNodes"}, {"sl", "selection"}, {"set", "sets"}, {"s", "shapes"},
    {"sn", "shortNames"}, {"st", "showType"}, {"tex", "textures"}, {"tr", "transforms"}, {"typ", "type", "s", kCreate, true},
    {"ud", "undeletable"}, {"uid", "uuid"}, {"v", "visible"},
};

/// Nodes get theirs when somebody first asks.
std::string uuidOf(Node& node)
{
    if (node.uuid.empty())
    {
        MUuid fresh;
        fresh.generate();
        node.uuid = fresh.asString().asChar();
    }
    return node.uuid;
}

bool visible(const Path& path)
{
    for (const auto& n : path.nodes)
        if (!boolAttr(*n, "visibility", true))
            return false;
    return true;
}

class Lister
{
public:
    explicit Lister(Call& call) : call_(call)
    {
        for (const char* flag : {"type", "exactType", "excludeType"})
            for (const auto* use : call.all(flag))
                if (!findNodeType(use->args[0].asString()))
                    fail("Unknown object type: " + use->args[0].asString());
    }

    std::vector<Item> candidates()
    {
        std::vector<Item> items;
        if (!call_.args.empty())
        {
            for (const std::string& name : call_.names())
                for (Item& item : tolerant(name))
                    if (call_.has("allPaths") && item.node->dag && !item.plug && !item.component)
                        addPaths(*item.node, items);
                    else
                        items.push_back(std::move(item));
            if (call_.has("selection"))
            {
                const auto& selected = selection::get();
                std::erase_if(items, [&](const Item& i) { return std::find(selected.begin(), selected.end(), i) == selected.end(); });
            }
        }
        else if (call_.has("selection") || call_.has("orderedSelection"))
            items = selection::get();
        else
            for (Node* n : scene().nodes())
                addPaths(*n, items);
        if (call_.has("dagObjects"))
            items = withDescendants(items);
        return items;
    }

    bool wanted(const Item& item) const
    {
        Node& n = *nodeOf(item);
        const NodeType& t = *n.type;
        if (item.plug || item.component)
            return typeWanted(t) && !call_.has("dagObjects");
        if (call_.has("transforms") || call_.has("shapes") || call_.has("cameras") || call_.has("geometry") || call_.has("sets") ||
            call_.has("lights") || call_.has("textures") || call_.has("materials"))
        {
            const bool camera = t.isA("camera");
            const bool any = (call_.has("transforms") && isTransform(n)) || (call_.has("shapes") && isShape(n)) ||
                             (call_.has("cameras") && camera) || (call_.has("sets") && t.isA("objectSet")) ||
                             (call_.has("geometry") && isShape(n) && (t.isA("mesh") || t.isA("nurbsCurve") || t.isA("nurbsSurface"))) ||
                             (call_.has("lights") && t.classification.compare(0, 5, "light") == 0) ||
                             (call_.has("textures") && t.classification.compare(0, 7, "texture") == 0) ||
                             (call_.has("materials") && t.classification.find("shader/surface") != std::string::npos);
            if (!any)
                return false;
        }
        if (call_.has("assemblies") && (!n.dag || item.path.nodes.size() != 1))
            return false;
        if (call_.has("leaf") && (!n.dag || !n.dag->children.empty()))
            return false;
        if (call_.has("intermediateObjects") && !boolAttr(n, "intermediateObject"))
            return false;
        if (call_.has("noIntermediate") && boolAttr(n, "intermediateObject"))
            return false;
        if (call_.has("visible") && (!n.dag || !visible(item.path)))
            return false;
        if (call_.has("invisible") && (!n.dag || visible(item.path)))
            return false;
        if (call_.has("defaultNodes") && !n.isDefault)
            return false;
        if (call_.has("undeletable") && !n.isDefault)
            return false;
        if (call_.has("lockedNodes") && !n.locked)
            return false;
        if ((call_.has("referencedNodes") || call_.has("readOnly")) && !n.referenced)
            return false;
        return typeWanted(t);
    }

    void print(const Item& item, Strings& out) const
    {
        if (call_.has("uuid"))
            return out.push_back(uuidOf(*nodeOf(item)));
        Item bare = item;
        if (call_.has("objectsOnly"))
            bare.plug = nullptr, bare.component = {};
        if (bare.component)
            for (std::string& text : call_.has("flatten") ? flatTexts(bare) : names::texts(bare))
                out.push_back(std::move(text));
        else
            out.push_back(name(bare));
        if (call_.has("showType"))
            out.push_back(nodeOf(item)->type->name);
    }

private:
    /// What does not exist is left out without an error, also under names nobody could have.
    static std::vector<Item> tolerant(const std::string& name)
    {
        try
        {
            return resolveItems(name);
        }
        catch (const Error&)
        {
            return {};
        }
    }

    /// One text for each element.
    static std::vector<std::string> flatTexts(const Item& item)
    {
        std::vector<std::string> out;
        const Component&         c = *item.component;
        const size_t             d = size_t(c.dimensions());
        const std::vector<int>   elements = allElements(c);
        Item                     one = item;
        for (size_t i = 0; i + d <= elements.size(); i += d)
        {
            one.component = makeComponent(c.apiType());
            addElements(*one.component, &elements[i], 1);
            out.push_back(names::text(one));
        }
        return out.empty() ? names::texts(item) : out;
    }

    void addPaths(Node& n, std::vector<Item>& out) const
    {
        if (n.dag && n.dag->parents.empty())
            return;   // the world
        if (n.dag && call_.has("allPaths"))
            for (const Path& p : dag::allPaths(n))
                out.push_back(itemOf(p));
        else
            out.push_back(itemOf(n));
    }

    std::vector<Item> withDescendants(const std::vector<Item>& from) const
    {
        std::vector<Item> out;
        const auto add = [&](const Item& item) {
            if (std::find(out.begin(), out.end(), item) == out.end())
                out.push_back(item);
        };
        for (const Item& item : from)
            if (item.node->dag && !item.plug && !item.component)
            {
                add(item);
                if (!call_.args.empty() || call_.has("selection"))
                    dag::descend(item.path, [&](const Path& p) { return add(itemOf(p)), true; });
            }
        return out;
    }

    bool typeWanted(const NodeType& t) const
    {
        for (const auto* use : call_.all("excludeType"))
            if (t.isA(use->args[0].asString()))
                return false;
        if (!call_.has("type") && !call_.has("exactType"))
            return true;
        for (const auto* use : call_.all("type"))
            if (t.isA(use->args[0].asString()))
                return true;
        for (const auto* use : call_.all("exactType"))
            if (t.name == use->args[0].asString())
                return true;
        return false;
    }

    std::string name(const Item& item) const
    {
        if (call_.has("shortNames") && !item.plug && !item.component)
            return item.node->name;
        return itemName(item, call_.has("long"));
    }

    Call& call_;
};

Value ls(Call& call)
{
    Strings out;
    if (call.has("nodeTypes"))
    {
        for (NodeType* t : nodeTypes())
            if (!t->abstract)
                out.push_back(t->name);
        return Value(out);
    }
    Lister            lister(call);
    std::vector<Item> items = lister.candidates();
    std::erase_if(items, [&](const Item& i) { return !lister.wanted(i); });
    std::vector<Item> unique;
    for (Item& i : items)
        if (call.args.empty() || std::find(unique.begin(), unique.end(), i) == unique.end())
            unique.push_back(std::move(i));
    if (call.has("head"))
        unique.resize(std::min(unique.size(), size_t(std::max(0, call.integer("head")))));
    if (call.has("tail"))
        unique.erase(unique.begin(), unique.end() - long(std::min(unique.size(), size_t(std::max(0, call.integer("tail"))))));
    const bool byName = call.args.empty() && !call.has("selection") && !call.has("orderedSelection") && !call.has("dagObjects");
    if (byName)   // the whole scene is listed in the order of names, uniquely for a given scene
        std::stable_sort(unique.begin(), unique.end(), [](const Item& a, const Item& b) { return a.node->name < b.node->name; });
    for (const Item& i : unique)
        lister.print(i, out);
    return Value(out);
}

constexpr Flag kListRelatives[] = {
    {"ad", "allDescendents"}, {"ap", "allParents"}, {"c", "children"}, {"f", "fullPath"}, {"ni", "noIntermediate"}, {"p", "parent"},
    {"pa", "path"}, {"s", "shapes"}, {"typ", "type", "s", kCreate, true},
};

class Relatives
{
public:
    explicit Relatives(const Call& call) : call_(call) {}

    void of(const Path& path)
    {
        Node& n = *path.node();
        if (call_.has("parent"))
        {
            if (path.nodes.size() > 1)
            {
                Path up = path;
                up.nodes.pop_back();
                add(up);
            }
        }
        else if (call_.has("allParents"))
        {
            for (Path p : dag::allPaths(n))
                if (p.nodes.pop_back(); !p.nodes.empty())
                    add(p);
        }
        else if (call_.has("allDescendents"))
            below(path);
        else
            for (Node* child : n.dag->children)
                if (!call_.has("shapes") || isShape(*child))
                    add(append(path, *child));
    }

    Strings out;

private:
    static Path append(const Path& path, Node& child)
    {
        Path p = path;
        p.nodes.push_back(Ref<Node>(&child));
        return p;
    }

    /// Children before their parents, as the host lists them.
    void below(const Path& path)
    {
        const auto& children = path.node()->dag->children;
        for (auto it = children.rbegin(); it != children.rend(); ++it)
        {
            const Path p = append(path, **it);
            below(p);
            if (!call_.has("shapes") || isShape(**it))
                add(p);
        }
    }

    void add(const Path& p)
    {
        Node& n = *p.node();
        if (call_.has("noIntermediate") && boolAttr(n, "intermediateObject"))
            return;
        const auto types = call_.all("type");
        if (!types.empty() && std::none_of(types.begin(), types.end(), [&](auto* u) { return n.type->isA(u->args[0].asString()); }))
            return;
        std::string name = call_.has("fullPath") ? dag::fullName(p) : call_.has("path") ? dag::partialName(p) : n.name;
        if (std::find(out.begin(), out.end(), name) == out.end() || !(call_.has("fullPath") || call_.has("path") || call_.has("parent")))
            out.push_back(std::move(name));
    }

    const Call& call_;
};

Value listRelatives(Call& call)
{
    Relatives relatives(call);
    for (const Item& item : callItems(call))
        if (!item.path.nodes.empty())
            relatives.of(item.path);
    return relatives.out.empty() ? Value() : Value(relatives.out);
}

const Command kCommands[] = {
    {"ls", kLs, ls, false},
    {"listRelatives", kListRelatives, listRelatives, false},
};

}  // namespace

void registerListCommands() { add(kCommands); }

}  // namespace mirk::command
