#include <maya/MFnAnimCurve.h>

#include <algorithm>
#include <cmath>

#include <maya/MAngle.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MPlug.h>
#include <maya/MTimeArray.h>

#include "anim/curve_node.h"
#include "api/api.h"
#include "graph/convert.h"
#include "graph/edit.h"

using namespace mirk;
using anim::Curve;
using anim::CurveKind;
using anim::Handle;
using anim::Key;

namespace {

static_assert(int(CurveKind::kUU) == MFnAnimCurve::kAnimCurveUU && int(CurveKind::kTL) == MFnAnimCurve::kAnimCurveTL);

/// Kinds of the interface, in its order, as files number them.
constexpr anim::Tangent kKinds[] = {
    anim::Tangent::kAuto, anim::Tangent::kFixed, anim::Tangent::kLinear, anim::Tangent::kFlat, anim::Tangent::kSpline, anim::Tangent::kStep,
    anim::Tangent::kSlow, anim::Tangent::kFast, anim::Tangent::kClamped, anim::Tangent::kPlateau, anim::Tangent::kStepNext, anim::Tangent::kAuto,
};

MFnAnimCurve::TangentType typeOf(anim::Tangent kind)
{
    for (int i = 1; i < int(std::size(kKinds)); ++i)
        if (kKinds[i] == kind)
            return MFnAnimCurve::TangentType(i);
    return MFnAnimCurve::kTangentFixed;
}

anim::Tangent kindOf(MFnAnimCurve::TangentType type, anim::Tangent global)
{
    return type <= 0 || type >= int(std::size(kKinds)) ? global : kKinds[type];
}

anim::DefaultTangents kindsOf(MFnAnimCurve::TangentType in, MFnAnimCurve::TangentType out)
{
    return {kindOf(in, anim::defaultTangents().in), kindOf(out, anim::defaultTangents().out)};
}

double seconds(const MTime& t) { return t.as(MTime::kSeconds); }
MTime  timeOf(double s) { return MTime(MTime(s, MTime::kSeconds).as(MTime::uiUnit()), MTime::uiUnit()); }

Node* curveNode(const MObject& object)
{
    Node* node = objectAs<Node>(object);
    return node && anim::isCurve(*node) ? node : nullptr;
}

/// The curve if it is one over time, or over a number.
Node* curveOver(const MObject& object, bool time)
{
    Node* node = curveNode(object);
    return node && anim::fromTime(anim::kindOf(*node)) == time ? node : nullptr;
}

/// A key for reading; null and a status if there is none.
const Key* keyAt(const MObject& object, unsigned index, MStatus* s)
{
    Node*        node = curveNode(object);
    const Curve* curve = node ? &anim::curveOf(*node) : nullptr;
    const bool   good = curve && index < curve->keys.size();
    report(s, good ? MS::kSuccess : node ? MS::kInvalidParameter : MS::kFailure);
    return good ? &curve->keys[index] : nullptr;
}

/// Changes a copy of the curve and stores it.
template <class F>
MStatus change(Node* node, F&& edit)
{
    if (!node)
        return MS::kFailure;
    Curve curve = anim::curveOf(*node);
    if (!edit(curve))
        return MS::kInvalidParameter;
    anim::solveTangents(curve);
    return api::guarded([&] { anim::store(*node, curve); });
}

template <class F>
MStatus changeKey(const MObject& object, unsigned index, F&& edit)
{
    return change(curveNode(object), [&](Curve& c) {
        if (index >= c.keys.size())
            return false;
        edit(c.keys[index]);
        return true;
    });
}

MStatus evaluateAt(Node* node, double at, double& value)
{
    if (!node)
        return MS::kFailure;
    value = anim::evaluate(anim::curveOf(*node), at, anim::tolerance(anim::kindOf(*node)));
    return MS::kSuccess;
}

bool findAt(Node* node, double at, unsigned& index, MStatus* s)
{
    report(s, node ? MS::kSuccess : MS::kFailure);
    const int found = node ? anim::findKey(anim::curveOf(*node), at, anim::tolerance(anim::kindOf(*node))) : -1;
    if (found >= 0)
        index = unsigned(found);
    return found >= 0;
}

unsigned closest(Node* node, double at, MStatus* s)
{
    const Curve* curve = node ? &anim::curveOf(*node) : nullptr;
    report(s, curve && !curve->keys.empty() ? MS::kSuccess : MS::kFailure);
    if (!curve || curve->keys.empty())
        return 0;
    const size_t after = anim::upperBound(*curve, at);
    if (after == 0 || after == curve->keys.size())
        return unsigned(after == 0 ? 0 : after - 1);
    return unsigned(curve->keys[after].time - at < at - curve->keys[after - 1].time ? after : after - 1);
}

unsigned addAt(Node* node, double at, double value, anim::DefaultTangents kinds, MStatus* s)
{
    size_t        index = 0;
    const MStatus status = change(node, [&](Curve& c) {
        if (!std::isfinite(at))
            return false;
        index = anim::setKey(c, at, value, anim::tolerance(anim::kindOf(*node)), kinds);
        return true;
    });
    report(s, status.statusCode());
    return unsigned(index);
}

MStatus moveTo(Node* node, unsigned index, double at)
{
    return change(node, [&](Curve& c) {
        const size_t n = c.keys.size();
        if (index >= n || !std::isfinite(at) || (index > 0 && at <= c.keys[index - 1].time) || (index + 1 < n && at >= c.keys[index + 1].time))
            return false;
        c.keys[index].time = at;
        return true;
    });
}

Node* makeCurve(CurveKind kind, const MPlug* plug, MDGModifier* modifier, MStatus* s)
{
    Cell* cell = plug ? PlugAccess::cell(*plug) : nullptr;
    if (plug && (!cell || cell->source || storeDimension(cell->store()) != 1)) {
        report(s, cell ? MS::kFailure : MS::kInvalidParameter);
        return nullptr;
    }
    for (const Cell* c = cell; c; c = c->parent)   // refused before there is a curve that drives nothing
        if (c->is(Cell::kLocked))
            return reported(s, MS::kFailure, static_cast<Node*>(nullptr));
    Node* node = nullptr;
    MStatus status = api::guarded([&] {
        if (!modifier) {
            node = anim::createCurve(kind, cell ? cell->node->name + "_" + cell->attr->longName : "");
            if (cell)
                edit::connectConverting(anim::outputOf(*node), *cell);
        }
    });
    if (modifier) {
        static const char* const types[] = {"animCurveTA", "animCurveTL", "animCurveTT", "animCurveTU", "animCurveUA", "animCurveUL", "animCurveUT", "animCurveUU"};
        node = objectAs<Node>(modifier->createNode(types[int(kind)], &status));
        if (node)
            modifier->newPlugValueBool(PlugAccess::make(*node->cell(node->findAttribute("weightedTangents"))), false);
        if (node && cell)
            modifier->connect(PlugAccess::make(anim::outputOf(*node)), *plug);
    }
    report(s, status.statusCode());
    return status ? node : nullptr;
}

MFnAnimCurve::AnimCurveType typeFor(const MPlug& plug, bool overTime, MStatus* s)
{
    Cell*      cell = PlugAccess::cell(plug);
    const bool good = cell && storeDimension(cell->store()) == 1;
    report(s, good ? MS::kSuccess : MS::kInvalidParameter);
    return good ? MFnAnimCurve::AnimCurveType(anim::kindFor(*cell->attr, overTime)) : MFnAnimCurve::kAnimCurveUnknown;
}


}  // namespace

