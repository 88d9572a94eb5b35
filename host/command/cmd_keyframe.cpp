// Keys and tangents asked about and changed: keyframe, keyTangent.
#include <algorithm>
#include <cmath>

#include "api/playback.h"
#include "command/anim_commands.h"
#include "command/key_args.h"

namespace mirk::command {
namespace {

using anim::Curve;
using anim::Key;
using anim::Tangent;

constexpr uint8_t kAny = kCreate | kQuery | kEdit, kChange = kCreate | kEdit;

constexpr Flag kKeyframe[] = {
    {"a", "absolute", "", kChange}, {"at", "attribute", "s", kAny, true, true}, {"bd", "breakdown", "b", kAny}, {"ev", "eval", "", kQuery},
    {"f", "float", "x", kAny, true, true}, {"fc", "floatChange", "f", kAny}, {"hi", "hierarchy", "s", kAny, false, true},
    {"in", "index", "x", kAny, true, true}, {"iv", "indexValue", "", kQuery}, {"kc", "keyframeCount", "", kQuery}, {"n", "name", "", kQuery},
    {"o", "option", "s", kChange}, {"r", "relative", "", kChange}, {"s", "shape", "b", kAny, false, true}, {"t", "time", "x", kAny, true, true},
    {"tc", "timeChange", "t", kAny}, {"vc", "valueChange", "f", kAny},
};

/// Values of the curves at the -time arguments, or now.
Value evaluated(const Call& call, const std::vector<Node*>& curves)
{
    std::vector<double> out;
    for (Node* node : curves) {
        const bool time = anim::fromTime(anim::kindOf(*node));
        std::vector<double> at;
        for (const auto* use : call.all(time ? "time" : "float"))
            if (use->args[0].kind() == Value::kInts || use->args[0].kind() == Value::kFloats)
                for (const double t : numbersIn(use->args[0]))
                    at.push_back(time ? timeSeconds(Value(t)) : t);
            else
                at.push_back(time ? timeSeconds(use->args[0]) : use->args[0].asFloat());
        if (at.empty() && time)
            at.push_back(playback::currentTime());
        for (const double t : at)
            out.push_back(shownValue(*node, anim::evaluate(anim::curveOf(*node), t, anim::tolerance(anim::kindOf(*node)))));
    }
    return Value(out);
}

Value queryKeys(Call& call, const std::vector<Node*>& curves)
{
    if (call.has("eval"))
        return evaluated(call, curves);
    Strings             names;
    std::vector<double> numbers;
    Ints                indices;
    const bool times = call.has("timeChange") || call.has("floatChange"), values = call.has("valueChange");
    for (Node* node : curves) {
        const std::vector<size_t> keys = chosenKeys(call, *node);
        if (!keys.empty())
            names.push_back(nodeName(*node));
        for (const size_t i : keys) {
            const Key& key = anim::curveOf(*node).keys[i];
            indices.push_back(int32_t(i));
            if (times)
                numbers.push_back(shownTime(*node, key.time));
            if (values)
                numbers.push_back(shownValue(*node, key.value));
            if (call.has("breakdown") && key.breakdown)
                numbers.push_back(shownTime(*node, key.time));
        }
    }
    if (call.has("keyframeCount"))
        return Value(int(indices.size()));
    if (call.has("name"))
        return names.empty() ? Value() : Value(names);
    if (call.has("indexValue"))
        return indices.empty() ? Value() : Value(indices);
    if (times || values || call.has("breakdown"))
        return numbers.empty() ? Value() : Value(numbers);
    fail("keyframe: a flag that says what to ask has to be given");
}

/// Moves keys; those that come to stand where another key is take its place.
void moveKeys(const Call& call, Node& node, const std::vector<size_t>& chosen)
{
    const bool   relative = call.has("relative"), time = anim::fromTime(anim::kindOf(node));
    const double near = anim::tolerance(anim::kindOf(node));
    const char*  place = time ? "timeChange" : "floatChange";
    Curve        curve = anim::curveOf(node);
    std::vector<Key> moved;
    for (size_t i = chosen.size(); i-- > 0;) {
        moved.push_back(curve.keys[chosen[i]]);
        curve.keys.erase(curve.keys.begin() + std::ptrdiff_t(chosen[i]));
    }
    std::reverse(moved.begin(), moved.end());
    for (Key& key : moved) {
        if (const auto* use = call.use(place)) {
            const double to = time ? timeSeconds(use->args[0]) : use->args[0].asFloat();
            key.time = relative ? key.time + to : to;
        }
        if (call.has("valueChange")) {
            const double to = innerValue(node, call.num("valueChange"));
            key.value = relative ? key.value + to : to;
        }
        key.breakdown = call.boolean("breakdown", key.breakdown);
        if (const int there = anim::findKey(curve, key.time, near); there >= 0)
            curve.keys[size_t(there)] = key;
        else
            curve.keys.insert(curve.keys.begin() + std::ptrdiff_t(anim::upperBound(curve, key.time)), key);
    }
    anim::solveTangents(curve);
    anim::store(node, curve);
}

Value keyframe(Call& call)
{
    const std::vector<Node*> curves = keyCurves(call);
    if (call.isQuery())
        return queryKeys(call, curves);
    if (call.has("absolute") && call.has("relative"))
        fail("keyframe: -absolute and -relative exclude each other");
    int count = 0;
    for (Node* node : curves)
        if (const std::vector<size_t> keys = chosenKeys(call, *node); !keys.empty()) {
            moveKeys(call, *node, keys);
            count += int(keys.size());
        }
    return Value(count);
}

constexpr Flag kKeyTangent[] = {
    {"a", "absolute", "", kChange}, {"at", "attribute", "s", kAny, true, true}, {"f", "float", "x", kAny, true, true}, {"g", "global", "", kAny},
    {"hi", "hierarchy", "s", kAny, false, true}, {"ia", "inAngle", "a", kAny}, {"itt", "inTangentType", "s", kAny}, {"iw", "inWeight", "f", kAny},
    {"in", "index", "x", kAny, true, true}, {"ix", "ix", "f", kAny}, {"iy", "iy", "f", kAny}, {"l", "lock", "b", kAny}, {"oa", "outAngle", "a", kAny},
    {"ott", "outTangentType", "s", kAny}, {"ow", "outWeight", "f", kAny}, {"ox", "ox", "f", kAny}, {"oy", "oy", "f", kAny},
    {"r", "relative", "", kChange}, {"s", "shape", "b", kAny, false, true}, {"t", "time", "x", kAny, true, true},
    {"wl", "weightLock", "b", kAny}, {"wt", "weightedTangents", "b", kAny},
};

constexpr double kDegree = 3.14159265358979323846 / 180;

double angleOf(const anim::Handle& h) { return std::atan2(h.y, h.x) / kDegree; }
/// The length of the Bezier handle; 1 on curves without weights.
double weightOf(const Curve& c, const anim::Handle& h) { return c.weighted ? std::hypot(h.x, h.y) / 3 : 1; }

Value globalTangents(Call& call)
{
    anim::DefaultTangents& kinds = anim::defaultTangents();
    if (!call.isQuery()) {
        anim::DefaultTangents wanted = kinds;
        if (call.has("inTangentType"))
            wanted.in = tangentNamed(call.str("inTangentType"));
        if (call.has("outTangentType"))
            wanted.out = tangentNamed(call.str("outTangentType"));
        kinds = wanted;
        return {};
    }
    Strings names;
    if (call.has("inTangentType"))
        names.push_back(tangentName(kinds.in));
    if (call.has("outTangentType"))
        names.push_back(tangentName(kinds.out));
    return Value(names);
}

Value queryTangents(Call& call, const std::vector<Node*>& curves)
{
    Strings             names;
    std::vector<double> numbers;
    Ints                truths;
    for (Node* node : curves) {
        const Curve& curve = anim::curveOf(*node);
        if (call.has("weightedTangents"))
            truths.push_back(curve.weighted);
        for (const size_t i : chosenKeys(call, *node)) {
            const Key& k = curve.keys[i];
            if (call.has("inTangentType"))
                names.push_back(tangentName(k.in.type));
            if (call.has("outTangentType"))
                names.push_back(tangentName(k.out.type));
            const struct { const char* flag; double value; } facts[] = {
                {"inAngle", angleOf(k.in)}, {"outAngle", angleOf(k.out)}, {"inWeight", weightOf(curve, k.in)}, {"outWeight", weightOf(curve, k.out)},
                {"ix", k.in.x}, {"iy", k.in.y}, {"ox", k.out.x}, {"oy", k.out.y}};
            for (const auto& f : facts)
                if (call.has(f.flag))
                    numbers.push_back(f.value);
            if (call.has("lock"))
                truths.push_back(k.tangentsLocked);
            if (call.has("weightLock"))
                truths.push_back(k.weightsLocked);
        }
    }
    return !names.empty() ? Value(names) : !truths.empty() ? Value(truths) : Value(numbers);
}

/// What the flags of one side make of a tangent.
void editSide(const Call& call, Curve& curve, size_t i, bool in)
{
    anim::Handle now = in ? curve.keys[i].in : curve.keys[i].out;
    const char  *angle = in ? "inAngle" : "outAngle", *weight = in ? "inWeight" : "outWeight", *x = in ? "ix" : "ox", *y = in ? "iy" : "oy";
    const bool   relative = call.has("relative");
    if (call.has(x) || call.has(y))
        anim::setTangent(curve, i, in, call.num(x, now.x), call.num(y, now.y));
    if (!call.has(angle) && !call.has(weight))
        return;
    const double length = weightOf(curve, now) * (curve.weighted ? 3 : 1);
    const double turn = call.has(angle) ? std::clamp(call.num(angle) + (relative ? angleOf(now) : 0), -90.0, 90.0) * kDegree : std::atan2(now.y, now.x);
    const double reach = call.has(weight) && curve.weighted ? std::max(0.0, call.num(weight)) * 3 : length;
    anim::setTangent(curve, i, in, std::cos(turn) * reach, std::sin(turn) * reach);
}

Value keyTangent(Call& call)
{
    if (call.has("global"))
        return globalTangents(call);
    const std::vector<Node*> curves = keyCurves(call);
    if (call.isQuery())
        return queryTangents(call, curves);
    int count = 0;
    for (Node* node : curves) {
        Curve curve = anim::curveOf(*node);
        if (call.has("weightedTangents"))
            anim::setWeighted(curve, call.boolean("weightedTangents"));
        const std::vector<size_t> keys = chosenKeys(call, *node);
        for (const size_t i : keys) {
            Key& key = curve.keys[i];
            key.tangentsLocked = call.boolean("lock", key.tangentsLocked);
            key.weightsLocked = call.boolean("weightLock", key.weightsLocked);
            if (call.has("inTangentType"))
                key.in.type = tangentNamed(call.str("inTangentType"));
            if (call.has("outTangentType"))
                key.out.type = tangentNamed(call.str("outTangentType"));
            editSide(call, curve, i, true);
            editSide(call, curve, i, false);
        }
        anim::solveTangents(curve);
        anim::store(*node, curve);
        count += !keys.empty();
    }
    return Value(count);
}

const Command kCommands[] = {
    {"keyframe", kKeyframe, keyframe},
    {"keyTangent", kKeyTangent, keyTangent},
};

}  // namespace

void registerKeyEditCommands() { add(kCommands); }

}  // namespace mirk::command
