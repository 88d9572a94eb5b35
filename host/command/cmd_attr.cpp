// Attributes: listing them, asking about them, dynamic ones, aliases, elements of multis.
#include "command/attr_value.h"
#include "command/cmd_util.h"
#include "graph/evaluate.h"

namespace mirk::command {

namespace {

constexpr uint8_t kBoth = kCreate | kQuery;

constexpr Flag kListAttr[] = {
    {"a", "array"}, {"ca", "caching"}, {"cb", "channelBox"}, {"c", "connectable"}, {"cfo", "changedSinceFileOpen"}, {"ct", "category", "s", kCreate, true},
    {"hd", "hasData"}, {"hnd", "hasNullData"}, {"k", "keyable"}, {"l", "locked"}, {"lf", "leaf"}, {"m", "multi"}, {"o", "output"}, {"r", "read"},
    {"ra", "ramp"}, {"s", "scalar"}, {"sa", "scalarAndArray"}, {"se", "settable"}, {"sn", "shortNames"}, {"st", "string", "s", kCreate, true},
    {"u", "unlocked"}, {"ud", "userDefined"}, {"usf", "usedAsFilename"}, {"v", "visible"}, {"w", "write"}, {"inUse", "inUse"}, {"fp", "fromPlugin"},
    {"ex", "extension"},
};

class AttributeLister
{
public:
    AttributeLister(const Call& call, Node& node) : call_(call), node_(node) {}

    void all()
    {
        const auto top = [&](const Attribute& a) {
            if (!a.parent)
                visit(a, "", "");
        };
        node_.eachAttribute(top);
    }

    /// One attribute and what stands below it.
    void below(const Attribute& a) { visit(a, "", ""); }

    Strings out;

private:
    void visit(const Attribute& a, const std::string& longPath, const std::string& shortPath)
    {
        const std::string l = longPath + a.longName, s = shortPath + a.shortName;
        if (wanted(a))
            out.push_back(call_.has("shortNames") ? s : l);
        // children of multis are listed under their multi, others by their own names
        const bool prefix = a.isArray() || !longPath.empty();
        if (!a.isArray() || call_.has("multi") || a.isCompound())
            for (const auto& c : a.children)
                visit(*c, prefix ? l + "." : longPath, prefix ? s + "." : shortPath);
    }

    bool wanted(const Attribute& a) const
    {
        Cell* cell = node_.cellIfAny(&a);
        const bool locked = cell && cell->is(Cell::kLocked);
        const bool keyable = cell && cell->is(Cell::kOwnKeyable) ? cell->is(Cell::kIsKeyable) : a.is(Attribute::kKeyable);
        const bool channel = cell && cell->is(Cell::kOwnChannelBox) ? cell->is(Cell::kIsChannelBox) : a.is(Attribute::kChannelBox);
        const bool scalar = storeDimension(a.store) == 1;
        const bool plugin = !node_.type->plugin.empty() && !a.is(Attribute::kDynamic) && a.slot >= int(node_.type->ownFirst);
        const struct { const char* flag; bool is; } tests[] = {
            {"array", a.isArray()}, {"multi", a.isArray()}, {"caching", a.is(Attribute::kCached)}, {"channelBox", channel}, {"connectable", a.is(Attribute::kConnectable)},
            {"keyable", keyable}, {"locked", locked}, {"unlocked", !locked}, {"leaf", a.children.empty()}, {"read", a.is(Attribute::kReadable)},
            {"write", a.is(Attribute::kWritable)}, {"output", node_.isComputed(&a) || (a.is(Attribute::kReadable) && !a.is(Attribute::kWritable))},
            {"scalar", scalar && !a.isArray()}, {"scalarAndArray", scalar}, {"settable", a.is(Attribute::kWritable) && !locked && !(cell && cell->source)},
            {"userDefined", a.is(Attribute::kDynamic)}, {"usedAsFilename", a.is(Attribute::kUsedAsFilename)}, {"visible", !a.is(Attribute::kHidden)},
            {"ramp", a.is(Attribute::kRampCurve) || a.is(Attribute::kRampColor)}, {"hasData", cell && (a.store != Store::kData || cell->data())},
            {"hasNullData", !(cell && (a.store != Store::kData || cell->data()))}, {"inUse", cell && (cell->is(Cell::kSet) || cell->source || cell->hasTargets())},
            {"changedSinceFileOpen", cell && cell->is(Cell::kSet)}, {"fromPlugin", plugin}, {"extension", false}};
        for (const auto& t : tests)
            if (call_.has(t.flag) && !t.is)
                return false;
        const auto names = call_.all("string");
        if (!names.empty() && std::none_of(names.begin(), names.end(), [&](auto* u) { return matches(a.longName, u->args[0].asString()) || matches(a.shortName, u->args[0].asString()); }))
            return false;
        const auto categories = call_.all("category");
        return categories.empty() || std::any_of(categories.begin(), categories.end(), [&](auto* u) {
            return std::find(a.categories.begin(), a.categories.end(), u->args[0].asString()) != a.categories.end();
        });
    }

