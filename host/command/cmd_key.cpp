// Keys come, go and are found: setKeyframe, cutKey, findKeyframe, setInfinity.
#include <algorithm>
#include <cmath>
#include <optional>

#include "api/playback.h"
#include "command/anim_commands.h"
#include "command/key_args.h"
#include "command/message.h"
#include "graph/evaluate.h"

namespace mirk::command {
namespace {

using anim::Curve;
using anim::DefaultTangents;
using anim::Infinity;
using anim::Tangent;

constexpr Flag kSetKeyframe[] = {
    {"at", "attribute", "s", kCreate, true}, {"bd", "breakdown"}, {"cp", "controlPoints", "b"}, {"f", "float", "f", kCreate, true},
    {"hi", "hierarchy", "s"}, {"i", "insert"}, {"itt", "inTangentType", "s"}, {"ott", "outTangentType", "s"}, {"s", "shape", "b"},
    {"t", "time", "t", kCreate, true}, {"v", "value", "f"}, {"an", "animated"},
};

/// A switch jumps from key to key; numbers flow.
DefaultTangents kindsFor(const Call& call, const Attribute& a)
{
    DefaultTangents kinds = anim::defaultTangents();
    if (a.store == Store::kBool || a.kind == AttrKind::kEnum)
        kinds.out = Tangent::kStep;
    if (call.has("inTangentType"))
        kinds.in = tangentNamed(call.str("inTangentType"));
    if (call.has("outTangentType"))
        kinds.out = tangentNamed(call.str("outTangentType"));
    return kinds;
}

std::vector<double> keyPlaces(const Call& call, bool overTime)
{
    std::vector<double> out;
    for (const auto* use : call.all(overTime ? "time" : "float"))
        out.push_back(overTime ? timeSeconds(use->args[0]) : use->args[0].asFloat());
    if (out.empty() && overTime)
        out.push_back(playback::currentTime());
    return out;
}

void setKeys(const Call& call, const KeyTarget& target, Node& node, const std::vector<double>& places, std::optional<double> now)
{
    const double near = anim::tolerance(anim::kindOf(node));
    const auto   kinds = kindsFor(call, target.plug ? *target.plug->attr : *anim::outputOf(node).attr);
    Curve        curve = anim::curveOf(node);
    for (const double at : places) {
        if (call.has("insert")) {
            anim::insertKey(curve, at, near);
            continue;
        }
        const double value = call.has("value") ? innerValue(node, call.num("value")) : now ? *now : anim::evaluate(curve, at, near);
        anim::Key&   key = curve.keys[anim::setKey(curve, at, value, near, kinds)];
        if (call.has("inTangentType"))
            key.in.type = kinds.in;
        if (call.has("outTangentType"))
            key.out.type = kinds.out;
        key.breakdown = call.boolean("breakdown", key.breakdown);
    }
    anim::store(node, curve);
}

bool lockedAbove(const Cell& cell)
{
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->is(Cell::kLocked))
            return true;
    return false;
}

bool drivenAbove(const Cell& cell)
{
    for (const Cell* c = cell.parent; c; c = c->parent)
        if (c->source)
            return true;
    return cell.source != nullptr;
}

Value setKeyframe(Call& call)
{
    const auto targets = keyTargets(call, call.has("animated"));
    if (targets.empty() && call.args.empty())
        fail("setKeyframe: nothing is selected that could have keys");
    int count = 0;
    for (const KeyTarget& t : targets) {
        if (t.plug && !t.curve && (lockedAbove(*t.plug) || drivenAbove(*t.plug))) {
            message::warning("Cannot set a key on '" + plugText(*t.plug) + "': it is locked or connected.");
            continue;
        }
        if (call.has("insert") && !t.curve)
            continue;
        // the value as it is shown at the moment, be it that of the curve or set by hand since
        std::optional<double> now;
        if (t.plug && (!t.curve || call.all("time").empty())) {
            eval::pull(*t.plug);
            now = t.plug->number();
        }
        Node*      curve = t.curve ? t.curve : anim::animate(*t.plug);
        const auto places = keyPlaces(call, anim::fromTime(anim::kindOf(*curve)));
        setKeys(call, t, *curve, places, now);
        count += int(places.size());
    }
    return Value(count);
}

constexpr Flag kCutKey[] = {
    {"at", "attribute", "s", kCreate, true}, {"cl", "clear"}, {"f", "float", "x", kCreate, true}, {"hi", "hierarchy", "s"},
    {"in", "index", "x", kCreate, true}, {"o", "option", "s"}, {"s", "shape", "b"}, {"t", "time", "x", kCreate, true},
};

Value cutKey(Call& call)
{
    int count = 0;
    for (Node* node : keyCurves(call)) {
        const std::vector<size_t> cut = chosenKeys(call, *node);
        if (cut.empty())
            continue;
        ++count;
        Curve curve = anim::curveOf(*node);
        for (size_t i = cut.size(); i-- > 0;)
            curve.keys.erase(curve.keys.begin() + std::ptrdiff_t(cut[i]));
        if (curve.keys.empty()) {
            // what it drove keeps the value that it shows
            eval::pullDeep(anim::outputOf(*node));
            if (const auto* driven = anim::outputOf(*node).targets)
                for (Cell* target : *driven)
                    eval::pull(*target);
            edit::deleteNode(*node);
        } else {
            anim::solveTangents(curve);
            anim::store(*node, curve);
        }
    }
    return Value(count);
}

constexpr uint8_t kAny = kCreate | kQuery | kEdit;

constexpr Flag kFindKeyframe[] = {
    {"at", "attribute", "s", kCreate, true}, {"c", "curve"}, {"hi", "hierarchy", "s"}, {"iub", "includeUpperBound"}, {"s", "shape", "b"},
    {"t", "time", "t"}, {"f", "float", "f"}, {"w", "which", "s"},
};

Value findKeyframe(Call& call)
{
    const std::vector<Node*> curves = keyCurves(call);
    if (call.has("curve")) {
        Strings names;
        for (Node* c : curves)
            names.push_back(nodeName(*c));
        return Value(names);
    }
    const std::string which = call.str("which", "next");
    const bool        overTime = curves.empty() || anim::fromTime(anim::kindOf(*curves.front()));
    const double      at = !overTime ? call.num("float") : call.has("time") ? timeSeconds(call.use("time")->args[0]) : playback::currentTime();
    const double      near = overTime ? anim::tolerance(anim::CurveKind::kTL) : 0;
    std::vector<double> times;
    for (Node* c : curves)
        if (anim::fromTime(anim::kindOf(*c)) == overTime)
            for (const anim::Key& k : anim::curveOf(*c).keys)
                times.push_back(k.time);
    if (which != "next" && which != "previous" && which != "first" && which != "last")
        fail("findKeyframe: -which is next, previous, first or last, not '" + which + "'");
    double found = at;
    if (!times.empty()) {
        std::sort(times.begin(), times.end());
        // past the last key the search goes on at the first, and the other way round
        found = which == "first" || which == "next" ? times.front() : times.back();
        if (which == "next") {
            if (const auto it = std::upper_bound(times.begin(), times.end(), at + near); it != times.end())
                found = *it;
        } else if (which == "previous") {
            if (const auto it = std::lower_bound(times.begin(), times.end(), at - near); it != times.begin())
                found = *(it - 1);
        }
    }
    if (!overTime)
        return Value(found);
    const Node* any = scene().first("time1");
    return Value(any ? toUi(*any->findAttribute("outTime"), found) : found);
}

constexpr Flag kSetInfinity[] = {
    {"at", "attribute", "s", kAny, true, true}, {"cp", "controlPoints", "b", kAny, false, true}, {"hi", "hierarchy", "s", kAny, false, true},
    {"pri", "preInfinite", "s", kAny}, {"poi", "postInfinite", "s", kAny}, {"s", "shape", "b", kAny, false, true},
};

struct InfinityName { const char* name; Infinity kind; };
constexpr InfinityName kInfinities[] = {
    {"constant", Infinity::kConstant}, {"linear", Infinity::kLinear}, {"cycle", Infinity::kCycle},
    {"cycleRelative", Infinity::kCycleRelative}, {"oscillate", Infinity::kOscillate},
};

Infinity infinityNamed(const std::string& name)
{
    for (const InfinityName& i : kInfinities)
        if (name == i.name)
            return i.kind;
    fail("Invalid infinity type: " + name);
}

std::string infinityName(Infinity kind)
{
    for (const InfinityName& i : kInfinities)
        if (kind == i.kind)
            return i.name;
    return "constant";
}

Value setInfinity(Call& call)
{
    const std::vector<Node*> curves = keyCurves(call);
    if (call.isQuery()) {
        Strings names;
        for (Node* c : curves) {
            if (call.has("preInfinite"))
                names.push_back(infinityName(anim::curveOf(*c).pre));
            if (call.has("postInfinite"))
                names.push_back(infinityName(anim::curveOf(*c).post));
        }
        return Value(names);
    }
    for (Node* node : curves) {
        Curve curve = anim::curveOf(*node);
        if (call.has("preInfinite"))
            curve.pre = infinityNamed(call.str("preInfinite"));
        if (call.has("postInfinite"))
            curve.post = infinityNamed(call.str("postInfinite"));
        anim::store(*node, curve);
    }
    return Value(int(curves.size()));
}

const Command kCommands[] = {
    {"setKeyframe", kSetKeyframe, setKeyframe},
    {"cutKey", kCutKey, cutKey},
    {"findKeyframe", kFindKeyframe, findKeyframe, false},
    {"setInfinity", kSetInfinity, setInfinity},
};

}  // namespace

void registerKeyCommands() { add(kCommands); }

}  // namespace mirk::command
