#include "dynamics/instancer.h"

#include <algorithm>
#include <cmath>

#include <maya/MAngle.h>
#include <maya/MEulerRotation.h>
#include <maya/MPxNode.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include "data/dyn_arrays.h"
#include "data/mobject.h"
#include "graph/evaluate.h"
#include "nodes/attr.h"
#include "nodes/builtin.h"
#include "nodes/dag_attrs.h"

namespace mirk::dynamics {
namespace {

using namespace nodes;

struct Attrs { const Attribute *points, *objects, *cycle, *cycleStep, *cycleUnits, *detail, *rotationUnits, *rotationOrder; };
Attrs g;

class InstancerUser : public MPxNode
{
public:
    static void*   creator() { return new InstancerUser; }
    static MStatus initialize()
    {
        const MObject points = typed("inputPoints", "inp", MFnData::kDynArrayAttrs, kNoStore | kReset);
        const MObject objects = matrix("inputHierarchy", "inh", kMulti | kNoStore);
        const MObject cycle = choice("cycle", "cyc", 0, {"None", "Sequential"}, kChannel);
        const MObject step = number("cycleStep", "cys", Number::kDouble, 1, kChannel);
        const MObject units = choice("cycleStepUnits", "csu", 0, {"Frames", "Seconds"}, kChannel);
        const MObject detail = choice("levelOfDetail", "lod", 0, {"Geometry", "BoundingBox", "BoundingBoxes"}, kChannel);
        const MObject rotationUnits = choice("rotationUnits", "ru", 0, {"Degrees", "Radians"}, kChannel);
        const MObject order = choice("rotationOrder", "ror", 0, {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"}, kChannel);
        nodes::add({points, objects, cycle, step, units, detail, rotationUnits, order});
        const auto base = [](const Attribute* a) { return wrap(const_cast<Attribute*>(a)); };
        affects({points, objects, cycle, step, units, rotationUnits, order}, {base(dagAttrs().boundingBox), base(dagAttrs().center)});
        return MS::kSuccess;
    }
};

// ---- reading -----------------------------------------------------------------------------------------------------

/// The arrays of the input by name, each with a value for points that it does not reach.
class Points
{
public:
    explicit Points(Ref<Data> data) : data_(std::move(data)) { arrays_ = dynamic_cast<const DynArrayAttrsData*>(data_.get()); }

    const Buffer<MVector>* vectors(const char* name) const
    {
        const auto* c = arrays_ ? arrays_->find(name) : nullptr;
        const auto* b = c ? std::get_if<Ref<Buffer<MVector>>>(&c->values) : nullptr;
        return b ? b->get() : nullptr;
    }

    /// Numbers of either kind.
    class Numbers
    {
    public:
        Numbers(const DynArrayAttrsData* arrays, const char* name)
        {
            const auto* c = arrays ? arrays->find(name) : nullptr;
            if (!c)
                return;
            if (const auto* d = std::get_if<Ref<Buffer<double>>>(&c->values))
                doubles_ = d->get();
            else if (const auto* i = std::get_if<Ref<Buffer<int>>>(&c->values))
                ints_ = i->get();
        }
        double at(size_t i, double otherwise) const
        {
            if (doubles_)
                return i < doubles_->size() ? (*doubles_)[i] : otherwise;
            return ints_ && i < ints_->size() ? double((*ints_)[i]) : otherwise;
        }

    private:
        const Buffer<double>* doubles_ = nullptr;
        const Buffer<int>*    ints_ = nullptr;
    };
    Numbers numbers(const char* name) const { return Numbers(arrays_, name); }

private:
    Ref<Data>                data_;
    const DynArrayAttrsData* arrays_ = nullptr;
};

MVector at(const Buffer<MVector>* array, size_t i, const MVector& otherwise) { return array && i < array->size() ? (*array)[i] : otherwise; }

bool finite(const MMatrix& m)
{
    return std::all_of(&m.matrix[0][0], &m.matrix[0][0] + 16, [](double v) { return std::isfinite(v); });
}

// ---- directions --------------------------------------------------------------------------------------------------

/// Three directions at right angles, the first along `aim`, the second towards `up` where the two are not in line.
bool frame(const MVector& aim, const MVector& up, MVector (&out)[3])
{
    const double length = aim.length();
    if (!(length > 0) || !std::isfinite(length))
        return false;
    out[0] = aim / length;
    out[1] = up - out[0] * (up * out[0]);
    if (!(out[1].length() > 1e-9 * up.length())) {
        const MVector other = std::fabs(out[0].y) < 0.9 ? MVector(0, 1, 0) : MVector(1, 0, 0);
        out[1] = other - out[0] * (other * out[0]);
    }
    out[1].normalize();
    out[2] = out[0] ^ out[1];
    return true;
}

/// Turns one pair of directions onto another; nothing for a direction without length.
MMatrix turned(const MVector& axis, const MVector& upAxis, const MVector& aim, const MVector& up)
{
    MVector from[3], to[3];
    MMatrix m;
    if (frame(axis, upAxis, from) && frame(aim, up, to))
        for (unsigned r = 0; r < 3; ++r)
            for (unsigned c = 0; c < 3; ++c)
                m[r][c] = from[0][r] * to[0][c] + from[1][r] * to[1][c] + from[2][r] * to[2][c];
    return m;
}

// ---- one instance ------------------------------------------------------------------------------------------------

enum RotationType { kRotation, kAimDirection, kAimPosition };

/// How the points of an instancer are placed: its settings and its input's arrays.
class Placer
{
public:
    Placer(Node& node, const Points& p, size_t objectCount)
        : position_(p.vectors("position")), rotation_(p.vectors("rotation")), aim_(p.vectors("aimDirection")), target_(p.vectors("aimPosition")),
          scale_(p.vectors("scale")), shear_(p.vectors("shear")), aimAxis_(p.vectors("aimAxis")), upAxis_(p.vectors("aimUpAxis")),
          up_(p.vectors("aimWorldUp")), visibility_(p.numbers("visibility")), index_(p.numbers("objectIndex")), age_(p.numbers("age")),
          type_(p.numbers("rotationType")), objectCount_(objectCount)
    {
        const MEulerRotation::RotationOrder orders[] = {MEulerRotation::kXYZ, MEulerRotation::kXZY, MEulerRotation::kYXZ,
                                                        MEulerRotation::kYZX, MEulerRotation::kZXY, MEulerRotation::kZYX};
        order_ = orders[std::clamp(int(pulledNumber(node, g.rotationOrder)), 0, 5)];
        unit_ = pulledNumber(node, g.rotationUnits) == 0 ? M_PI / 180 : 1;
        const double step = pulledNumber(node, g.cycleStep);
        if (pulledNumber(node, g.cycle) == 1 && step > 0)
            cycle_ = step * (pulledNumber(node, g.cycleUnits) == 0 ? MTime(1, MTime::uiUnit()).as(MTime::kSeconds) : 1);
        usual_ = rotation_ || !(aim_ || target_) ? kRotation : aim_ ? kAimDirection : kAimPosition;
    }

    size_t count() const { return position_ ? position_->size() : 0; }

    bool place(size_t i, Instance& out) const
    {
        if (visibility_.at(i, 1) == 0)
            return false;
        out.object = object(i);
        const MVector place = (*position_)[i], scale = at(scale_, i, MVector(1, 1, 1)), shear = at(shear_, i, MVector());
        const double  scales[3] = {scale.x, scale.y, scale.z}, shears[3] = {shear.x, shear.y, shear.z};
        MTransformationMatrix size;
        size.setScale(scales, MSpace::kTransform);
        size.setShear(shears, MSpace::kTransform);
        out.matrix = size.asMatrix() * rotation(i);
        for (unsigned k = 0; k < 3; ++k)
            out.matrix[3][k] = place[k];
        return finite(out.matrix);
    }

private:
    /// Indices out of range take the first or the last object.
    size_t object(size_t i) const
    {
        const double last = double(objectCount_ - 1), wanted = index_.at(i, 0);
        double       index = wanted > 0 ? std::min(std::floor(wanted), last) : 0;
        if (cycle_ > 0) {
            const double steps = std::floor(age_.at(i, 0) / cycle_);
            index = std::isfinite(steps) ? std::fmod(index + std::max(steps, 0.), double(objectCount_)) : index;
        }
        return size_t(index);
    }

    MMatrix rotation(size_t i) const
    {
        const int type = int(std::clamp(type_.at(i, usual_), -1., 99.));
        if (type == kAimDirection || type == kAimPosition) {
            const MVector aim = type == kAimDirection ? at(aim_, i, MVector(1, 0, 0)) : at(target_, i, MVector()) - (*position_)[i];
            return turned(at(aimAxis_, i, MVector(1, 0, 0)), at(upAxis_, i, MVector(0, 1, 0)), aim, at(up_, i, MVector(0, 1, 0)));
        }
        const MVector r = at(rotation_, i, MVector()) * unit_;
        return MEulerRotation(r, order_).asMatrix();
    }

    const Buffer<MVector>*        position_, *rotation_, *aim_, *target_, *scale_, *shear_, *aimAxis_, *upAxis_, *up_;
    Points::Numbers               visibility_, index_, age_, type_;
    size_t                        objectCount_;
    MEulerRotation::RotationOrder order_ = MEulerRotation::kXYZ;
    double                        unit_ = 1, cycle_ = 0;   ///< cycle_: seconds an object is shown, 0 for no cycle
    RotationType                  usual_ = kRotation;
};

}  // namespace

bool isInstancer(const Node& node) { return node.type->dag && g.points && node.type->isA("instancer"); }

std::vector<Node*> instancedObjects(Node& instancer)
{
    std::vector<Node*> out;
    const Cell*        objects = instancer.cell(g.objects);
    if (objects->elements)
        for (const Cell* e : objects->elements->cells)
            out.push_back(e->source && e->source->node->dag ? e->source->node : nullptr);
    return out;
}

std::vector<Instance> instances(Node& instancer)
{
    std::vector<Instance> out;
    const size_t          objectCount = instancedObjects(instancer).size();
    Cell*                 input = instancer.cell(g.points);
    eval::pull(*input);
    if (objectCount == 0 || !input->data())
        return out;
    const Points points{Ref<Data>(input->data())};
    const Placer placer(instancer, points, objectCount);
    out.reserve(placer.count());
    Instance one;
    for (size_t i = 0; i < placer.count(); ++i)
        if (placer.place(i, one))
            out.push_back(one);
    return out;
}

InstanceDetail instanceDetail(Node& instancer)
{
    switch (int(pulledNumber(instancer, g.detail))) {
    case 1:  return InstanceDetail::wholeBox;
    case 2:  return InstanceDetail::shapeBoxes;
    default: return InstanceDetail::geometry;
    }
}

bool instancesBox(Node& instancer, double box[6])
{
    struct Known { bool found = false; double box[6] = {}; };
    std::vector<Known> objects;
    for (Node* object : instancedObjects(instancer)) {
        Known known;
        if (object) {   // by its attributes, so that their dirt comes here
            eval::pull(*object->cell(dagAttrs().boxMin));
            for (int k = 0; k < 6; ++k)
                known.box[k] = object->cell(k < 3 ? dagAttrs().boxMin : dagAttrs().boxMax)->number(k % 3);
            known.found = std::any_of(known.box, known.box + 6, [](double v) { return v != 0; });   // all zero: nothing below
        }
        objects.push_back(known);
    }
    bool empty = true;
    for (const Instance& i : instances(instancer))
        if (objects[i.object].found)
            growBox(box, empty, objects[i.object].box, i.matrix.matrix);
    return !empty;
}

void instancerBoxes(Node& object, std::vector<Cell*>& boxes)
{
    const auto follow = [&](const Cell* from) {
        for (const Cell* target : from && from->targets ? *from->targets : std::vector<Cell*>())
            if (target->attr == g.objects)
                boxes.push_back(target->node->cellIfAny(dagAttrs().boundingBox));
    };
    follow(object.cellIfAny(dagAttrs().matrix));
    if (const Cell* world = object.cellIfAny(dagAttrs().worldMatrix); world && world->elements)
        for (const Cell* e : world->elements->cells)
            follow(e);
}

void registerInstancer()
{
    const NodeType& t = *registerRow({"instancer", "transform", 0x494E5354, MFn::kTransform, InstancerUser::creator, InstancerUser::initialize}, Role::dag);
    g = {t.find("inputPoints"), t.find("inputHierarchy"), t.find("cycle"), t.find("cycleStep"), t.find("cycleStepUnits"),
         t.find("levelOfDetail"), t.find("rotationUnits"), t.find("rotationOrder")};
}

}  // namespace mirk::dynamics
