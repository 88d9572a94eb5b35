#include "anim/curve_node.h"

#include <algorithm>
#include <climits>

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>
#include <maya/MTime.h>

#include "api/playback.h"
#include "graph/access.h"
#include "graph/convert.h"
#include "graph/edit.h"
#include "graph/evaluate.h"
#include "graph/scene.h"
#include "graph/undo.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"

namespace mirk::anim {
namespace {

using namespace nodes;

struct CurveAttrs
{
    MObject tangentType, weighted, keys, tangentLocked, weightLocked, inX, inY, outX, outY, inType, outType, breakdown, pre, post, input, output;
};

CurveAttrs& attrsOf(CurveKind kind)
{
    static CurveAttrs attrs[8];
    return attrs[int(kind)];
}

MObject choice(const char* longName, const char* shortName, short value, std::initializer_list<std::pair<const char*, int>> fields, unsigned flags)
{
    MFnEnumAttribute fn;
    MObject          a = fn.create(longName, shortName, value);
    for (const auto& [name, index] : fields)
        fn.addField(name, short(index));
    return flagged(a, flags);
}

MObject tangentKinds(const char* longName, const char* shortName, short value, unsigned flags)
{
    return choice(longName, shortName, value,
                  {{"Fixed", 1}, {"Linear", 2}, {"Flat", 3}, {"Step", 5}, {"Slow", 6}, {"Fast", 7}, {"Spline", 9}, {"Clamped", 10},
                   {"Plateau", 16}, {"StepNext", 17}, {"Auto", 18}}, flags);
}

MObject infinityKinds(const char* longName, const char* shortName)
{
    return choice(longName, shortName, 0, {{"Constant", 0}, {"Linear", 1}, {"Cycle", 3}, {"Cycle with Offset", 4}, {"Oscillate", 5}}, kIn);
}

MObject quantity(CurveKind kind, const char* longName, const char* shortName, unsigned flags)
{
    switch (int(kind) % 4) {
    case 0: return unit(longName, shortName, Unit::kAngle, 0, flags);
    case 1: return unit(longName, shortName, Unit::kDistance, 0, flags);
    case 2: return unit(longName, shortName, Unit::kTime, 0, flags);
    default: return number(longName, shortName, Number::kDouble, 0, flags);
    }
}

MStatus initialize(CurveKind kind)
{
    CurveAttrs& a = attrsOf(kind);
    const bool  time = fromTime(kind);
    const auto  place = [&](const char* l, const char* s) { return time ? unit(l, s, Unit::kTime) : number(l, s, Number::kDouble); };
    a.tangentType = tangentKinds("tangentType", "tan", short(Tangent::kAuto), kIn);
    a.weighted = number("weightedTangents", "wgt", Number::kBoolean, 1);
    a.keys = compound("keyTimeValue", "ktv", {place("keyTime", "kt"), quantity(kind, "keyValue", "kv", kIn)}, kMulti);
    a.tangentLocked = number("keyTanLocked", "ktl", Number::kBoolean, 1, kMulti);
    a.weightLocked = number("keyWeightLocked", "kwl", Number::kBoolean, 1, kMulti);
    a.inX = number("keyTanInX", "kix", Number::kFloat, 1, kMulti);
    a.inY = number("keyTanInY", "kiy", Number::kFloat, 0, kMulti);
    a.outX = number("keyTanOutX", "kox", Number::kFloat, 1, kMulti);
    a.outY = number("keyTanOutY", "koy", Number::kFloat, 0, kMulti);
    a.inType = tangentKinds("keyTanInType", "kit", short(Tangent::kAuto), kMulti);
    a.outType = tangentKinds("keyTanOutType", "kot", short(Tangent::kAuto), kMulti);
    a.breakdown = number("keyBreakdown", "kbd", Number::kBoolean, 0, kMulti);
    a.pre = infinityKinds("preInfinity", "pre");
    a.post = infinityKinds("postInfinity", "pst");
    a.input = place("input", "i");
    a.output = quantity(kind, "output", "o", kOut);
    add({a.tangentType, a.weighted, a.keys, a.tangentLocked, a.weightLocked, a.inX, a.inY, a.outX, a.outY, a.inType, a.outType,
         a.breakdown, a.pre, a.post, a.input, a.output});
    affects({a.tangentType, a.weighted, a.keys, a.inX, a.inY, a.outX, a.outY, a.inType, a.outType, a.pre, a.post, a.input}, {a.output});
    return MS::kSuccess;
}

class CurveNode : public MPxNode
{
public:
    explicit CurveNode(CurveKind k) : kind(k) {}