    const Call& call_;
    Node&       node_;
};

Value listAttr(Call& call)
{
    Strings out;
    for (const Item& item : callItems(call))
    {
        AttributeLister lister(call, *nodeOf(item));
        if (item.plug)
            lister.below(*item.plug->attr);
        else
            lister.all();
        for (std::string& s : lister.out)
            if (std::find(out.begin(), out.end(), s) == out.end())
                out.push_back(std::move(s));
    }
    return out.empty() ? Value() : Value(out);
}

constexpr Flag kAttributeQuery[] = {
    {"aa", "affectsAppearance"}, {"at", "attributeType"}, {"ci", "cachedInternally"}, {"ch", "channelBox"}, {"ct", "categories"}, {"ex", "exists"}, {"en", "enum"},
    {"h", "hidden"}, {"i", "internal"}, {"ig", "internalGet"}, {"is", "internalSet"}, {"im", "indexMatters"}, {"k", "keyable"}, {"lc", "listChildren"}, {"le", "listEnum"},
    {"ld", "listDefault"}, {"lp", "listParent"}, {"ls", "listSiblings"}, {"ln", "longName"}, {"m", "multi"}, {"max", "maximum"}, {"min", "minimum"},
    {"mxe", "maxExists"}, {"mne", "minExists"}, {"n", "node", "s"}, {"nc", "numberOfChildren"}, {"nn", "niceName"}, {"r", "range"}, {"re", "rangeExists"},
    {"rd", "readable"}, {"st", "storable"}, {"s", "softRange"}, {"se", "softRangeExists"}, {"smx", "softMax"}, {"smn", "softMin"}, {"sxe", "softMaxExists"}, {"sme", "softMinExists"},
    {"sn", "shortName"}, {"typ", "type", "s"}, {"uac", "usedAsColor"}, {"uaf", "usedAsFilename"}, {"w", "writable"}, {"ws", "worldSpace"}, {"c", "connectable"},
    {"msg", "message"}, {"aws", "affectsWorldspace"}, {"rs", "renderSource"}, {"umb", "usesMultiBuilder"},
};

std::string niceName(const Attribute& a)
{
    if (!a.niceName.empty())
        return a.niceName;
    std::string out;
    for (char c : a.longName)
    {
        if (std::isupper(static_cast<unsigned char>(c)) && !out.empty() && !std::isupper(static_cast<unsigned char>(out.back())))
            out += ' ';
        out += out.empty() ? char(std::toupper(static_cast<unsigned char>(c))) : c;
    }
    return out;
}

Value defaults(const Attribute& a)
{
    std::vector<double> out;
    if (!a.children.empty())
        for (const auto& c : a.children)
            out.push_back(toUi(*c, c->defaults[0]));
    else
        for (int i = 0; i < std::max(1, storeDimension(a.store)); ++i)
            out.push_back(toUi(a, a.defaults[i]));
    return Value(out);
}

Value attributeQuery(Call& call)
{
    const Strings names = call.names();
    if (names.size() != 1)
        fail("attributeQuery: one attribute has to be given");
    const Attribute* found = nullptr;
    if (call.has("type"))
    {
        NodeType* type = findNodeType(call.str("type"));
        if (!type)
            fail("Unknown object type: " + call.str("type"));
        found = type->find(names[0]);
    }
    else
    {
        const std::vector<Item> items = call.has("node") ? someItems(call.str("node")) : selection::get();
        if (items.empty())
            fail("attributeQuery: a node has to be given");
        found = nodeOf(items.front())->findAttribute(names[0]);
    }
    if (call.has("exists"))
        return call.truth = true, Value(found != nullptr);
    if (!found)
        fail("Unknown attribute: " + names[0]);
    const Attribute& a = *found;
    using A = Attribute;
    const struct { const char* flag; bool is; } facts[] = {
        {"affectsAppearance", a.is(A::kAffectsAppearance)}, {"cachedInternally", a.is(A::kCached)}, {"channelBox", a.is(A::kChannelBox)}, {"connectable", a.is(A::kConnectable)},
        {"enum", a.kind == AttrKind::kEnum}, {"hidden", a.is(A::kHidden)}, {"internal", a.is(A::kInternal)}, {"internalGet", a.is(A::kInternal)}, {"internalSet", a.is(A::kInternal)}, {"indexMatters", a.is(A::kIndexMatters)},
        {"keyable", a.is(A::kKeyable)}, {"message", a.kind == AttrKind::kMessage}, {"multi", a.isArray()}, {"readable", a.is(A::kReadable)}, {"writable", a.is(A::kWritable)},
        {"storable", a.is(A::kStorable)}, {"usedAsColor", a.is(A::kUsedAsColor)}, {"usedAsFilename", a.is(A::kUsedAsFilename)}, {"worldSpace", a.is(A::kWorldSpace)},
        {"affectsWorldspace", a.is(A::kWorldSpace)}, {"renderSource", a.is(A::kRenderSource)}, {"usesMultiBuilder", a.is(A::kUsesBuilder)}, {"maxExists", (a.limits & A::kMax) != 0},
        {"minExists", (a.limits & A::kMin) != 0}, {"rangeExists", (a.limits & A::kMin) && (a.limits & A::kMax)}, {"softMaxExists", (a.limits & A::kSoftMax) != 0},
        {"softMinExists", (a.limits & A::kSoftMin) != 0}, {"softRangeExists", (a.limits & A::kSoftMin) && (a.limits & A::kSoftMax)}};
    for (const auto& f : facts)
        if (call.has(f.flag))
            return call.truth = true, Value(f.is);
    const auto number = [&](uint8_t limit, double v) { return a.limits & limit ? Value(std::vector<double>{toUi(a, v)}) : Value(); };
    if (call.has("minimum"))
        return number(A::kMin, a.min);
    if (call.has("maximum"))
        return number(A::kMax, a.max);
    if (call.has("softMin"))
        return number(A::kSoftMin, a.softMin);
    if (call.has("softMax"))
        return number(A::kSoftMax, a.softMax);
    if (call.has("range"))
        return Value(std::vector<double>{toUi(a, a.min), toUi(a, a.max)});
    if (call.has("softRange"))
        return Value(std::vector<double>{toUi(a, a.softMin), toUi(a, a.softMax)});
    if (call.has("listDefault"))
        return defaults(a);
    if (call.has("longName"))
        return Value(a.longName);
    if (call.has("shortName"))
        return Value(a.shortName);
    if (call.has("niceName"))
        return Value(niceName(a));
    if (call.has("attributeType"))
        return Value(a.kind == AttrKind::kTyped ? std::string("typed") : a.kind == AttrKind::kCompound && !a.isTuple() ? std::string("compound") : typeNameOf(a));
    if (call.has("numberOfChildren"))
        return Value(Ints{int(a.children.size())});
    if (call.has("categories"))
        return Value(a.categories);
    Strings list;
    if (call.has("listChildren"))
        for (const auto& c : a.children)
            list.push_back(c->longName);
    else if (call.has("listParent") && a.parent)
        list.push_back(a.parent->longName);
    else if (call.has("listSiblings") && a.parent)
    {
        for (const auto& c : a.parent->children)
            if (c.get() != &a)
                list.push_back(c->longName);
    }
    else if (call.has("listEnum"))
        list.push_back(enumFields(a));
    return list.empty() ? Value() : Value(list);
}

constexpr Flag kDeleteAttr[] = {{"at", "attribute", "s"}, {"n", "name", "s"}};

void deleteOne(Node& node, const std::string& name)
{
    if (node.locked)
        fail("Cannot delete an attribute of the locked node '" + nodeName(node) + "'");
    Attribute* a = node.findAttribute(name);
    if (!a)
        fail("No attribute '" + name + "' on '" + nodeName(node) + "'");
    if (!a->is(Attribute::kDynamic))
        fail("Cannot delete the static attribute '" + name + "' of '" + nodeName(node) + "'");
    if (a->parent)
        fail("Cannot delete '" + name + "': it is a child of '" + a->parent->longName + "'");
    if (Cell* cell = node.cellIfAny(a); cell && cell->is(Cell::kLocked))
        fail("Cannot delete the locked attribute '" + name + "' of '" + nodeName(node) + "'");
    edit::deleteDynamic(node, *a);
}

Value deleteAttr(Call& call)
{
    if (call.has("attribute"))
    {
        for (Node* n : callNodes(call))
            deleteOne(*n, call.str("attribute"));
        return {};
    }
    const Strings names = call.names();
    if (names.empty())
        fail("deleteAttr: an attribute has to be given");
    for (const std::string& name : names)
    {
        Cell& cell = onePlug(name);
        deleteOne(*cell.node, cell.attr->longName);
    }
    return {};
}

constexpr Flag kAliasAttr[] = {{"rm", "remove"}};

Value aliasAttr(Call& call)
{
    const Strings names = call.names();
    if (call.isQuery())
    {
        Strings out;
        if (names.empty())
            fail("aliasAttr -query: a node or an attribute has to be given");
        const size_t dot = names[0].find('.');
        Node& node = oneNode(names[0].substr(0, dot));
        if (dot != std::string::npos)
        {
            const std::string path = plugPath(onePlug(names[0]));
            for (const auto& [alias, plug] : node.aliases)
                if (plug == path)
                    return Value(alias);
            return Value("");
        }
        for (const auto& [alias, plug] : node.aliases)
        {
            out.push_back(alias);
            out.push_back(plug);
        }
        return out.empty() ? Value() : Value(out);
    }
    if (call.has("remove"))
    {
        for (const std::string& name : names)
        {
            Cell& cell = onePlug(name);
            edit::setAlias(*cell.node, plugPath(cell), "");
        }
        return {};
    }
    if (names.empty() || names.size() % 2)
        fail("aliasAttr: pairs of an alias and an attribute have to be given");
    for (size_t i = 0; i < names.size(); i += 2)
    {
        Cell& cell = onePlug(names[i + 1]);
        if (!edit::validName(names[i]))
            fail("The alias '" + names[i] + "' has illegal characters");
        if (cell.node->findAttribute(names[i]))
            fail("The name '" + names[i] + "' is already used on '" + nodeName(*cell.node) + "'");
        edit::setAlias(*cell.node, plugPath(cell), names[i]);
    }
    return {};
}

constexpr Flag kRemoveMulti[] = {{"b", "break", "b"}, {"all", "allChildren"}};

Value removeMultiInstance(Call& call)
{
    for (const std::string& name : call.names())
    {
        Cell& cell = onePlug(name, false);
        if (!cell.isElement() && !cell.isMulti())
            fail("'" + name + "' is no element of a multi attribute");
        std::vector<Cell*> elements{&cell};
        if (cell.isMulti())
        {
            if (!call.has("allChildren"))
                fail("'" + name + "' is no element of a multi attribute");
            elements = cell.elements ? cell.elements->cells : std::vector<Cell*>();
        }
        for (Cell* e : elements)
        {
            bool connected = false;
            walkCells(*e, [&](Cell& c) { connected |= c.source || c.hasTargets(); });
            if (connected && !call.boolean("break"))
                fail("'" + plugText(*e) + "' is connected: use the -break flag to remove it");
            edit::removeElement(*e);
        }
    }
    return {};
}

const Command kCommands[] = {
    {"listAttr", kListAttr, listAttr, false},
    {"attributeQuery", kAttributeQuery, attributeQuery, false},
    {"deleteAttr", kDeleteAttr, deleteAttr},
    {"aliasAttr", kAliasAttr, aliasAttr},
    {"removeMultiInstance", kRemoveMulti, removeMultiInstance},
};

}  // namespace

void registerAddAttr();

void registerAttrCommands()
{
    add(kCommands);
    registerAddAttr();
}

}  // namespace mirk::command
