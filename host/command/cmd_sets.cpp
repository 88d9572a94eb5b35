// Object sets and partitions: sets, partition, listSets.
#include <algorithm>

#include "command/anim_commands.h"
#include "command/cmd_util.h"
#include "dag/selection_list.h"
#include "nodes/sets.h"

namespace mirk::command {
namespace {

constexpr uint8_t kAny = kCreate | kQuery | kEdit, kChange = kCreate | kEdit;

constexpr Flag kSets[] = {
    {"add", "addElement", "s", kChange}, {"cl", "clear", "s", kChange}, {"cp", "copy", "s", kChange}, {"co", "color", "i", kAny}, {"eg", "edges", "", kAny},
    {"ep", "editPoints", "", kAny}, {"em", "empty", "", kChange}, {"fc", "facets", "", kAny}, {"fl", "flatten", "s", kChange},
    {"fe", "forceElement", "s", kChange}, {"in", "include", "s", kChange}, {"int", "intersection", "s", kChange}, {"ii", "isIntersecting", "s", kChange},
    {"im", "isMember", "s", kChange}, {"l", "layer", "b", kAny}, {"n", "name", "s", kChange}, {"no", "nodesOnly", "", kQuery}, {"nss", "noSurfaceShader", "b", kCreate},
    {"rm", "remove", "s", kChange}, {"r", "renderable", "b", kAny}, {"s", "size", "", kQuery}, {"sp", "split", "s", kChange},
    {"sub", "subtract", "s", kChange}, {"t", "text", "s", kAny}, {"un", "union", "s", kChange}, {"v", "vertices", "", kAny},
};

struct Restriction { const char* flag; const char* attribute; };
constexpr Restriction kRestrictions[] = {
    {"vertices", "verticesOnlySet"}, {"edges", "edgesOnlySet"}, {"facets", "facetsOnlySet"},
    {"editPoints", "editPointsOnlySet"}, {"renderable", "renderableOnlySet"},
};

Node& setNamed(const std::string& name)
{
    Node& node = oneNode(name);
    if (!sets::isSet(node))
        fail("'" + name + "' is not a set");
    return node;
}

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

Strings texts(const std::vector<Item>& items)
{
    Strings out;
    for (const Item& item : items)
        for (std::string& s : names::texts(item))
            out.push_back(std::move(s));
    return out;
}

/// What an operation works on: a set stands for its members, anything else for itself.
std::vector<Item> operand(const Item& item)
{
    if (!item.plug && !item.component && sets::isSet(*item.node))
        return sets::members(*item.node);
    return {item};
}

std::vector<Item> operands(const Call& call)
{
    std::vector<Item> out;
    for (const Item& item : callItems(call))
        for (const Item& part : operand(item))
            mergeItem(out, part);
    return out;
}

/// An object shows one shading group: all of them are in one partition.
void joinRenderPartition(Node& group)
{
    Node* partition = scene().first("renderPartition");
    if (!partition) {
        partition = edit::createNode(findNodeType("partition"), "renderPartition");
        edit::setNumber(cellOf(*partition, "partitionType"), 1);
    }
    sets::joinPartition(group, *partition);
}

Node& makeSet(const Call& call, const std::vector<Item>& members)
{
    const std::string name = call.str("name", "set#");
    const bool        shading = call.boolean("renderable");
    Node* set = edit::createNode(findNodeType(shading ? "shadingEngine" : "objectSet"), name.empty() ? "set#" : name);
    if (shading)
        joinRenderPartition(*set);
    int   restrictions = 0;
    for (const Restriction& r : kRestrictions)
        if (call.has(r.flag) && (shading || std::string(r.flag) != "renderable")) {
            edit::setNumber(cellOf(*set, r.attribute), 1);
            ++restrictions;
        }
    if (restrictions > 1)
        fail("sets: a set can be restricted to one kind of member only");
    if (call.has("text"))
        edit::setData(cellOf(*set, "annotation"), make<StringData>(call.str("text")));
    if (call.has("layer"))
        edit::setNumber(cellOf(*set, "isLayer"), call.boolean("layer"));
    if (call.has("color"))
        edit::setNumber(cellOf(*set, "memberWireframeColor"), call.integer("color"));
    for (const Item& item : members)
        sets::add(*set, item);
    return *set;
}

Value querySet(Call& call)
{
    const Strings names = call.names();
    if (names.size() != 1)
        fail("sets: one set has to be named");
    Node& set = setNamed(names[0]);
    if (call.has("size"))
        return Value(int(sets::members(set).size()));
    if (call.has("text")) {
        const auto* text = dynamic_cast<StringData*>(cellOf(set, "annotation").data());
        return Value(text ? text->value : std::string());
    }
    if (call.has("color"))
        return Value(int(cellOf(set, "memberWireframeColor").number()));
    call.truth = true;
    if (call.has("layer"))
        return Value(cellOf(set, "isLayer").number() != 0);
    for (const Restriction& r : kRestrictions)
        if (call.has(r.flag))
            return Value(cellOf(set, r.attribute).number() != 0);
    call.truth = false;
    if (!call.has("nodesOnly"))
        return Value(texts(sets::members(set)));
    Strings out;
    for (const Item& item : sets::members(set))
        if (const std::string name = nodeName(*item.node); std::find(out.begin(), out.end(), name) == out.end())
            out.push_back(name);
    return Value(out);
}

/// Questions and lists: what does not change a set. None if no such flag was given.
bool computed(Call& call, Value& out)
{
    if (call.has("isMember") || call.has("isIntersecting")) {
        Node&      set = setNamed(call.has("isMember") ? call.str("isMember") : call.str("isIntersecting"));
        const bool all = call.has("isMember");
        const auto items = all ? callItems(call) : operands(call);
        const auto in = [&](const Item& item) { return all ? sets::contains(set, item) : sets::touches(set, item); };
        call.truth = true;
        out = Value(all ? !items.empty() && std::all_of(items.begin(), items.end(), in) : std::any_of(items.begin(), items.end(), in));
        return true;
    }
    if (call.has("union")) {
        std::vector<Item> all = sets::members(setNamed(call.str("union")));
        for (const Item& item : operands(call))
            mergeItem(all, item);
        out = Value(texts(all));
    } else if (call.has("intersection")) {
        std::vector<Item> all = sets::members(setNamed(call.str("intersection")));
        for (const Item& item : callItems(call))
            all = sets::intersection(all, operand(item));
        out = Value(texts(all));
    } else if (call.has("subtract")) {
        out = Value(texts(sets::difference(sets::members(setNamed(call.str("subtract"))), operands(call))));
    } else
        return false;
    return true;
}

Value editSets(Call& call)
{
    Value out;
    if (computed(call, out))
        return out;
    const struct { const char* flag; bool force; } joins[] = {{"addElement", false}, {"include", false}, {"forceElement", true}};
    for (const auto& j : joins)
        if (call.has(j.flag)) {
            Node& set = setNamed(call.str(j.flag));
            for (const Item& item : call.has("include") ? operands(call) : callItems(call))
                sets::add(set, item, j.force);
            return Value(nodeName(set));
        }
    if (call.has("remove")) {
        Node& set = setNamed(call.str("remove"));
        for (const Item& item : callItems(call))
            sets::remove(set, item);
        return Value(nodeName(set));
    }
    if (call.has("clear")) {
        Node& set = setNamed(call.str("clear"));
        sets::clear(set);
        return Value(nodeName(set));
    }
    if (call.has("flatten")) {
        Node&      set = setNamed(call.str("flatten"));
        const auto all = sets::flattened(set);
        sets::clear(set);
        for (const Item& item : all)
            sets::add(set, item);
        return Value(nodeName(set));
    }
    if (call.has("copy"))
        return Value(nodeName(makeSet(call, sets::members(setNamed(call.str("copy"))))));
    if (call.has("split")) {
        const auto items = operands(call);
        Node&      from = setNamed(call.str("split"));
        Node&      made = makeSet(call, items);
        for (const Item& item : items)
            sets::remove(from, item);
        return Value(nodeName(made));
    }
    if (call.isEdit()) {
        Node& set = setNamed(call.names().empty() ? "" : call.names()[0]);
        if (call.has("text"))
            edit::setData(cellOf(set, "annotation"), make<StringData>(call.str("text")));
        if (call.has("layer"))
            edit::setNumber(cellOf(set, "isLayer"), call.boolean("layer"));
        if (call.has("color"))
            edit::setNumber(cellOf(set, "memberWireframeColor"), call.integer("color"));
        return Value(nodeName(set));
    }
    return Value(nodeName(makeSet(call, call.has("empty") ? std::vector<Item>() : callItems(call))));
}

Value setsCommand(Call& call) { return call.isQuery() ? querySet(call) : editSets(call); }

constexpr Flag kPartition[] = {
    {"add", "addSet", "s", kChange}, {"n", "name", "s", kChange}, {"re", "render", "", kAny}, {"rm", "removeSet", "s", kChange},
};

Node& partitionNamed(const std::string& name)
{
    Node& node = oneNode(name);
    if (!isA(node, "partition"))
        fail("'" + name + "' is not a partition");
    return node;
}

Value partition(Call& call)
{
    if (call.isQuery()) {
        Strings out;
        for (Node* set : sets::setsIn(partitionNamed(call.names().empty() ? "" : call.names()[0])))
            out.push_back(nodeName(*set));
        return Value(out);
    }
    std::vector<Node*> members;
    for (const std::string& name : call.names())
        members.push_back(&setNamed(name));
    if (call.has("removeSet")) {
        Node& from = partitionNamed(call.str("removeSet"));
        Cell& multi = cellOf(from, "sets");
        for (Node* set : members)
            for (size_t i = multi.elementCount(); i-- > 0;)
                if (const Cell* source = multi.elements->cells[i]->source; source && source->node == set)
                    edit::removeElement(*multi.elements->cells[i]);
        return Value(nodeName(from));
    }
    Node& into = call.has("addSet") ? partitionNamed(call.str("addSet"))
                                    : *edit::createNode(findNodeType("partition"), call.str("name", "partition#"));
    if (call.has("render"))
        edit::setNumber(cellOf(into, "partitionType"), 1);
    for (Node* set : members)
        sets::joinPartition(*set, into);
    return Value(nodeName(into));
}

constexpr Flag kListSets[] = {{"o", "object", "s"}, {"as", "allSets"}, {"t", "type", "i"}, {"ets", "extendToShape"}};

Value listSets(Call& call)
{
    std::vector<Node*> found;
    if (call.has("object")) {
        for (const Item& item : someItems(call.str("object"))) {
            found = sets::setsOf(item);
            if (call.has("extendToShape") && !item.component)
                for (Node* shape : shapesOf(*item.node))
                    for (Node* set : sets::setsOf(itemOf(*shape)))
                        if (std::find(found.begin(), found.end(), set) == found.end())
                            found.push_back(set);
        }
    } else {
        for (Node* node : scene().nodes())
            if (sets::isSet(*node))
                found.push_back(node);
    }
    Strings out;
    for (Node* set : found)
        out.push_back(nodeName(*set));
    return Value(out);
}

const Command kCommands[] = {
    {"sets", kSets, setsCommand},
    {"partition", kPartition, partition},
    {"listSets", kListSets, listSets, false},
};

}  // namespace

void registerSetCommands() { add(kCommands); }

}  // namespace mirk::command
