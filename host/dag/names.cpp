// What the names that commands take stand for, and how things are named in return.
#include <algorithm>

#include "command/registry.h"
#include "dag/component_text.h"
#include "dag/dag.h"
#include "graph/scene.h"

namespace mirk::names {

bool (*componentExtent)(Node& shape, MFn::Type type, int extent[3]) = nullptr;

bool isPattern(const std::string& text) { return text.find_first_of("*?") != std::string::npos; }

bool matches(const std::string& pattern, const std::string& name)
{
    // the usual walk with one point to come back to: linear in practice, quadratic at worst
    size_t p = 0, n = 0, star = std::string::npos, back = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == name[n] || pattern[p] == '?')) {
            ++p, ++n;
        } else if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            back = n;
        } else if (star != std::string::npos) {
            p = star + 1;
            n = ++back;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

namespace {

/// Node part and attribute part: the first dot that follows the last '|' outside brackets divides them.
std::pair<std::string, std::string> divide(const std::string& text)
{
    const size_t dot = text.find('.');
    return dot == std::string::npos ? std::pair(text, std::string()) : std::pair(text.substr(0, dot), text.substr(dot + 1));
}

Item nodeItem(Node& node, Path path = {})
{
    Item item;
    item.node = Ref<Node>(&node);
    item.path = path.nodes.empty() && node.dag ? dag::firstPath(node) : std::move(path);
    return item;
}

std::vector<Item> nodesByPath(const std::string& name)
{
    std::vector<Item> items;
    for (Path& p : dag::find(name)) {
        Node& n = *p.node();
        const bool known = std::any_of(items.begin(), items.end(), [&](const Item& i) { return i.node.get() == &n; });
        if (!known)   // an instance goes by the first path that fits
            items.push_back(nodeItem(n, std::move(p)));
    }
    return items;
}

std::vector<Item> nodesByPattern(const std::string& pattern)
{
    std::vector<Item>  items;
    const size_t       bar = pattern.rfind('|');
    const std::string  leaf = bar == std::string::npos ? pattern : pattern.substr(bar + 1);
    const bool         absolute = pattern[0] == '|';
    const size_t       bars = size_t(std::count(pattern.begin(), pattern.end(), '|'));
    for (Node* node : scene().nodes()) {
        if (!matches(leaf, node->name))
            continue;
        if (bar == std::string::npos) {
            items.push_back(nodeItem(*node));
            continue;
        }
        for (Path& p : dag::allPaths(*node)) {
            if (absolute ? p.nodes.size() != bars : p.nodes.size() < bars + 1)
                continue;
            // the tail with as many names as the pattern has, compared name by name: a '*' does not reach over a '|'
            size_t at = pattern.size();
            bool   same = true;
            for (size_t i = p.nodes.size(); same && i-- > 0 && at > 0;) {
                const size_t from = pattern.rfind('|', at - 1);
                const size_t begin = from == std::string::npos ? 0 : from + 1;
                same = matches(pattern.substr(begin, at - begin), p.nodes[i]->name);
                at = from == std::string::npos ? 0 : from;
            }
            if (same) {
                items.push_back(nodeItem(*node, std::move(p)));
                break;
            }
        }
    }
    return items;
}

std::vector<Item> nodesOf(const std::string& given)
{
    const std::string name = !given.empty() && given[0] == ':' ? given.substr(1) : given;   // the root namespace
    if (name.empty())
        return {};
    if (isPattern(name))
        return nodesByPattern(name);
    if (name.find('|') != std::string::npos)
        return nodesByPath(name);
    std::vector<Item> items;
    for (Node* n : scene().named(name))
        items.push_back(nodeItem(*n));
    return items;
}

ComponentOf kindOf(const Node& shape)
{
    if (shape.hasFn(MFn::kMesh))
        return ComponentOf::mesh;
    if (shape.hasFn(MFn::kNurbsCurve))
        return ComponentOf::curve;
    return shape.hasFn(MFn::kNurbsSurface) ? ComponentOf::surface : ComponentOf::lattice;
}

/// The item itself if it is a shape, else its first shape that is not intermediate.
Item shapeOf(const Item& item)
{
    if (!item.node->dag || item.node->type->shape)
        return item;
    for (Node* c : item.node->dag->children) {
        Attribute* intermediate = c->type->shape ? c->type->find("intermediateObject") : nullptr;
        if (c->type->shape && !(intermediate && c->cell(intermediate)->number() != 0)) {
            Item shape = item;
            shape.node = Ref<Node>(c);
            shape.path.nodes.emplace_back(c);
            return shape;
        }
    }
    return item;
}

bool resolveComponent(const Item& node, const std::string& text, std::vector<Item>& out)
{
    Item shape = shapeOf(node);
    if (!shape.node->type->shape || !isComponentText(text))
        return false;
    const ComponentOf of = kindOf(*shape.node);
    const MFn::Type   type = componentTypeOf(text, of);
    int               extent[3] = {0, 0, 0};
    if (type == MFn::kInvalid || !componentExtent || !componentExtent(*shape.node, type, extent))
        return false;
    shape.component = parseComponent(text, of, extent);
    shape.attribute = text;
    if (shape.component && (shape.component->complete || shape.component->count() > 0))
        out.push_back(std::move(shape));
    return true;
}

struct Step { std::string name, index; bool indexed = false; };

/// "a[2].b*" as steps; false if brackets do not close.
bool readSteps(const std::string& text, std::vector<Step>& steps)
{
    size_t at = 0;
    while (at < text.size()) {
        Step         step;
        const size_t end = text.find_first_of("[.", at);
        step.name = text.substr(at, end == std::string::npos ? end : end - at);
        at = end == std::string::npos ? text.size() : end;
        if (at < text.size() && text[at] == '[') {
            const size_t close = text.find(']', at);
            if (close == std::string::npos)
                return false;
            step.indexed = true;
            step.index = text.substr(at + 1, close - at - 1);
            at = close + 1;
        }
        if (at < text.size() && text[at] == '.')
            ++at;
        steps.push_back(step);
    }
    return !steps.empty();
}

bool fits(const Attribute& a, const std::string& pattern)
{
    return isPattern(pattern) ? matches(pattern, a.longName) || matches(pattern, a.shortName)
                              : a.longName == pattern || a.shortName == pattern;
}

/// Elements that exist and that the text between the brackets names: "", "*", "3", "1:4".
std::vector<Cell*> elementsOf(Cell& multi, const std::string& index)
{
    std::vector<Cell*> cells;
    const size_t       colon = index.find(':');
    const bool         all = index.empty() || index == "*";
    const int          first = all ? 0 : std::atoi(index.c_str());
    const int          last = all ? INT32_MAX : colon == std::string::npos ? first : std::atoi(index.c_str() + colon + 1);
    for (size_t i = 0; i < multi.elementCount(); ++i)
        if (Cell* e = multi.elements->cells[i]; e->index >= first && e->index <= last)
            cells.push_back(e);
    return cells;
}

void matchSteps(Cell& cell, const std::vector<Step>& steps, size_t at, std::vector<Cell*>& out)
{
    std::vector<Cell*> cells{&cell};
    if (steps[at].indexed && cell.isMulti())
        cells = elementsOf(cell, steps[at].index);
    if (at + 1 == steps.size()) {
        out.insert(out.end(), cells.begin(), cells.end());
        return;
    }
    for (Cell* c : cells)
        for (size_t i = 0; !c->isMulti() && i < c->attr->children.size(); ++i)
            if (fits(*c->attr->child(i), steps[at + 1].name))
                matchSteps(*c->child(i), steps, at + 1, out);
}

std::vector<Cell*> plugsByPattern(Node& node, const std::string& text)
{
    std::vector<Step>  steps;
    std::vector<Cell*> cells;
    if (!readSteps(text, steps))
        return cells;
    std::vector<Attribute*> tops;
    node.eachAttribute([&](Attribute& a) {
        if (fits(a, steps[0].name) && !a.hasArrayAncestor())
            tops.push_back(&a);
    });
    for (Attribute* a : tops)
        matchSteps(*node.cell(a), steps, 0, cells);
    return cells;
}

bool plugIsPattern(const std::string& text)
{
    if (isPattern(text) || text.find("[]") != std::string::npos)
        return true;
    for (size_t open = text.find('['); open != std::string::npos; open = text.find('[', open + 1))
        if (text.substr(open, text.find(']', open) - open).find(':') != std::string::npos)
            return true;
    return false;
}

/// Plugs of the node, or of its shape if it has no attribute of the name.
void resolvePlugs(const Item& node, const std::string& text, bool create, std::vector<Item>& out)
{
    const Item shape = shapeOf(node);
    for (const Item* item : {&node, &shape}) {
        std::vector<Cell*> cells;
        if (plugIsPattern(text))
            cells = plugsByPattern(*item->node, text);
        else if (Cell* c = findCell(*item->node, text, create))
            cells.push_back(c);
        for (Cell* c : cells) {
            Item plug = *item;
            plug.plug = c;
            out.push_back(std::move(plug));
        }
        if (!cells.empty() || shape.node == node.node)
            return;
    }
}

std::vector<Item> resolveAll(const std::string& text, bool create)
{
    const auto [nodePart, attrPart] = divide(text);
    std::vector<Item> nodes = nodesOf(nodePart);
    if (attrPart.empty())
        return text.find('.') == std::string::npos ? nodes : std::vector<Item>{};
    std::vector<Item> items;
    for (const Item& n : nodes)
        if (!resolveComponent(n, attrPart, items))
            resolvePlugs(n, attrPart, create, items);
    return items;
}

}  // namespace

std::vector<Item> resolve(const std::string& text) { return resolveAll(text, true); }

Item one(const std::string& text)
{
    std::vector<Item> items = resolve(text);
    if (items.empty())
        throw command::Error("No object matches name: " + text);
    if (items.size() > 1)
        throw command::Error("More than one object matches name: " + text);
    return std::move(items.front());
}

Node& node(const std::string& text)
{
    Item item = one(text);
    if (item.plug || item.component)
        throw command::Error(text + " is not a node.");
    return *item.node;   // the scene holds it
}

Cell& plug(const std::string& text, bool create)
{
    std::vector<Item> items = resolveAll(text, create);
    if (items.empty())
        throw command::Error("No object matches name: " + text);
    if (items.size() > 1)
        throw command::Error("More than one object matches name: " + text);
    if (!items.front().plug)
        throw command::Error(text + " is not an attribute.");
    return *items.front().plug;
}

std::vector<std::string> texts(const Item& item)
{
    if (!item.node)
        return {};
    const bool        placed = !item.path.nodes.empty();
    const std::string name = placed ? dag::partialName(item.path) : dag::shortestName(*item.node);
    if (item.plug)
        return {name + "." + plugPath(*item.plug)};
    if (!item.component)
        return {name};
    int        extent[3] = {0, 0, 0};
    const bool known = componentExtent && componentExtent(*item.node, item.component->apiType(), extent);
    std::vector<std::string> texts = componentTexts(*item.component, known ? extent : nullptr);
    // components are named on the transform where it has one shape only
    std::string owner = name;
    if (item.path.nodes.size() > 1) {
        Path above = item.path;
        above.nodes.pop_back();
        Item transform;
        transform.node = above.nodes.back();
        transform.path = above;
        if (shapeOf(transform).node == item.node)
            owner = dag::partialName(above);
    }
    for (std::string& t : texts)
        t = owner + "." + t;
    return texts;
}

std::string text(const Item& item)
{
    std::vector<std::string> all = texts(item);
    return all.empty() ? "" : std::move(all.front());
}

}  // namespace mirk::names
