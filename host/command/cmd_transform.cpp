// xform, move, rotate, scale: of transforms and of points.
#include <cctype>
#include <cmath>
#include <cstring>

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MEulerRotation.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include "command/cmd_util.h"
#include "command/shape_edit.h"
#include "command/transform_edit.h"
#include "command/units_text.h"
#include "command/value_text.h"
#include "graph/evaluate.h"
#include "dynamics/instancer.h"
#include "nodes/shape_box.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

double plain(const Value& v, const char* kind)
{
    if (v.kind() == Value::kString)
        fail("Invalid argument '" + v.asString() + "': " + kind + " expected");
    return v.asFloat();
}
double length(const Value& v) { return MDistance(plain(v, "a distance"), MDistance::uiUnit()).as(MDistance::kCentimeters); }
double angle(const Value& v) { return MAngle(plain(v, "an angle"), MAngle::uiUnit()).as(MAngle::kRadians); }
double uiLength(double v) { return MDistance(v, MDistance::kCentimeters).as(MDistance::uiUnit()); }
double uiAngle(double v) { return MAngle(v, MAngle::kRadians).as(MAngle::uiUnit()); }

MVector vectorOf(const std::vector<Value>& args, double (*unit)(const Value&) = nullptr)
{
    const auto get = [&](size_t i) { return unit ? unit(args[i]) : args[i].asFloat(); };
    return {get(0), get(1), get(2)};
}

Value listOf(const MVector& v, double (*unit)(double) = nullptr)
{
    const auto get = [&](double d) { return unit ? unit(d) : d; };
    return Value(std::vector<double>{get(v.x), get(v.y), get(v.z)});
}

Value listOf(const MMatrix& m)
{
    std::vector<double> out;
    for (unsigned i = 0; i < 16; ++i)
        out.push_back(m[i / 4][i % 4]);
    return Value(out);
}

Node& transformItem(const Item& item)
{
    Node* t = nodeOf(item) ? transformOf(*nodeOf(item)) : nullptr;
    if (!t)
        fail("'" + itemName(item) + "' cannot be transformed");
    return *t;
}

/// The path that ends at the transform.
Path transformPath(const Item& item)
{
    Path p = item.path;
    if (p.node() && p.node()->type->shape)
        p.nodes.pop_back();
    return p;
}

struct PointSelection
{
    Node*            shape;
    std::vector<int> indices;
    MMatrix          toWorld;
};

PointSelection pointsOf(const Item& item)
{
    Node* shape = item.path.node();
    if (shape && !shape->type->shape)
        for (Node* s : shapesOf(*shape))
            if (geometryCell(*s))
            {
                shape = s;
                break;
            }
    if (!shape || !geometryCell(*shape))
        fail("'" + itemName(item) + "' has no points");
    PointSelection out{shape, pointIndices(*shape, *item.component), worldMatrix(item.path)};
    if (out.indices.empty())
        fail("'" + itemName(item) + "' has no such points");
    return out;
}

std::vector<MPoint> selectedPoints(const PointSelection& s)
{
    const std::vector<MPoint> all = shapePoints(*s.shape);
    std::vector<MPoint>       out;
    for (int i : s.indices)
        out.push_back(all[size_t(i)]);
    return out;
}

