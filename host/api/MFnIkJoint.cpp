#include <maya/MFnIkJoint.h>

#include <maya/MDagPath.h>

#include "api/api.h"
#include "graph/edit.h"
#include "nodes/dag_attrs.h"

using namespace mirk;

namespace {

using Order = MTransformationMatrix::RotationOrder;

MStatus read(Node* joint, const char* attribute, double v[3])
{
    const Attribute* a = joint ? joint->findAttribute(attribute) : nullptr;
    if (!a)
        return MS::kFailure;
    nodes::pulledTriple(*joint, a, v);
    return MS::kSuccess;
}

MStatus write(Node* joint, const char* attribute, const double v[3])
{
    const Attribute* a = joint ? joint->findAttribute(attribute) : nullptr;
    if (!a)
        return MS::kFailure;
    return api::guarded([&] {
        Cell& cell = *joint->cell(a);
        if (edit::isDriven(cell))
            throw command::Error("The attribute '" + plugName(cell) + "' is connected and cannot be modified.");
        edit::change(cell, [&] {
            for (int i = 0; i < 3; ++i)
                cell.setNumber(v[i], i);
        });
    });
}

// the orientations of a joint turn in the order xyz
MStatus readRotation(Node* joint, const char* attribute, MEulerRotation& rotation)
{
    double        v[3];
    const MStatus status = read(joint, attribute, v);
    if (status == MS::kSuccess)
        rotation = MEulerRotation(v[0], v[1], v[2]);
    return status;
}

MStatus writeRotation(Node* joint, const char* attribute, MEulerRotation rotation)
{
    rotation.reorderIt(MEulerRotation::kXYZ);
    const double v[] = {rotation.x, rotation.y, rotation.z};
    return write(joint, attribute, v);
}

bool isOrder(Order order) { return order >= MTransformationMatrix::kXYZ && order <= MTransformationMatrix::kZYX; }

}  // namespace

MFnIkJoint::MFnIkJoint(const MObject& object, MStatus* s)
{
    const MStatus status = setObject(object);
    if (s) *s = status;
}

MFnIkJoint::MFnIkJoint(const MDagPath& object, MStatus* s)
{
    const MStatus status = setObject(object);
    if (s) *s = status;
}

MFn::Type MFnIkJoint::type() const { return MFn::kJoint; }

MObject MFnIkJoint::create(MObject parent, MStatus* s) { return MFnDagNode::create("joint", parent, s); }

#define MIRK_ROTATION(Name, attribute) \
    MStatus MFnIkJoint::get##Name(MEulerRotation& rotation) const { return readRotation(node(), attribute, rotation); } \
    MStatus MFnIkJoint::get##Name(MQuaternion& quaternion) const \
    { \
        MEulerRotation r; \
        const MStatus  s = readRotation(node(), attribute, r); \
        if (s == MS::kSuccess) \
            quaternion = r.asQuaternion(); \
        return s; \
    } \
    MStatus MFnIkJoint::get##Name(double rotation[3], Order& order) const \
    { \
        order = MTransformationMatrix::kXYZ; \
        return read(node(), attribute, rotation); \
    } \
    MStatus MFnIkJoint::set##Name(const MEulerRotation& rotation) { return writeRotation(node(), attribute, rotation); } \
    MStatus MFnIkJoint::set##Name(const MQuaternion& q) { return writeRotation(node(), attribute, q.asEulerRotation()); } \
    MStatus MFnIkJoint::set##Name(const double r[3], Order order) \
    { \
        if (!isOrder(order)) \
            return MS::kInvalidParameter; \
        return writeRotation(node(), attribute, MEulerRotation(r[0], r[1], r[2], MEulerRotation::RotationOrder(order - 1))); \
    }
MIRK_ROTATION(Orientation, "jointOrient")
MIRK_ROTATION(ScaleOrientation, "rotateAxis")
#undef MIRK_ROTATION

MStatus MFnIkJoint::getSegmentScale(double scale[3]) const { return read(node(), "inverseScale", scale); }
MStatus MFnIkJoint::setSegmentScale(const double scale[3]) { return write(node(), "inverseScale", scale); }
MStatus MFnIkJoint::getStiffness(double stiffness[3]) const { return read(node(), "stiffness", stiffness); }
MStatus MFnIkJoint::setStiffness(const double stiffness[3]) { return write(node(), "stiffness", stiffness); }
MStatus MFnIkJoint::getPreferedAngle(double rotation[3]) const { return read(node(), "preferredAngle", rotation); }
MStatus MFnIkJoint::setPreferedAngle(const double rotation[3]) { return write(node(), "preferredAngle", rotation); }

namespace {

constexpr const char* kFree[] = {"jointTypeX", "jointTypeY", "jointTypeZ"};

}  // namespace

MStatus MFnIkJoint::getDegreesOfFreedom(bool& x, bool& y, bool& z) const
{
    if (!node())
        return MS::kFailure;
    bool* to[] = {&x, &y, &z};
    for (int i = 0; i < 3; ++i)
        *to[i] = nodes::pulledNumber(*node(), node()->findAttribute(kFree[i])) != 0;
    return MS::kSuccess;
}

MStatus MFnIkJoint::setDegreesOfFreedom(bool x, bool y, bool z)
{
    if (!node())
        return MS::kFailure;
    return api::guarded([&] {
        const bool free[] = {x, y, z};
        for (int i = 0; i < 3; ++i)
            edit::setNumber(*node()->cell(node()->findAttribute(kFree[i])), free[i]);
    });
}
