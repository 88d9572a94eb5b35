#include "command/cmd_util.h"

#include <cmath>
#include <cstring>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>

#include "command/value_text.h"
#include "graph/evaluate.h"
#include "io/scene_file.h"

namespace mirk::command {

void fail(const std::string& message) { throw Error(message); }

namespace {

/// A name in a file that is being imported: its nodes may have got other names.
std::string fileName(const std::string& text)
{
    const size_t dot = std::min(text.find('.'), text.size());
    std::string  out;
    for (size_t at = 0; at <= dot;)
    {
        const size_t end = std::min(text.find('|', at), dot);
        out += io::importedName(text.substr(at, end - at));
        if (end < dot)
            out += '|';
        at = end + 1;
    }
    return out + text.substr(dot);
}

/// ":a" names a in the root namespace; ".x" is an attribute of the selected node.
std::string normalName(const std::string& text)
{
    std::string name = text;
    if (!name.empty() && name[0] == ':')
        name.erase(0, 1);
    if (!name.empty() && name[0] == '.')
    {
        for (const Item& item : selection::get())
            if (Node* node = nodeOf(item))
                return dag::shortestName(*node) + name;
        fail("No node is selected that '" + text + "' could belong to");
    }
    return io::readingFile() ? fileName(name) : name;
}

struct Range { size_t open, close; int first, last; bool all; };

/// The first "[a:b]" or "[*]" behind the node's name.
bool findRange(const std::string& name, Range& range)
{
    const size_t dot = name.find('.');
    for (size_t open = name.find('[', dot); open != std::string::npos; open = name.find('[', open + 1))
    {
        const size_t close = name.find(']', open);
        if (close == std::string::npos)
            return false;
        const std::string inside = name.substr(open + 1, close - open - 1);
        range = {open, close, 0, 0, inside == "*"};
        if (range.all)
            return true;
        char tail = 0;
        if (std::sscanf(inside.c_str(), "%d:%d%c", &range.first, &range.last, &tail) == 2)
            return true;
    }
    return false;
}

void expandPlugs(const std::string& name, bool create, std::vector<Cell*>& out)
{
    Range r;
    if (!findRange(name, r))
    {
        out.push_back(&names::plug(name, create));
        return;
    }
    std::vector<int> indices;
    if (r.all)
    {
        const Cell& multi = names::plug(name.substr(0, r.open), true);
        for (size_t i = 0; i < multi.elementCount(); ++i)
            indices.push_back(multi.elements->cells[i]->index);
    }
    else
    {
        if (r.first < 0 || r.last < r.first)
            fail("Invalid index range in '" + name + "'");
        for (int i = r.first; i <= r.last; ++i)
            indices.push_back(i);
    }
    for (int i : indices)
        expandPlugs(name.substr(0, r.open + 1) + std::to_string(i) + name.substr(r.close), create, out);
}

}  // namespace

std::vector<Item> resolveItems(const std::string& text) { return names::resolve(normalName(text)); }

std::vector<Item> someItems(const std::string& text)
{
    std::vector<Item> items = resolveItems(text);
    if (items.empty())
        fail("No object matches name: " + text);
    if (items.size() > 1 && text.find_first_of("*?[") == std::string::npos
        && std::any_of(items.begin(), items.end(), [&](const Item& i) { return nodeOf(i) != nodeOf(items[0]); }))
        fail("More than one object matches name: " + text);
    return items;
}

Item  oneItem(const std::string& text) { return names::one(normalName(text)); }
Node& oneNode(const std::string& text) { return names::node(normalName(text)); }
Cell& onePlug(const std::string& text, bool create) { return names::plug(normalName(text), create); }

std::vector<Cell*> somePlugs(const std::string& text, bool create)
{
    const std::string  name = normalName(text);
    std::vector<Cell*> out;
    if (name.substr(0, name.find('.')).find('*') != std::string::npos)
    {
        for (const Item& item : names::resolve(name))
            if (item.plug)
                out.push_back(item.plug);
        if (out.empty())
            fail("No object matches name: " + text);
    }
    else
        expandPlugs(name, create, out);
    return out;
}

std::vector<Item> callItems(const Call& call, bool orSelection)
{
    std::vector<Item> out;
    if (call.args.empty() && orSelection)
        return selection::get();
    for (const std::string& name : call.names())
        for (Item& item : someItems(name))
            out.push_back(std::move(item));
    return out;
}

std::vector<Node*> callNodes(const Call& call, bool orSelection)
{
    std::vector<Node*> out;
    for (const Item& item : callItems(call, orSelection))
        if (Node* node = nodeOf(item); node && std::find(out.begin(), out.end(), node) == out.end())
            out.push_back(node);
    return out;
}

Item itemOf(Node& node)
{
    Item item;
    item.node = Ref<Node>(&node);
    if (node.dag)
        item.path = dag::firstPath(node);
    return item;
}

Item itemOf(const Path& path)
{
    Item item;
    item.node = Ref<Node>(path.node());
    item.path = path;
    return item;
}

Node* nodeOf(const Item& item) { return item.node.get(); }

std::string nodeName(const Node& node, bool fullPath)
{
    auto& n = const_cast<Node&>(node);
    if (fullPath && node.dag)
        return dag::fullName(dag::firstPath(n));
    return dag::shortestName(n);
}

std::string itemName(const Item& item, bool fullPath)
{
    if (item.plug)
        return plugText(*item.plug, fullPath);
    if (!item.path.nodes.empty() && !item.component)
        return fullPath ? dag::fullName(item.path) : dag::partialName(item.path);
    if (item.component && fullPath)
        return dag::fullName(item.path) + "." + item.attribute;
    return names::text(item);
}

std::string plugText(const Cell& cell, bool fullPath) { return nodeName(*cell.node, fullPath) + "." + plugPath(cell); }

std::string shapeName(const std::string& transform)
{
    size_t digits = transform.size();
    while (digits > 0 && std::isdigit(static_cast<unsigned char>(transform[digits - 1])))
        --digits;
    return transform.substr(0, digits) + "Shape" + transform.substr(digits);
}

bool isShape(const Node& node) { return node.dag && node.type->shape; }
bool isTransform(const Node& node) { return node.dag && !node.type->shape; }
bool isA(const Node& node, const std::string& type) { return node.type->isA(type); }

bool boolAttr(Node& node, const char* name, bool otherwise)
{
    const Attribute* a = node.findAttribute(name);
    Cell* cell = a ? node.cell(a) : nullptr;
    if (!cell)
        return otherwise;
    eval::pull(*cell);
    return cell->number() != 0;
}

std::vector<Node*> shapesOf(Node& node)
{
    std::vector<Node*> out;
    if (isShape(node))
        return {&node};
    if (node.dag)
        for (Node* child : node.dag->children)
            if (isShape(*child) && !boolAttr(*child, "intermediateObject"))
                out.push_back(child);
    return out;
}

Node* transformOf(Node& node)
{
    if (!node.dag)
        return nullptr;
    if (!node.type->shape)
        return &node;
    return node.dag->parents.empty() ? nullptr : node.dag->parents.front();
}

double toUi(const Attribute& attr, double value)
{
    switch (attr.kind == AttrKind::kUnit ? attr.unit : MFnUnitAttribute::kInvalid)
    {
    case MFnUnitAttribute::kAngle:    return MAngle(value, MAngle::kRadians).as(MAngle::uiUnit());
    case MFnUnitAttribute::kDistance: return MDistance(value, MDistance::kCentimeters).as(MDistance::uiUnit());
    case MFnUnitAttribute::kTime:     return MTime(value, MTime::kSeconds).as(MTime::uiUnit());
    default:                          return value;
    }
}

double fromUi(const Attribute& attr, double value)
{
    switch (attr.kind == AttrKind::kUnit ? attr.unit : MFnUnitAttribute::kInvalid)
    {
    case MFnUnitAttribute::kAngle:    return MAngle(value, MAngle::uiUnit()).as(MAngle::kRadians);
    case MFnUnitAttribute::kDistance: return MDistance(value, MDistance::uiUnit()).as(MDistance::kCentimeters);
    case MFnUnitAttribute::kTime:     return MTime(value, MTime::uiUnit()).as(MTime::kSeconds);
    default:                          return value;
    }
}

double timeSeconds(const Value& value)
{
    if (value.kind() != Value::kString)
        return MTime(value.asFloat(), MTime::uiUnit()).as(MTime::kSeconds);
    const std::string text = value.get<std::string>();
    const size_t      unitAt = text.find_first_not_of("0123456789.+- ");
    const std::string unit = unitAt == std::string::npos ? "" : text.substr(unitAt);
    const double      number = leadingNumber(text);
    const struct { const char* name; double seconds; } units[] = {
        {"hour", 3600}, {"min", 60}, {"sec", 1}, {"millisec", 0.001}, {"game", 1 / 15.0}, {"film", 1 / 24.0},
        {"pal", 1 / 25.0}, {"ntsc", 1 / 30.0}, {"show", 1 / 48.0}, {"palf", 1 / 50.0}, {"ntscf", 1 / 60.0}};
    if (unit.empty())
        return MTime(number, MTime::uiUnit()).as(MTime::kSeconds);
    for (const auto& u : units)
        if (unit == u.name)
            return number * u.seconds;
    fail("Invalid time: " + text);
}

Arguments::Arguments(std::vector<Value> args)
{
    args_.reserve(args.size());
    for (Value& v : args)
        if (v.kind() == Value::kVector || v.isArray() || v.kind() == Value::kMatrix)
        {
            if (v.kind() == Value::kStrings)
                for (std::string& s : v.asStrings())
                    args_.emplace_back(std::move(s));
            else
                for (const Floats all = v.asFloats(); double d : *all)
                    args_.emplace_back(d);
        }
        else
            args_.push_back(std::move(v));
}

const Value& Arguments::next(const char* what)
{
    if (done())
        fail("Error reading data element number " + std::to_string(args_.size() + 1) + ": " + what + " expected");
    return args_[at_++];
}

double Arguments::number()
{
    const Value& v = next("a number");
    if (v.kind() == Value::kString)
    {
        bool whole = false;
        const std::string& s = v.get<std::string>();
        const double d = leadingNumber(s, &whole);
        if (whole)
            return d;
        for (const char* word : {"on", "true", "yes"})
            if (s == word)
                return 1;
        for (const char* word : {"off", "false", "no"})
            if (s == word)
                return 0;
        if (s == "nan" || s == "-nan")
            return NAN;
        if (s == "inf" || s == "-inf")
            return s[0] == '-' ? -HUGE_VAL : HUGE_VAL;
        fail("Error reading data element number " + std::to_string(at_) + ": " + s);
    }
    return v.asFloat();
}

int  Arguments::integer() { return intFromDouble(number()); }
bool Arguments::boolean() { return number() != 0; }
std::string Arguments::text() { return next("a string").asString(); }
bool Arguments::nextIs(const char* word) const
{
    return !done() && peek().kind() == Value::kString && peek().get<std::string>() == word;
}

std::vector<double> Arguments::numbers(size_t count)
{
    if (count > left())
        fail("Error reading data element number " + std::to_string(args_.size() + 1) + ": " + std::to_string(count) +
             " numbers expected, " + std::to_string(left()) + " given");
    std::vector<double> out(count);
    for (double& d : out)
        d = number();
    return out;
}

std::vector<double> Arguments::counted(size_t perElement)
{
    const int count = integer();
    if (count < 0)
        fail("Invalid count: " + std::to_string(count));
    return numbers(size_t(count) * perElement);
}

bool matches(const std::string& text, const std::string& pattern)
{
    size_t t = 0, p = 0, star = std::string::npos, mark = 0;
    while (t < text.size())
        if (p < pattern.size() && (pattern[p] == '?' || (pattern[p] != '*' && pattern[p] == text[t])))
            ++t, ++p;
        else if (p < pattern.size() && pattern[p] == '*')
            star = p++, mark = t;
        else if (star != std::string::npos)
            p = star + 1, t = ++mark;
        else
            return false;
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

}  // namespace mirk::command