/// Maps the selected points, in world space or in the object's.
void mapPoints(const Item& item, bool world, const std::function<MPoint(const MPoint&, const MPoint& middle)>& map)
{
    const PointSelection s = pointsOf(item);
    std::vector<MPoint>  points = selectedPoints(s);
    const MMatrix        back = s.toWorld.inverse();
    MPoint               low, high;
    for (MPoint& p : points)
    {
        if (world)
            p = p * s.toWorld;
        for (unsigned k = 0; k < 3; ++k)
        {
            low[k] = &p == &points[0] ? p[k] : std::min(low[k], p[k]);
            high[k] = &p == &points[0] ? p[k] : std::max(high[k], p[k]);
        }
    }
    const MPoint middle((low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2);
    for (MPoint& p : points)
    {
        p = map(p, middle);
        if (world)
            p = p * back;
    }
    setShapePoints(*s.shape, s.indices, points);
}

constexpr Flag kXform[] = {
    {"a", "absolute", "", kAll}, {"bb", "boundingBox", "", kQuery}, {"bbi", "boundingBoxInvisible", "", kQuery}, {"cp", "centerPivots"}, {"cpc", "centerPivotsOnComponents"},
    {"dph", "deletePriorHistory", "b"}, {"eu", "euler", "", kAll}, {"m", "matrix", "ffffffffffffffff", kAll}, {"os", "objectSpace", "", kAll}, {"p", "preserve", "b", kAll},
    {"piv", "pivots", "lll", kAll}, {"puv", "preserveUV"}, {"r", "relative", "", kAll}, {"ra", "rotateAxis", "aaa", kAll}, {"rft", "reflection"}, {"ro", "rotation", "aaa", kAll},
    {"roo", "rotateOrder", "s", kAll}, {"rp", "rotatePivot", "lll", kAll}, {"rt", "rotateTranslation", "lll", kAll}, {"s", "scale", "fff", kAll}, {"sh", "shear", "fff", kAll},
    {"sp", "scalePivot", "lll", kAll}, {"st", "scaleTranslation", "lll", kAll}, {"t", "translation", "lll", kAll}, {"wd", "worldSpaceDistance", "", kAll}, {"ws", "worldSpace", "", kAll},
    {"ztp", "zeroTransformPivots"},
};

constexpr const char* kOrders[] = {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"};

/// The points of a geometry; the corners of its box for a shape without points and for an instancer.
std::vector<MPoint> extent(Node& shape)
{
    auto points = shapePoints(shape);
    double b[6];
    if (points.empty() && (dynamics::isInstancer(shape) ? dynamics::instancesBox(shape, b) : nodes::shapeBox(shape, b)))
        for (int corner = 0; corner < 8; ++corner)
            points.push_back(MPoint(b[corner & 1 ? 3 : 0], b[corner & 2 ? 4 : 1], b[corner & 4 ? 5 : 2]));
    return points;
}

/// Box of everything shown below a path, in world space or above the node.
Value boundingBox(const Item& item, bool world)
{
    double low[3], high[3];
    bool   any = false;
    const MMatrix back = world ? MMatrix() : parentMatrix(transformPath(item)).inverse();
    const auto add = [&](const Path& p) {
        if (boolAttr(*p.node(), "intermediateObject"))
            return true;
        const MMatrix m = worldMatrix(p) * back;
        if (p.node()->type->shape || dynamics::isInstancer(*p.node()))
            for (const MPoint& point : extent(*p.node()))
            {
                const MPoint q = point * m;
                for (unsigned k = 0; k < 3; ++k)
                {
                    low[k] = any ? std::min(low[k], q[k]) : q[k];
                    high[k] = any ? std::max(high[k], q[k]) : q[k];
                }
                any = true;
            }
        return true;
    };
    if (item.component)
    {
        const PointSelection s = pointsOf(item);
        for (const MPoint& point : selectedPoints(s))
        {
            const MPoint q = world ? point * s.toWorld : point;
            for (unsigned k = 0; k < 3; ++k)
            {
                low[k] = any ? std::min(low[k], q[k]) : q[k];
                high[k] = any ? std::max(high[k], q[k]) : q[k];
            }
            any = true;
        }
    }
    else
    {
        add(item.path);
        dag::descend(item.path, add);
    }
    std::vector<double> out(6, 0.0);
    for (int k = 0; any && k < 3; ++k)
        out[size_t(k)] = uiLength(low[k]), out[size_t(k) + 3] = uiLength(high[k]);
    return Value(out);
}

MPoint pivotOf(const Item& item, const char* name, bool world)
{
    const MVector local = channels(transformItem(item), name);
    const MPoint  p(local.x, local.y, local.z);
    return world ? p * worldMatrix(transformPath(item)) : p;
}

Value xformQuery(Call& call, const Item& item)
{
    const bool world = call.has("worldSpace");
    if (call.has("boundingBox") || call.has("boundingBoxInvisible"))
        return boundingBox(item, world || item.component == nullptr);
    if (item.component)
    {
        const PointSelection s = pointsOf(item);
        std::vector<double>  out;
        for (MPoint p : selectedPoints(s))
        {
            if (world)
                p = p * s.toWorld;
            for (unsigned k = 0; k < 3; ++k)
                out.push_back(uiLength(p[k]));
        }
        return Value(out);
    }
    Node& t = transformItem(item);
    const MMatrix m = world ? worldMatrix(transformPath(item)) : localMatrix(t);
    if (call.has("matrix"))
        return listOf(m);
    if (call.has("translation"))
        return world ? listOf(MVector(m[3][0], m[3][1], m[3][2]), uiLength) : listOf(channels(t, "translate"), uiLength);
    if (call.has("rotation"))
    {
        if (!world)
            return listOf(channels(t, "rotate"), uiAngle);
        const auto order = MEulerRotation::RotationOrder(int(onePlug(nodeName(t) + ".rotateOrder").number()));
        return listOf(MEulerRotation::decompose(m, order).asVector(), uiAngle);
    }
    if (call.has("scale"))
    {
        if (!world)
            return listOf(channels(t, "scale"));
        double s[3];
        for (unsigned i = 0; i < 3; ++i)
            s[i] = std::sqrt(m[i][0] * m[i][0] + m[i][1] * m[i][1] + m[i][2] * m[i][2]);
        return Value(std::vector<double>(s, s + 3));
    }
    const struct { const char* flag; const char* channel; } pivots[] = {{"rotatePivot", "rotatePivot"}, {"scalePivot", "scalePivot"}};
    for (const auto& p : pivots)
        if (call.has(p.flag))
            return listOf(MVector(pivotOf(item, p.channel, world)), uiLength);
    if (call.has("pivots"))
    {
        std::vector<double> out;
        for (const auto& p : pivots)
            for (double d : numbersIn(listOf(MVector(pivotOf(item, p.channel, world)), uiLength)))
                out.push_back(d);
        return Value(out);
    }
    if (call.has("shear"))
        return listOf(channels(t, "shear"));
    if (call.has("rotateAxis"))
        return listOf(channels(t, "rotateAxis"), uiAngle);
    if (call.has("rotateTranslation"))
        return listOf(channels(t, "rotatePivotTranslate"), uiLength);
    if (call.has("scaleTranslation"))
        return listOf(channels(t, "scalePivotTranslate"), uiLength);
    if (call.has("rotateOrder"))
        return Value(kOrders[std::clamp(int(onePlug(nodeName(t) + ".rotateOrder").number()), 0, 5)]);
    fail("xform: a flag that says what to ask has to be given");
}

void setWorldMatrix(const Item& item, const MMatrix& world)
{
    const Path p = transformPath(item);
    setLocalMatrix(*p.node(), world * parentMatrix(p).inverse());
}

void setTranslation(const Item& item, const MVector& v, bool world, bool relative)
{
    Node&      t = transformItem(item);
    const Path p = transformPath(item);
    if (!world)
        return setChannels(t, "translate", relative ? channels(t, "translate") + v : v);
    const MMatrix m = worldMatrix(p);
    const MVector now(m[3][0], m[3][1], m[3][2]);
    const MVector step = (relative ? v : v - now) * parentMatrix(p).inverse();   // a vector: the parent's translation has no part
    setChannels(t, "translate", channels(t, "translate") + step);
}

void setRotation(const Item& item, const MVector& v, bool world, bool relative)
{
    Node&      t = transformItem(item);
    const Path p = transformPath(item);
    const MMatrix parent = parentMatrix(p);
    if (!relative && (!world || parent == MMatrix()))
        return setChannels(t, "rotate", v);
    const MVector now = channels(t, "rotate");
    const auto    order = MEulerRotation::RotationOrder(std::clamp(int(onePlug(nodeName(t) + ".rotateOrder").number()), 0, 5));
    const MQuaternion given = MEulerRotation(v.x, v.y, v.z, order).asQuaternion(), local = MEulerRotation(now.x, now.y, now.z, order).asQuaternion();
    const MQuaternion up = MEulerRotation::decompose(parent, MEulerRotation::kXYZ).asQuaternion();
    MQuaternion result;
    if (!relative)
        result = given * up.inverse();
    else
        result = world ? local * up * given * up.inverse() : given * local;
    const MEulerRotation e = result.asEulerRotation().reorder(order).closestSolution(MEulerRotation(now.x, now.y, now.z, order));
    setChannels(t, "rotate", MVector(e.x, e.y, e.z));
}

/// Moves a pivot and keeps the object where it is.
void setPivot(const Item& item, const char* pivot, const char* shift, MPoint to, bool world)
{
    const Path p = transformPath(item);
    Node&      t = transformItem(item);
    if (world)
        to = to * worldMatrix(p).inverse();
    const MMatrix before = localMatrix(t);
    setChannels(t, pivot, MVector(to.x, to.y, to.z));
    const MMatrix after = localMatrix(t);
    MVector       missing(before[3][0] - after[3][0], before[3][1] - after[3][1], before[3][2] - after[3][2]);
    if (std::string_view(pivot) == "scalePivot")   // its shift comes before the rotation
        missing = missing * MTransformationMatrix(before).asRotateMatrix().inverse();
    setChannels(t, shift, channels(t, shift) + missing);
}

void setRotateOrder(Node& t, const std::string& name, bool preserve)
{
    for (int i = 0; i < 6; ++i)
        if (name == kOrders[i])
        {
            const MMatrix before = localMatrix(t);
            edit::setNumber(onePlug(nodeName(t) + ".rotateOrder"), i);
            if (preserve)
                setLocalMatrix(t, before);
            return;
        }
    fail("Unknown rotation order: " + name);
}

void centerPivots(const Item& item)
{
    const Value box = boundingBox(item, true);
    const Floats f = box.asFloats();
    const auto&  b = std::as_const(*f);
    if (std::all_of(b.begin(), b.end(), [](double x) { return x == 0; }))
        return;   // nothing to be seen
    const MPoint middle(length(Value((b[0] + b[3]) / 2)), length(Value((b[1] + b[4]) / 2)), length(Value((b[2] + b[5]) / 2)));
    setPivot(item, "rotatePivot", "rotatePivotTranslate", middle, true);
    setPivot(item, "scalePivot", "scalePivotTranslate", middle, true);
}

void xformEdit(Call& call, const Item& item)
{
    const bool world = call.has("worldSpace"), relative = call.has("relative");
    if (item.component)
    {
        if (const auto* use = call.use("translation"))
        {
            const MVector v = vectorOf(use->args, length);
            mapPoints(item, world, [&](const MPoint& p, const MPoint&) { return relative ? p + v : MPoint(v.x, v.y, v.z); });
        }
        return;
    }
    Node& t = transformItem(item);
    if (const auto* use = call.use("rotateOrder"))
        setRotateOrder(t, use->args[0].asString(), call.boolean("preserve", true));
    if (const auto* use = call.use("matrix"))
    {
        MMatrix m;
        for (unsigned i = 0; i < 16; ++i)
            m[i / 4][i % 4] = use->args[i].asFloat();
        if (relative)
            m = m * (world ? worldMatrix(transformPath(item)) : localMatrix(t));
        world ? setWorldMatrix(item, m) : setLocalMatrix(t, m);
    }
    if (const auto* use = call.use("scale"))
    {
        const MVector v = vectorOf(use->args), now = channels(t, "scale");
        setChannels(t, "scale", relative ? MVector(v.x * now.x, v.y * now.y, v.z * now.z) : v);
    }
    if (const auto* use = call.use("shear"))
        setChannels(t, "shear", vectorOf(use->args));
    if (const auto* use = call.use("rotateAxis"))
        setChannels(t, "rotateAxis", vectorOf(use->args, angle));
    if (const auto* use = call.use("rotation"))
        setRotation(item, vectorOf(use->args, angle), world, relative);
    if (const auto* use = call.use("translation"))
        setTranslation(item, vectorOf(use->args, length), world, relative);
    for (const char* flag : {"rotatePivot", "scalePivot", "pivots"})
        if (const auto* use = call.use(flag))
        {
            const MVector v = vectorOf(use->args, length);
            if (flag[0] != 's')
                setPivot(item, "rotatePivot", "rotatePivotTranslate", MPoint(v.x, v.y, v.z), world);
            if (flag[0] != 'r')
                setPivot(item, "scalePivot", "scalePivotTranslate", MPoint(v.x, v.y, v.z), world);
        }
    if (const auto* use = call.use("rotateTranslation"))
        setChannels(t, "rotatePivotTranslate", vectorOf(use->args, length));
    if (const auto* use = call.use("scaleTranslation"))
        setChannels(t, "scalePivotTranslate", vectorOf(use->args, length));
    if (call.has("centerPivots"))
        centerPivots(item);
    if (call.has("zeroTransformPivots"))
        for (const char* name : {"rotatePivot", "scalePivot", "rotatePivotTranslate", "scalePivotTranslate"})
            setChannels(t, name, MVector());
}

Value xform(Call& call)
{
    const std::vector<Item> items = callItems(call);
    if (items.empty())
        fail("Nothing is selected that xform could work on");
    if (call.isQuery())
    {
        if (items.size() == 1)
            return xformQuery(call, items[0]);
        auto out = make<Buffer<double>>();
        for (const Item& item : items)
            for (double d : numbersIn(xformQuery(call, item)))
                out->push(d);
        return Value(out);
    }
    for (const Item& item : items)
        xformEdit(call, item);
    return {};
}

/// Leading numbers of move, rotate and scale, and the objects behind them.
struct Given
{
    MVector           value;
    bool              axis[3] = {true, true, true};
    std::vector<Item> items;
};

/// A number, or text with a unit ("45deg", "2m") in the user's unit.
double numberWithUnit(const Value& v)
{
    Arguments one({v});
    double    number = 0;
    if (v.kind() == Value::kString && readWithUnit(v.get<std::string>(), number))
        return number;
    return one.number();
}

/// True if an axis is named, alone or together with others ("moveXZ").
bool namesAxis(const Call& call, const char* axes[3], unsigned k)
{
    const std::string stem = std::string(axes[0]).substr(0, std::strlen(axes[0]) - 1);
    for (const char* letters : {"X", "Y", "Z", "XY", "XZ", "YZ", "XYZ"})
        if (std::strchr(letters, "XYZ"[k]) && call.has(stem + letters))
            return true;
    return false;
}

Given given(const Call& call, const char* axes[3], double rest)
{
    Given g;
    std::vector<double> numbers;
    size_t i = 0;
    for (; i < call.args.size() && numbers.size() < 3; ++i)
        if (call.args[i].kind() == Value::kString)
        {
            try
            {
                numbers.push_back(numberWithUnit(call.args[i]));
            }
            catch (const Error&)
            {
                break;
            }
        }
        else
            for (double d : numbersIn(call.args[i]))
                numbers.push_back(d);
    // what stands between numbers and objects is meant as a number
    if (!numbers.empty() && numbers.size() < 3 && i < call.args.size() && call.args[i].kind() == Value::kString
        && !namesAxis(call, axes, 0) && !namesAxis(call, axes, 1) && !namesAxis(call, axes, 2) && numbers.size() != 1)
        fail(std::string(call.command->name) + ": three numbers have to be given, and '" + call.args[i].asString() + "' is none");
    const bool any = namesAxis(call, axes, 0) || namesAxis(call, axes, 1) || namesAxis(call, axes, 2);
    g.value = MVector(rest, rest, rest);
    if (any)
    {
        size_t next = 0;
        for (unsigned k = 0; k < 3; ++k)
        {
            g.axis[k] = namesAxis(call, axes, k);
            if (!g.axis[k])
                continue;
            if (numbers.empty())
                fail(std::string(call.command->name) + ": a number has to be given");
            g.value[k] = numbers[std::min(next++, numbers.size() - 1)];
        }
    }
    else
    {
        if (numbers.size() != 3 && !(numbers.size() == 1))
            fail(std::string(call.command->name) + ": three numbers have to be given");
        for (unsigned k = 0; k < 3; ++k)
            g.value[k] = numbers[numbers.size() == 3 ? k : 0];
    }
    for (; i < call.args.size(); ++i)
        for (const std::string& name : call.args[i].asStrings())
            for (Item& item : someItems(name))
                g.items.push_back(std::move(item));
    if (g.items.empty())
        g.items = selection::get();
    if (g.items.empty())
        fail(std::string("Nothing is selected that ") + call.command->name + " could work on");
    return g;
}

constexpr Flag kMove[] = {
    {"a", "absolute"}, {"r", "relative"}, {"x", "moveX"}, {"y", "moveY"}, {"z", "moveZ"}, {"xy", "moveXY"}, {"xz", "moveXZ"}, {"yz", "moveYZ"}, {"xyz", "moveXYZ"},
    {"ls", "localSpace"}, {"os", "objectSpace"}, {"ws", "worldSpace"}, {"wd", "worldSpaceDistance"}, {"rpr", "rotatePivotRelative"}, {"spr", "scalePivotRelative"},
    {"pcp", "preserveChildPosition", "b"}, {"puv", "preserveUV", "b"},
};

Value move(Call& call)
{
    const char* axes[] = {"moveX", "moveY", "moveZ"};
    const Given g = given(call, axes, 0);
    const bool  relative = call.has("relative"), world = !call.has("localSpace") && !call.has("objectSpace");
    const auto  unit = [](double d) { return MDistance(d, MDistance::uiUnit()).as(MDistance::kCentimeters); };
    const MVector v(unit(g.value.x), unit(g.value.y), unit(g.value.z));
    for (const Item& item : g.items)
    {
        if (item.component)
        {
            mapPoints(item, world, [&](const MPoint& p, const MPoint&) {
                MPoint out = relative ? p + v : p;
                for (unsigned k = 0; k < 3 && !relative; ++k)
                    if (g.axis[k])
                        out[k] = v[k];
                return out;
            });
            continue;
        }
        MVector to = v;
        if (!relative)
        {
            const MMatrix m = world ? worldMatrix(transformPath(item)) : MMatrix();
            const MVector now = world ? MVector(m[3][0], m[3][1], m[3][2]) : channels(transformItem(item), "translate");
            for (unsigned k = 0; k < 3; ++k)
                if (!g.axis[k])
                    to[k] = now[k];
        }
        else if (call.has("objectSpace"))
        {
            Node& t = transformItem(item);   // along the object's own axes
            const MVector r = channels(t, "rotate");
            to = v.rotateBy(MEulerRotation(r.x, r.y, r.z, MEulerRotation::RotationOrder(int(onePlug(nodeName(t) + ".rotateOrder").number()))));
        }
        setTranslation(item, to, world, relative);
    }
    return {};
}

constexpr Flag kRotate[] = {
    {"a", "absolute"}, {"r", "relative"}, {"x", "rotateX"}, {"y", "rotateY"}, {"z", "rotateZ"}, {"xy", "rotateXY"}, {"xz", "rotateXZ"}, {"yz", "rotateYZ"}, {"xyz", "rotateXYZ"}, {"os", "objectSpace"}, {"ws", "worldSpace"},
    {"eu", "euler"}, {"fo", "forceOrderXYZ"}, {"p", "pivot", "lll"}, {"cp", "centerPivot"}, {"pcp", "preserveChildPosition", "b"},
};

Value rotate(Call& call)
{
    const char* axes[] = {"rotateX", "rotateY", "rotateZ"};
    const Given g = given(call, axes, 0);
    const bool  relative = call.has("relative"), world = call.has("worldSpace");
    const auto  unit = [](double d) { return MAngle(d, MAngle::uiUnit()).as(MAngle::kRadians); };
    const MVector v(unit(g.value.x), unit(g.value.y), unit(g.value.z));
    for (const Item& item : g.items)
    {
        if (item.component)
        {
            const MMatrix m = MEulerRotation(v.x, v.y, v.z).asMatrix();
            mapPoints(item, !call.has("objectSpace"), [&](const MPoint& p, const MPoint& middle) {
                const MPoint pivot = call.has("pivot") ? MPoint(vectorOf(call.use("pivot")->args, length)) : middle;
                return pivot + (p - pivot) * m;
            });
            continue;
        }
        Node&   t = transformItem(item);
        MVector to = v;
        const MVector now = channels(t, "rotate");
        for (unsigned k = 0; k < 3 && !relative; ++k)
            if (!g.axis[k])
                to[k] = now[k];
        if (relative && call.has("euler"))
            setChannels(t, "rotate", now + v);
        else
            setRotation(item, to, world, relative);
    }
    return {};
}

constexpr Flag kScale[] = {
    {"a", "absolute"}, {"r", "relative"}, {"x", "scaleX"}, {"y", "scaleY"}, {"z", "scaleZ"}, {"xy", "scaleXY"}, {"xz", "scaleXZ"}, {"yz", "scaleYZ"}, {"xyz", "scaleXYZ"}, {"os", "objectSpace"}, {"ls", "localSpace"}, {"ws", "worldSpace"},
    {"p", "pivot", "lll"}, {"cp", "centerPivot"}, {"pcp", "preserveChildPosition", "b"},
};

Value scale(Call& call)
{
    const char* axes[] = {"scaleX", "scaleY", "scaleZ"};
    const Given g = given(call, axes, 1);
    for (const Item& item : g.items)
    {
        if (item.component)
        {
            mapPoints(item, !call.has("objectSpace"), [&](const MPoint& p, const MPoint& middle) {
                const MPoint pivot = call.has("pivot") ? MPoint(vectorOf(call.use("pivot")->args, length)) : middle;
                const MVector d = p - pivot;
                return pivot + MVector(d.x * g.value.x, d.y * g.value.y, d.z * g.value.z);
            });
            continue;
        }
        Node& t = transformItem(item);
        const MVector now = channels(t, "scale");
        MVector to(now.x * g.value.x, now.y * g.value.y, now.z * g.value.z);
        for (unsigned k = 0; k < 3 && call.has("absolute"); ++k)
            to[k] = g.axis[k] ? g.value[k] : now[k];
        setChannels(t, "scale", to);
    }
    return {};
}

constexpr Flag kLimits[] = {
    {"tx", "translationX", "ll", kAll}, {"ty", "translationY", "ll", kAll}, {"tz", "translationZ", "ll", kAll},
    {"rx", "rotationX", "aa", kAll}, {"ry", "rotationY", "aa", kAll}, {"rz", "rotationZ", "aa", kAll},
    {"sx", "scaleX", "ff", kAll}, {"sy", "scaleY", "ff", kAll}, {"sz", "scaleZ", "ff", kAll},
    {"etx", "enableTranslationX", "bb", kAll}, {"ety", "enableTranslationY", "bb", kAll}, {"etz", "enableTranslationZ", "bb", kAll},
    {"erx", "enableRotationX", "bb", kAll}, {"ery", "enableRotationY", "bb", kAll}, {"erz", "enableRotationZ", "bb", kAll},
    {"esx", "enableScaleX", "bb", kAll}, {"esy", "enableScaleY", "bb", kAll}, {"esz", "enableScaleZ", "bb", kAll}, {"rm", "remove"},
};

/// The lower or upper limit, or its switch, that a flag means: "translationX" is minTransXLimit, maxTransXLimit.
Cell& limitCell(Node& t, std::string flag, bool upper)
{
    const bool enable = flag.compare(0, 6, "enable") == 0;
    if (enable)
        flag.erase(0, 6);
    const char  first = char(std::tolower(static_cast<unsigned char>(flag[0])));
    const char* kind = first == 't' ? "Trans" : first == 'r' ? "Rot" : "Scale";
    const std::string name = std::string(upper ? "max" : "min") + kind + flag.back() + "Limit" + (enable ? "Enable" : "");
    return *t.cell(t.findAttribute(name));
}

Value transformLimits(Call& call)
{
    const std::vector<Item> items = callItems(call);
    if (items.empty())
        fail("transformLimits: no transform is given or selected");
    if (call.isQuery())
    {
        Node& t = transformItem(items[0]);
        for (const Flag& f : kLimits)
            if (call.has(f.longName) && std::strcmp(f.longName, "remove") != 0)
            {
                double v[2];
                for (int k = 0; k < 2; ++k)
                {
                    Cell& cell = limitCell(t, f.longName, k == 1);
                    eval::pull(cell);
                    v[k] = toUi(*cell.attr, cell.number());
                }
                if (f.longName[0] == 'e')
                    return Value(Ints{int(v[0]), int(v[1])});
                return Value(std::vector<double>{v[0], v[1]});
            }
        fail("transformLimits: a flag that says what to ask has to be given");
    }
    for (const Item& item : items)
    {
        Node& t = transformItem(item);
        for (const Flag& f : kLimits)
            for (int k = 0; k < 2 && std::strcmp(f.longName, "remove") != 0; ++k)
            {
                Cell& cell = limitCell(t, f.longName, k == 1);
                if (call.has("remove") && f.longName[0] == 'e' && cell.number() != 0)
                    edit::setNumber(cell, 0);
                if (const Call::Use* use = call.use(f.longName))
                    edit::setNumber(cell, fromUi(*cell.attr, numberWithUnit(use->args[size_t(k)])));
            }
    }
    return {};
}

const Command kCommands[] = {
    {"transformLimits", kLimits, transformLimits},
    {"xform", kXform, xform},
    {"move", kMove, move},
    {"rotate", kRotate, rotate},
    {"scale", kScale, scale},
};

}  // namespace

void registerTransformCommands() { add(kCommands); }

}  // namespace mirk::command