MFnAnimCurve::MFnAnimCurve(const MObject& object, MStatus* s)
{
    report(s, curveNode(object) ? setObject(object).statusCode() : MS::kInvalidParameter);
}

MFnAnimCurve::MFnAnimCurve(const MPlug& plug, MStatus* s)
{
    Cell* cell = PlugAccess::cell(plug);
    Node* node = cell ? anim::curveDriving(*cell) : nullptr;
    report(s, node ? setObject(wrap(node)).statusCode() : MS::kInvalidParameter);
}

MFnAnimCurve::~MFnAnimCurve() = default;
MFn::Type MFnAnimCurve::type() const { return MFn::kAnimCurve; }

MObject MFnAnimCurve::create(const MPlug& plug, AnimCurveType type, MDGModifier* modifier, MStatus* s)
{
    if (type < kAnimCurveTA || type > kAnimCurveUU)
        return reported(s, MS::kInvalidParameter, MObject());
    Node* node = makeCurve(CurveKind(type), &plug, modifier, s);
    if (node)
        setObject(wrap(node));
    return wrap(node);
}

MObject MFnAnimCurve::create(const MPlug& plug, MDGModifier* modifier, MStatus* s)
{
    return create(plug, typeFor(plug, true, nullptr), modifier, s);
}

MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, MDGModifier* modifier, MStatus* s)
{
    return create(MPlug(node, attribute), modifier, s);
}

MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, AnimCurveType type, MDGModifier* modifier, MStatus* s)
{
    return create(MPlug(node, attribute), type, modifier, s);
}

MObject MFnAnimCurve::create(AnimCurveType type, MDGModifier* modifier, MStatus* s)
{
    if (type < kAnimCurveTA || type > kAnimCurveUU)
        return reported(s, MS::kInvalidParameter, MObject());
    Node* node = makeCurve(CurveKind(type), nullptr, modifier, s);
    if (node)
        setObject(wrap(node));
    return wrap(node);
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::animCurveType(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    return node ? AnimCurveType(anim::kindOf(*node)) : kAnimCurveUnknown;
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::timedAnimCurveTypeForPlug(const MPlug& plug, MStatus* s) const { return typeFor(plug, true, s); }
MFnAnimCurve::AnimCurveType MFnAnimCurve::unitlessAnimCurveTypeForPlug(const MPlug& plug, MStatus* s) const { return typeFor(plug, false, s); }
bool MFnAnimCurve::isTimeInput(MStatus* s) const { return reported(s, MS::kSuccess, curveOver(object(), true) != nullptr); }
bool MFnAnimCurve::isUnitlessInput(MStatus* s) const { return reported(s, MS::kSuccess, curveOver(object(), false) != nullptr); }

// ---- values ----------------------------------------------------------------------------------------------------

double MFnAnimCurve::evaluate(const MTime& at, MStatus* s) const
{
    double value = 0;
    report(s, evaluate(at, value).statusCode());
    return value;
}

MStatus MFnAnimCurve::evaluate(const MTime& at, double& value) const { return evaluateAt(curveOver(object(), true), seconds(at), value); }
MStatus MFnAnimCurve::evaluate(double at, double& value) const { return evaluateAt(curveOver(object(), false), at, value); }

MStatus MFnAnimCurve::evaluate(const MTime& at, MTime& value) const
{
    double        v = 0;
    const MStatus s = evaluate(at, v);
    value = timeOf(v);
    return s;
}

MStatus MFnAnimCurve::evaluate(double at, MTime& value) const
{
    double        v = 0;
    const MStatus s = evaluate(at, v);
    value = timeOf(v);
    return s;
}

bool MFnAnimCurve::isStatic(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    if (!node)
        return false;
    const Curve& c = anim::curveOf(*node);
    for (size_t i = 0; i < c.keys.size(); ++i) {
        const Key& k = c.keys[i];
        if (k.value != c.keys[0].value)
            return false;
        // the outer tangents count only where a line goes on
        const bool inCounts = i > 0 || c.pre == anim::Infinity::kLinear, outCounts = i + 1 < c.keys.size() || c.post == anim::Infinity::kLinear;
        if ((inCounts && k.in.y != 0) || (outCounts && k.out.y != 0))
            return false;
    }
    return true;
}

unsigned MFnAnimCurve::numKeys(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    return node ? unsigned(anim::curveOf(*node).keys.size()) : 0;
}

MTime MFnAnimCurve::time(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return timeOf(key && isTimeInput() ? key->time : 0);
}

double MFnAnimCurve::unitlessInput(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key && isUnitlessInput() ? key->time : 0;
}

double MFnAnimCurve::value(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key ? key->value : 0;
}

bool MFnAnimCurve::find(const MTime& t, unsigned& index, MStatus* s) const { return findAt(curveOver(object(), true), seconds(t), index, s); }
bool MFnAnimCurve::find(double at, unsigned& index, MStatus* s) const { return findAt(curveOver(object(), false), at, index, s); }
unsigned MFnAnimCurve::findClosest(const MTime& t, MStatus* s) const { return closest(curveOver(object(), true), seconds(t), s); }
unsigned MFnAnimCurve::findClosest(double at, MStatus* s) const { return closest(curveOver(object(), false), at, s); }

// ---- keys ------------------------------------------------------------------------------------------------------

unsigned MFnAnimCurve::addKey(const MTime& t, double v, TangentType in, TangentType out, MStatus* s)
{
    return addAt(curveOver(object(), true), seconds(t), v, kindsOf(in, out), s);
}

unsigned MFnAnimCurve::addKey(double at, double v, TangentType in, TangentType out, MStatus* s)
{
    return addAt(curveOver(object(), false), at, v, kindsOf(in, out), s);
}

MStatus MFnAnimCurve::addKeys(MTimeArray* times, MDoubleArray* values, TangentType in, TangentType out, bool keep)
{
    if (!times || !values || times->length() != values->length())
        return MS::kInvalidParameter;
    Node* node = curveOver(object(), true);
    return change(node, [&](Curve& c) {
        const double near = anim::tolerance(anim::kindOf(*node));
        const auto   kinds = kindsOf(in, out);
        std::vector<Key> fresh;
        for (unsigned i = 0; i < times->length(); ++i) {
            Key key;
            key.time = seconds((*times)[i]);
            key.value = (*values)[i];
            key.in.type = kinds.in;
            key.out.type = kinds.out;
            if (!std::isfinite(key.time))
                return false;
            fresh.push_back(key);
        }
        // in bulk: old keys first, so that of two at one time the later one stays
        if (keep)
            fresh.insert(fresh.begin(), c.keys.begin(), c.keys.end());
        std::stable_sort(fresh.begin(), fresh.end(), [](const Key& a, const Key& b) { return a.time < b.time; });
        c.keys.clear();
        for (const Key& key : fresh)
            if (!c.keys.empty() && key.time - c.keys.back().time <= near)
                c.keys.back() = key;
            else
                c.keys.push_back(key);
        return true;
    });
}

MStatus MFnAnimCurve::remove(unsigned index)
{
    return change(curveNode(object()), [&](Curve& c) {
        if (index >= c.keys.size())
            return false;
        c.keys.erase(c.keys.begin() + index);
        return true;
    });
}

MStatus MFnAnimCurve::setTime(unsigned index, const MTime& t) { return moveTo(curveOver(object(), true), index, seconds(t)); }
MStatus MFnAnimCurve::setUnitlessInput(unsigned index, double at) { return moveTo(curveOver(object(), false), index, at); }
MStatus MFnAnimCurve::setValue(unsigned index, double v) { return changeKey(object(), index, [v](Key& k) { k.value = v; }); }

// ---- tangents --------------------------------------------------------------------------------------------------

MFnAnimCurve::TangentType MFnAnimCurve::inTangentType(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key ? typeOf(key->in.type) : kTangentGlobal;
}

MFnAnimCurve::TangentType MFnAnimCurve::outTangentType(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key ? typeOf(key->out.type) : kTangentGlobal;
}

MStatus MFnAnimCurve::setInTangentType(unsigned index, TangentType t)
{
    return changeKey(object(), index, [t](Key& k) { k.in.type = kindOf(t, anim::defaultTangents().in); });
}

MStatus MFnAnimCurve::setOutTangentType(unsigned index, TangentType t)
{
    return changeKey(object(), index, [t](Key& k) { k.out.type = kindOf(t, anim::defaultTangents().out); });
}

MStatus MFnAnimCurve::getTangent(unsigned index, double& x, double& y, bool in) const
{
    MStatus    s;
    const Key* key = keyAt(object(), index, &s);
    x = key ? (in ? key->in : key->out).x : 0;
    y = key ? (in ? key->in : key->out).y : 0;
    return s;
}

MStatus MFnAnimCurve::getTangent(unsigned index, float& x, float& y, bool in) const
{
    double        dx = 0, dy = 0;
    const MStatus s = getTangent(index, dx, dy, in);
    x = float(dx);
    y = float(dy);
    return s;
}

MStatus MFnAnimCurve::getTangent(unsigned index, MAngle& angle, double& weight, bool in) const
{
    double        x = 0, y = 0;
    const MStatus s = getTangent(index, x, y, in);
    angle = MAngle(std::atan2(y, x), MAngle::kRadians);
    weight = !s ? 0 : isWeighted() ? std::hypot(x, y) / 3 : 1;
    return s;
}

MStatus MFnAnimCurve::setTangent(unsigned index, double x, double y, bool in)
{
    return change(curveNode(object()), [&](Curve& c) {
        if (index >= c.keys.size() || !(std::hypot(x, y) > 0))
            return false;
        anim::setTangent(c, index, in, x, y);
        return true;
    });
}

MStatus MFnAnimCurve::setTangent(unsigned index, const MAngle& angle, double weight, bool in)
{
    const double turn = std::clamp(angle.asRadians(), -M_PI_2, M_PI_2), reach = isWeighted() ? 3 * weight : 1;
    return setTangent(index, std::cos(turn) * reach, std::sin(turn) * reach, in);
}

bool MFnAnimCurve::tangentsLocked(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key && key->tangentsLocked;
}

bool MFnAnimCurve::weightsLocked(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key && key->weightsLocked;
}

bool MFnAnimCurve::isBreakdown(unsigned index, MStatus* s) const
{
    const Key* key = keyAt(object(), index, s);
    return key && key->breakdown;
}

MStatus MFnAnimCurve::setTangentsLocked(unsigned i, bool on) { return changeKey(object(), i, [on](Key& k) { k.tangentsLocked = on; }); }
MStatus MFnAnimCurve::setWeightsLocked(unsigned i, bool on) { return changeKey(object(), i, [on](Key& k) { k.weightsLocked = on; }); }
MStatus MFnAnimCurve::setIsBreakdown(unsigned i, bool on) { return changeKey(object(), i, [on](Key& k) { k.breakdown = on; }); }

bool MFnAnimCurve::isWeighted(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    return node && anim::curveOf(*node).weighted;
}

MStatus MFnAnimCurve::setIsWeighted(bool on)
{
    return change(curveNode(object()), [on](Curve& c) { anim::setWeighted(c, on); return true; });
}

MFnAnimCurve::InfinityType MFnAnimCurve::preInfinityType(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    return node ? InfinityType(anim::curveOf(*node).pre) : kConstant;
}

MFnAnimCurve::InfinityType MFnAnimCurve::postInfinityType(MStatus* s) const
{
    Node* node = curveNode(object());
    report(s, node ? MS::kSuccess : MS::kFailure);
    return node ? InfinityType(anim::curveOf(*node).post) : kConstant;
}

MStatus MFnAnimCurve::setPreInfinityType(InfinityType t)
{
    return change(curveNode(object()), [t](Curve& c) { c.pre = anim::Infinity(t); return true; });
}

MStatus MFnAnimCurve::setPostInfinityType(InfinityType t)
{
    return change(curveNode(object()), [t](Curve& c) { c.post = anim::Infinity(t); return true; });
}
