#include "command/key_args.h"

#include <algorithm>
#include <cmath>

#include <maya/MTime.h>

namespace mirk::command {
namespace {

using anim::Tangent;

bool canBeKeyed(const Attribute& a)
{
    const bool number = storeDimension(a.store) == 1 && a.kind != AttrKind::kGeneric;
    return number && a.is(Attribute::kWritable) && a.is(Attribute::kConnectable);
}

bool isKeyable(const Cell& c)
{
    return c.is(Cell::kOwnKeyable) ? c.is(Cell::kIsKeyable) : c.attr->is(Attribute::kKeyable);
}

class Targets
{
public:
    explicit Targets(bool animated) : animated_(animated) {}

    void plug(Cell& cell)
    {
        if (cell.isMulti()) {
            for (size_t i = 0; i < cell.elementCount(); ++i)
                plug(*cell.elements->cells[i]);
        } else if (!cell.attr->children.empty()) {
            for (size_t i = 0; i < cell.attr->children.size(); ++i)
                plug(*cell.child(i));
        } else if (canBeKeyed(*cell.attr)) {
            add({&cell, anim::curveDriving(cell)});
        }
    }

    /// False if the node has no attribute of that name.
    bool named(Node& node, const std::string& attribute)
    {
        const std::string head = attribute.substr(0, attribute.find_first_of(".["));
        if (!node.findAttribute(head))
            return false;
        for (Cell* cell : somePlugs(nodeName(node) + "." + attribute))
            plug(*cell);
        return true;
    }

    void keyable(Node& node)
    {
        node.eachAttribute([&](const Attribute& a) {
            if (!canBeKeyed(a) || a.isArray() || a.hasArrayAncestor())
                return;
            Cell* cell = node.cell(&a);
            if (cell && isKeyable(*cell) && !cell->is(Cell::kLocked))
                add({cell, anim::curveDriving(*cell)});
        });
    }

    void curve(Node& node) { add({nullptr, &node}); }