    MStatus setDependentsDirty(const MPlug& plug, MPlugArray&) override
    {
        if (plug != attrsOf(kind).input)
            compiled = false;
        return MS::kSuccess;
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    /// What has keys can be posed by hand until the time changes.
    bool isPassiveOutput(const MPlug&) const override { return true; }

    const CurveKind kind;
    Curve           curve;
    bool            compiled = false;
};

template <int Kind> struct CurveOf
{
    static void*   creator() { return new CurveNode(CurveKind(Kind)); }
    static MStatus initialize() { return anim::initialize(CurveKind(Kind)); }
};

Cell* cellOf(Node& node, const MObject& attribute) { return node.cell(objectAs<Attribute>(attribute)); }

double elementNumber(Cell* multi, int index, double otherwise)
{
    const Cell* e = multi->elementIfAny(index);
    return e ? e->number() : otherwise;
}

/// Curves of scene files depend on the scene's time without saying so.
void connectTime(Node& curve)
{
    Cell& input = inputOf(curve);
    Node* time = scene().first("time1");
    if (!input.source && time)
        edit::connect(*time->cell(time->findAttribute("outTime")), input);
}

void compile(Node& node, CurveNode& user)
{
    const CurveAttrs& a = attrsOf(user.kind);
    for (const MObject* multi : {&a.keys, &a.inType, &a.outType, &a.inX, &a.inY, &a.outX, &a.outY})
        eval::pullDeep(*cellOf(node, *multi));
    for (const MObject* one : {&a.tangentType, &a.weighted, &a.pre, &a.post})
        eval::pull(*cellOf(node, *one));

    Curve&       c = user.curve;
    Cell*        keys = cellOf(node, a.keys);
    const double kind = cellOf(node, a.tangentType)->number();
    c.keys.clear();
    for (size_t i = 0; i < keys->elementCount(); ++i) {
        Cell&     e = *keys->elements->cells[i];
        const int index = e.index;
        const auto of = [&](const MObject& multi, double otherwise) { return elementNumber(cellOf(node, multi), index, otherwise); };
        Key k;
        k.time = e.child(0)->number();
        k.value = e.child(1)->number();
        k.in = {Tangent(int(of(a.inType, kind))), of(a.inX, 1), of(a.inY, 0)};
        k.out = {Tangent(int(of(a.outType, kind))), of(a.outX, 1), of(a.outY, 0)};
        k.tangentsLocked = of(a.tangentLocked, 1) != 0;
        k.weightsLocked = of(a.weightLocked, 1) != 0;
        k.breakdown = of(a.breakdown, 0) != 0;
        if (k.time == k.time)
            c.keys.push_back(k);
    }
    std::stable_sort(c.keys.begin(), c.keys.end(), [](const Key& x, const Key& y) { return x.time < y.time; });
    c.weighted = cellOf(node, a.weighted)->number() != 0;
    c.pre = Infinity(int(cellOf(node, a.pre)->number()));
    c.post = Infinity(int(cellOf(node, a.post)->number()));
    solveTangents(c);
    user.compiled = true;
}

MStatus CurveNode::compute(const MPlug& plug, MDataBlock& block)
{
    const CurveAttrs& a = attrsOf(kind);
    if (plug != a.output)
        return MS::kUnknownParameter;
    Node* node = HandleAccess::node(block);
    if (fromTime(kind) && !inputOf(*node).source) {
        undo::Suspend quiet;
        connectTime(*node);
    }
    const double at = block.inputValue(a.input).asDouble();
    block.outputValue(a.output).setDouble(evaluate(curveOf(*node), at, tolerance(kind)));
    block.setClean(plug);
    return MS::kSuccess;
}

CurveNode* userOf(const Node& node) { return dynamic_cast<CurveNode*>(node.user.get()); }

/// Writes what differs from what is there; a value that is missing is made only if it differs from `otherwise`.
void put(Cell* multi, size_t index, double value, double otherwise)
{
    const Cell* e = multi->elementIfAny(int(index));
    if (multi->attr->store == Store::kFloat)
        value = float(value);
    if (e ? e->number() != value : value != otherwise)
        edit::setNumber(edit::addElement(*multi, int(index)), value);
}

void putOne(Cell* cell, double value)
{
    if (cell->number() != value)
        edit::setNumber(*cell, value);
}

void cut(Cell* multi, size_t count)
{
    while (multi->elementCount() && size_t(multi->elements->cells.back()->index) >= count)
        edit::removeElement(*multi->elements->cells.back());
}

void putHandle(Node& node, const Handle& h, size_t i, const MObject& type, const MObject& x, const MObject& y, double usual)
{
    put(cellOf(node, type), i, int(h.type), usual);
    // the vectors of computed kinds follow from the keys
    const bool fixed = h.type == Tangent::kFixed || h.type == Tangent::kSlow || h.type == Tangent::kFast;
    put(cellOf(node, x), i, fixed ? h.x : 1, 1);
    put(cellOf(node, y), i, fixed ? h.y : 0, 0);
}

}  // namespace

bool      isCurve(const Node& node) { return userOf(node) != nullptr; }
CurveKind kindOf(const Node& curve) { return userOf(curve)->kind; }

CurveKind kindFor(const Attribute& attribute, bool overTime)
{
    int kind = 3;
    if (attribute.kind == AttrKind::kUnit)
        kind = attribute.unit == MFnUnitAttribute::kAngle ? 0 : attribute.unit == MFnUnitAttribute::kDistance ? 1 : 2;
    return CurveKind(kind + (overTime ? 0 : 4));
}

Cell& inputOf(Node& curve) { return *cellOf(curve, attrsOf(kindOf(curve)).input); }
Cell& outputOf(Node& curve) { return *cellOf(curve, attrsOf(kindOf(curve)).output); }

const Curve& curveOf(Node& node)
{
    CurveNode& user = *userOf(node);
    if (!user.compiled)
        compile(node, user);
    return user.curve;
}

void store(Node& node, const Curve& given)
{
    const Curve       c = given;   // may be the node's own, which goes stale with the first write
    const CurveAttrs& a = attrsOf(kindOf(node));
    Cell*             keys = cellOf(node, a.keys);
    const double      usual = cellOf(node, a.tangentType)->number();
    putOne(cellOf(node, a.weighted), c.weighted);
    putOne(cellOf(node, a.pre), int(c.pre));
    putOne(cellOf(node, a.post), int(c.post));
    for (size_t i = 0; i < c.keys.size(); ++i) {
        const Key& k = c.keys[i];
        const bool fresh = !keys->elementIfAny(int(i));
        Cell*      e = &edit::addElement(*keys, int(i));
        if (fresh || e->child(0)->number() != k.time)
            edit::setNumber(*e->child(0), k.time);
        if (fresh || e->child(1)->number() != k.value)
            edit::setNumber(*e->child(1), k.value);
        putHandle(node, k.in, i, a.inType, a.inX, a.inY, usual);
        putHandle(node, k.out, i, a.outType, a.outX, a.outY, usual);
        put(cellOf(node, a.tangentLocked), i, k.tangentsLocked, 1);
        put(cellOf(node, a.weightLocked), i, k.weightsLocked, 1);
        put(cellOf(node, a.breakdown), i, k.breakdown, 0);
    }
    for (const MObject* multi : {&a.keys, &a.inType, &a.outType, &a.inX, &a.inY, &a.outX, &a.outY, &a.tangentLocked, &a.weightLocked, &a.breakdown})
        cut(cellOf(node, *multi), c.keys.size());
}

Node* createCurve(CurveKind kind, const std::string& name)
{
    static const char* const types[] = {"animCurveTA", "animCurveTL", "animCurveTT", "animCurveTU", "animCurveUA", "animCurveUL", "animCurveUT", "animCurveUU"};
    const char* type = types[int(kind)];
    Node*       node = edit::createNode(findNodeType(type), name.empty() ? std::string(type) + "#" : name);
    edit::setNumber(*cellOf(*node, attrsOf(kind).weighted), 0);
    if (fromTime(kind))
        connectTime(*node);
    return node;
}

Node* curveDriving(const Cell& plug)
{
    const Cell* source = edit::behindConversion(plug.source);
    return source && isCurve(*source->node) ? source->node : nullptr;
}

Node* animate(Cell& plug)
{
    std::string name = plug.node->name + "_" + plugPath(plug);
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    Node* curve = createCurve(kindFor(*plug.attr), name);
    edit::connectConverting(outputOf(*curve), plug);
    return curve;
}

DefaultTangents& defaultTangents()
{
    static DefaultTangents kinds;
    return kinds;
}

size_t setKey(Curve& curve, double time, double value, double tolerance, DefaultTangents kinds)
{
    if (const int at = findKey(curve, time, tolerance); at >= 0) {
        curve.keys[size_t(at)].value = value;
        solveTangents(curve);
        return size_t(at);
    }
    Key key;
    key.time = time;
    key.value = value;
    key.in.type = kinds.in;
    key.out.type = kinds.out;
    const size_t at = upperBound(curve, time);
    curve.keys.insert(curve.keys.begin() + std::ptrdiff_t(at), key);
    solveTangents(curve);
    return at;
}

void insertKey(Curve& curve, double time, double tolerance)
{
    if (findKey(curve, time, tolerance) >= 0)
        return;
    const double value = evaluate(curve, time, tolerance);
    const size_t after = upperBound(curve, time);
    if (curve.weighted || after == 0 || after == curve.keys.size()) {
        setKey(curve, time, value, tolerance, {Tangent::kSpline, Tangent::kSpline});
        return;
    }
    // a cubic cut in two stays the same if all four slopes do
    const double rate = slopeAt(curve, time), length = std::hypot(1, rate);
    const Tangent kind = curve.keys[after - 1].out.type;
    const bool    steps = kind == Tangent::kStep || kind == Tangent::kStepNext;
    Key key;
    key.time = time;
    key.value = value;
    key.in = {Tangent::kFixed, 1 / length, rate / length};
    key.out = steps ? Handle{kind, 1, 0} : key.in;
    for (Key* beside : {&curve.keys[after - 1], &curve.keys[after]})
        for (Handle* h : {&beside->in, &beside->out})
            if (h->type != Tangent::kStep && h->type != Tangent::kStepNext)
                h->type = Tangent::kFixed;
    curve.keys.insert(curve.keys.begin() + std::ptrdiff_t(after), key);
    solveTangents(curve);
}

void registerCurveTypes()
{
    registerRow({"animCurve", "node", 0, MFn::kAnimCurve, nullptr, nullptr});
    const Row rows[] = {
        {"animCurveTA", "animCurve", 0x50435441, MFn::kAnimCurveTimeToAngular, CurveOf<0>::creator, CurveOf<0>::initialize},
        {"animCurveTL", "animCurve", 0x5043544C, MFn::kAnimCurveTimeToDistance, CurveOf<1>::creator, CurveOf<1>::initialize},
        {"animCurveTT", "animCurve", 0x50435454, MFn::kAnimCurveTimeToTime, CurveOf<2>::creator, CurveOf<2>::initialize},
        {"animCurveTU", "animCurve", 0x50435455, MFn::kAnimCurveTimeToUnitless, CurveOf<3>::creator, CurveOf<3>::initialize},
        {"animCurveUA", "animCurve", 0x50435541, MFn::kAnimCurveUnitlessToAngular, CurveOf<4>::creator, CurveOf<4>::initialize},
        {"animCurveUL", "animCurve", 0x5043554C, MFn::kAnimCurveUnitlessToDistance, CurveOf<5>::creator, CurveOf<5>::initialize},
        {"animCurveUT", "animCurve", 0x50435554, MFn::kAnimCurveUnitlessToTime, CurveOf<6>::creator, CurveOf<6>::initialize},
        {"animCurveUU", "animCurve", 0x50435555, MFn::kAnimCurveUnitlessToUnitless, CurveOf<7>::creator, CurveOf<7>::initialize},
    };
    for (const Row& row : rows)
        registerRow(row);
}

}  // namespace mirk::anim