    std::vector<KeyTarget> found;

private:
    void add(KeyTarget t)
    {
        if (animated_ && !t.curve)
            return;
        for (const KeyTarget& f : found)
            if (f.plug == t.plug && f.curve == t.curve)
                return;
        found.push_back(t);
    }
    bool animated_;
};

void below(Node& node, std::vector<Node*>& out)
{
    if (node.dag)
        for (Node* child : node.dag->children)
            if (isTransform(*child)) {
                out.push_back(child);
                below(*child, out);
            }
}

std::vector<Node*> withHierarchy(const Call& call, Node& node)
{
    std::vector<Node*> out{&node};
    const std::string  where = call.str("hierarchy", "none");
    if (where == "below" || where == "both")
        below(node, out);
    if (where == "above" || where == "both")
        for (Node* n = &node; n->dag && !n->dag->parents.empty() && n->dag->parents.front() != &dag::world();)
            out.push_back(n = n->dag->parents.front());
    return out;
}

void nodeTargets(const Call& call, Node& object, Targets& targets)
{
    for (Node* node : withHierarchy(call, object)) {
        std::vector<Node*> nodes{node};
        if (isTransform(*node) && (!call.use("shape") || call.boolean("shape")))
            for (Node* shape : shapesOf(*node))
                nodes.push_back(shape);
        const auto attributes = call.all("attribute");
        if (attributes.empty())
            for (Node* n : nodes)
                targets.keyable(*n);
        for (const auto* use : attributes) {
            bool any = false;
            for (Node* n : nodes)
                any = any || targets.named(*n, use->args[0].asString());
            if (!any && node == &object)
                fail("The attribute '" + nodeName(object) + "." + use->args[0].asString() + "' does not exist.");
        }
    }
}

struct Range { double from, to; };

/// Bounds of "a:b"; `read` turns a bound to internal units.
template <class Read>
Range rangeOf(const std::string& text, Read&& read)
{
    const size_t colon = text.find(':');
    if (colon == std::string::npos) {
        const double at = read(text);
        return {at, at};
    }
    const std::string a = text.substr(0, colon), b = text.substr(colon + 1);
    return {a.empty() ? -HUGE_VAL : read(a), b.empty() ? HUGE_VAL : read(b)};
}

bool isNumber(const std::string& text)
{
    return text.find_first_of("0123456789") != std::string::npos;
}

/// Ranges of all uses of a flag. Pairs of numbers are ranges too, as Python gives them.
template <class Read>
std::vector<Range> ranges(const Call& call, const char* flag, Read&& read)
{
    std::vector<Range> out;
    for (const auto* use : call.all(flag)) {
        const Value& v = use->args[0];
        if (v.kind() == Value::kInts || v.kind() == Value::kFloats) {
            const Floats all = v.asFloats();
            const auto&  n = std::as_const(*all);
            if (n.size() == 1)
                out.push_back({read(Value(n[0])), read(Value(n[0]))});
            else if (n.size() % 2)
                fail(std::string("Flag '-") + flag + "': ranges are pairs of numbers");
            for (size_t i = 0; i + 1 < n.size(); i += 2)
                out.push_back({read(Value(n[i])), read(Value(n[i + 1]))});
        } else if (v.kind() == Value::kString || v.kind() == Value::kStrings) {
            for (const std::string& text : v.asStrings())
                out.push_back(rangeOf(text, [&](const std::string& t) {
                    if (!isNumber(t))
                        fail(std::string("Flag '-") + flag + "': invalid range " + text);
                    return read(Value(t));
                }));
        } else {
            const double at = read(v);
            out.push_back({at, at});
        }
    }
    return out;
}

struct TangentName { const char* name; Tangent kind; };
constexpr TangentName kTangents[] = {
    {"fixed", Tangent::kFixed}, {"linear", Tangent::kLinear}, {"flat", Tangent::kFlat}, {"step", Tangent::kStep},
    {"slow", Tangent::kSlow}, {"fast", Tangent::kFast}, {"spline", Tangent::kSpline}, {"clamped", Tangent::kClamped},
    {"plateau", Tangent::kPlateau}, {"stepnext", Tangent::kStepNext}, {"auto", Tangent::kAuto},
};

}  // namespace

std::vector<KeyTarget> keyTargets(const Call& call, bool animated)
{
    Targets targets(animated);
    for (const Item& item : callItems(call))
        if (item.plug)
            targets.plug(*item.plug);
        else if (Node* node = nodeOf(item); node && anim::isCurve(*node))
            targets.curve(*node);
        else if (node)
            nodeTargets(call, *node, targets);
    return std::move(targets.found);
}

std::vector<Node*> keyCurves(const Call& call)
{
    std::vector<Node*> out;
    for (const KeyTarget& t : keyTargets(call, true))
        if (std::find(out.begin(), out.end(), t.curve) == out.end())
            out.push_back(t.curve);
    return out;
}

std::vector<size_t> chosenKeys(const Call& call, Node& curve)
{
    const bool   time = anim::fromTime(anim::kindOf(curve));
    const double near = anim::tolerance(anim::kindOf(curve));
    const auto   places = time ? ranges(call, "time", [](const Value& v) { return timeSeconds(v); })
                               : ranges(call, "float", [](const Value& v) { return v.asFloat(); });
    const auto   indices = ranges(call, "index", [](const Value& v) { return double(v.asInt()); });
    const bool   otherKind = call.has(time ? "float" : "time") && places.empty();
    std::vector<size_t> out;
    const auto&         keys = anim::curveOf(curve).keys;
    for (size_t i = 0; i < keys.size() && !(otherKind && indices.empty()); ++i) {
        bool in = places.empty() && indices.empty();
        for (const Range& r : places)
            in = in || (keys[i].time >= r.from - near && keys[i].time <= r.to + near);
        for (const Range& r : indices)
            in = in || (double(i) >= r.from && double(i) <= r.to);
        if (in)
            out.push_back(i);
    }
    return out;
}

Tangent tangentNamed(const std::string& name)
{
    for (const TangentName& t : kTangents)
        if (name == t.name)
            return t.kind;
    fail("Invalid tangent type: " + name);
}

std::string tangentName(Tangent kind)
{
    for (const TangentName& t : kTangents)
        if (kind == t.kind)
            return t.name;
    return "fixed";
}

double shownValue(Node& curve, double value) { return toUi(*anim::outputOf(curve).attr, value); }
double innerValue(Node& curve, double shown) { return fromUi(*anim::outputOf(curve).attr, shown); }
double shownTime(Node& curve, double time) { return toUi(*anim::inputOf(curve).attr, time); }

}  // namespace mirk::command
