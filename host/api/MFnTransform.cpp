#include <maya/MFnTransform.h>

#include "api/api.h"
#include "dag/dag.h"
#include "graph/edit.h"
#include "nodes/dag_attrs.h"

using namespace mirk;

namespace {

MVector triple(Node& node, const Attribute* a)
{
    double v[3];
    nodes::pulledTriple(node, a, v);
    return {v[0], v[1], v[2]};
}

MTransformationMatrix read(Node& node)
{
    const auto&           g = nodes::dagAttrs();
    MTransformationMatrix m;
    double                v[3];
    nodes::pulledTriple(node, g.scale, v);
    m.setScale(v, MSpace::kTransform);
    nodes::pulledTriple(node, g.shear, v);
    m.setShear(v, MSpace::kTransform);
    const MVector r = triple(node, g.rotate), axis = triple(node, g.rotateAxis);
    const int     order = std::min(std::max(int(nodes::pulledNumber(node, g.rotateOrder)), 0), 5);
    const double  angles[3] = {r.x, r.y, r.z};
    m.setRotation(angles, MTransformationMatrix::RotationOrder(order + 1));
    m.setRotationOrientation(MEulerRotation(axis).asQuaternion());
    m.setTranslation(triple(node, g.translate), MSpace::kTransform);
    m.setRotatePivot(triple(node, g.rotatePivot), MSpace::kTransform, false);
    m.setRotatePivotTranslation(triple(node, g.rotatePivotTranslate), MSpace::kTransform);
    m.setScalePivot(triple(node, g.scalePivot), MSpace::kTransform, false);
    m.setScalePivotTranslation(triple(node, g.scalePivotTranslate), MSpace::kTransform);
    return m;
}

/// Writes a triple unless it stands there already; an error if something is connected or locked.
void writeTriple(Node& node, const Attribute* a, const MVector& v)
{
    if (triple(node, a) == v)
        return;
    Cell& cell = *node.cell(a);
    if (edit::isDriven(cell))
        throw command::Error("The attribute '" + plugName(cell) + "' is connected and cannot be modified.");
    for (size_t i = 0; i < 3; ++i)
        if (Cell* c = cell.childIfAny(i); c && (edit::isDriven(*c) || c->is(Cell::kLocked)) && c->number() != (i == 0 ? v.x : i == 1 ? v.y : v.z))
            throw command::Error("The attribute '" + plugName(*c) + "' is locked or connected and cannot be modified.");
    edit::change(cell, [&] {
        cell.setNumber(v.x, 0);
        cell.setNumber(v.y, 1);
        cell.setNumber(v.z, 2);
    });
}

void write(Node& node, const MTransformationMatrix& m)
{
    const auto& g = nodes::dagAttrs();
    double      v[3];
    m.getScale(v, MSpace::kTransform);
    writeTriple(node, g.scale, MVector(v[0], v[1], v[2]));
    m.getShear(v, MSpace::kTransform);
    writeTriple(node, g.shear, MVector(v[0], v[1], v[2]));
    const int order = int(m.rotationOrder()) - 1;
    if (order != int(nodes::pulledNumber(node, g.rotateOrder)))
        edit::setNumber(*node.cell(g.rotateOrder), order);
    MTransformationMatrix::RotationOrder ignored;
    m.getRotation(v, ignored);
    writeTriple(node, g.rotate, MVector(v[0], v[1], v[2]));
    const MVector axis = triple(node, g.rotateAxis);
    if (!MEulerRotation(axis).asQuaternion().isEquivalent(m.rotationOrientation(), 1e-12))
        writeTriple(node, g.rotateAxis, m.rotationOrientation().asEulerRotation().asVector());
    writeTriple(node, g.translate, m.getTranslation(MSpace::kTransform));
    writeTriple(node, g.rotatePivot, MVector(m.rotatePivot(MSpace::kTransform)));
    writeTriple(node, g.rotatePivotTranslate, m.rotatePivotTranslation(MSpace::kTransform));
    writeTriple(node, g.scalePivot, MVector(m.scalePivot(MSpace::kTransform)));
    writeTriple(node, g.scalePivotTranslate, m.scalePivotTranslation(MSpace::kTransform));
}

MVector times(const MVector& v, const MMatrix& m, bool asPoint)
{
    const double w = asPoint ? 1 : 0;
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0] + w * m[3][0], v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1] + w * m[3][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2] + w * m[3][2]};
}

MQuaternion rotationOf(const MMatrix& m) { return MTransformationMatrix(m).rotation(); }

}  // namespace

MFnTransform::MFnTransform(const MObject& object, MStatus* s)
{
    const bool    ok = object.hasFn(MFn::kTransform);
    const MStatus status = ok ? MFnDagNode::setObject(object) : MStatus(MS::kInvalidParameter);
    report(s, status.statusCode());
}

MFnTransform::MFnTransform(const MDagPath& object, MStatus* s)
{
    MDagPath      path = object;
    const MStatus status = object.hasFn(MFn::kTransform) ? MFnDagNode::setObject(path) : MStatus(MS::kInvalidParameter);
    report(s, status.statusCode());
}

MFn::Type MFnTransform::type() const { return MFn::kTransform; }
MObject   MFnTransform::create(MObject parent, MStatus* s) { return MFnDagNode::create("transform", parent, s); }

MTransformationMatrix MFnTransform::transformation(MStatus* s) const
{
    Node* n = node();
    return n ? reported(s, MS::kSuccess, read(*n)) : reported(s, MS::kFailure, MTransformationMatrix());
}

MStatus MFnTransform::set(const MTransformationMatrix& transform)
{
    Node* n = node();
    return n ? api::guarded([&] { write(*n, transform); }) : MStatus(MS::kFailure);
}

template <class F>
MStatus MFnTransform::edit(F change)
{
    Node* n = node();
    if (!n)
        return MS::kFailure;
    MTransformationMatrix m = read(*n);
    change(m);
    return set(m);
}

namespace {

bool isSpace(MSpace::Space space) { return space > MSpace::kInvalid && space < MSpace::kLast; }

/// The matrix of what stands above; success only if there is one path, or the function set was given one.
MStatus above(const MDagPath& path, MMatrix& m)
{
    if (!path.isValid())
        return MS::kInvalidParameter;
    m = path.exclusiveMatrix();
    return MS::kSuccess;
}

}  // namespace

MVector MFnTransform::getTranslation(MSpace::Space space, MStatus* s) const
{
    MStatus       status;
    const MVector t = transformation(&status).getTranslation(MSpace::kTransform);
    MMatrix       parent;
    if (status && space == MSpace::kWorld)
        status = above(dagPath(), parent);
    return reported(s, status.statusCode(), space == MSpace::kWorld ? times(t, parent, true) : t);
}

MStatus MFnTransform::setTranslation(const MVector& vec, MSpace::Space space)
{
    if (!isSpace(space))
        return MS::kInvalidParameter;
    MMatrix parent;
    if (space == MSpace::kWorld)
        if (const MStatus status = above(dagPath(), parent); !status)
            return status;
    return edit([&](MTransformationMatrix& m) { m.setTranslation(space == MSpace::kWorld ? times(vec, parent.inverse(), true) : vec, MSpace::kTransform); });
}

MStatus MFnTransform::translateBy(const MVector& vec, MSpace::Space space)
{
    if (!isSpace(space))
        return MS::kInvalidParameter;
    MMatrix parent;
    if (space == MSpace::kWorld)
        if (const MStatus status = above(dagPath(), parent); !status)
            return status;
    return edit([&](MTransformationMatrix& m) {
        MVector by = vec;
        if (space == MSpace::kWorld)
            by = times(vec, parent.inverse(), false);
        else if (space == MSpace::kObject || space == MSpace::kPreTransform)
            by = times(vec, m.asMatrix(), false);
        m.setTranslation(m.getTranslation(MSpace::kTransform) + by, MSpace::kTransform);
    });
}

MStatus MFnTransform::getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order) const
{
    MStatus                     status;
    const MTransformationMatrix m = transformation(&status);
    return status ? m.getRotation(rotation, order) : status;
}

MStatus MFnTransform::getRotation(MQuaternion& quaternion, MSpace::Space space) const
{
    MStatus                     status;
    const MTransformationMatrix m = transformation(&status);
    if (!status)
        return status;
    quaternion = m.rotation();
    if (space != MSpace::kWorld)
        return status;
    const MDagPath path = dagPath(&status);
    if (status)
        quaternion = rotationOf(path.inclusiveMatrix());
    return status;
}

MStatus MFnTransform::getRotation(MEulerRotation& rotation) const
{
    MStatus status;
    rotation = transformation(&status).eulerRotation();
    return status;
}

MStatus MFnTransform::setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order)
{
    if (order <= MTransformationMatrix::kInvalid || order >= MTransformationMatrix::kLast)
        return MS::kInvalidParameter;
    return edit([&](MTransformationMatrix& m) { m.setRotation(rotation, order); });
}

MStatus MFnTransform::setRotation(const MQuaternion& quaternion, MSpace::Space space)
{
    if (!isSpace(space))
        return MS::kInvalidParameter;
    MQuaternion local = quaternion;
    if (space == MSpace::kWorld) {
        MMatrix parent;
        if (const MStatus status = above(dagPath(), parent); !status)
            return status;
        local = quaternion * rotationOf(parent).inverse();
    }
    return edit([&](MTransformationMatrix& m) {   // the order of the angles stays
        const auto order = m.rotationOrder();
        if (space == MSpace::kWorld)   // there the orientation's turn is part of what one sees
            local = m.rotationOrientation().inverse() * local;
        m.rotateTo(local);
        m.reorderRotation(order);
    });
}

MStatus MFnTransform::setRotation(const MEulerRotation& rotation)
{
    return edit([&](MTransformationMatrix& m) { m.rotateTo(rotation); });
}

MStatus MFnTransform::rotateBy(const MQuaternion& quaternion, MSpace::Space space)
{
    if (!isSpace(space))
        return MS::kInvalidParameter;
    MQuaternion by = quaternion;
    if (space == MSpace::kWorld) {   // what turns about the world's axes, seen from the parent
        MMatrix parent;
        if (const MStatus status = above(dagPath(), parent); !status)
            return status;
        const MQuaternion p = rotationOf(parent);
        by = p * quaternion * p.inverse();
    }
    return edit([&](MTransformationMatrix& m) {
        const auto order = m.rotationOrder();
        m.rotateBy(by, space);
        m.reorderRotation(order);
    });
}

MStatus MFnTransform::rotateBy(const MEulerRotation& rotation, MSpace::Space space) { return rotateBy(rotation.asQuaternion(), space); }

MStatus MFnTransform::getRotationQuaternion(double& x, double& y, double& z, double& w, MSpace::Space space) const
{
    MQuaternion   q;
    const MStatus status = getRotation(q, space);
    if (status) {
        x = q.x;
        y = q.y;
        z = q.z;
        w = q.w;
    }
    return status;
}

MStatus MFnTransform::setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space)
{
    return setRotation(MQuaternion(x, y, z, w), space);
}

MTransformationMatrix::RotationOrder MFnTransform::rotationOrder(MStatus* s) const { return transformation(s).rotationOrder(); }

MStatus MFnTransform::setRotationOrder(MTransformationMatrix::RotationOrder order, bool reorder)
{
    if (order <= MTransformationMatrix::kInvalid || order >= MTransformationMatrix::kLast)
        return MS::kInvalidParameter;
    return edit([&](MTransformationMatrix& m) {
        if (reorder) {
            m.reorderRotation(order);
            return;
        }
        const MEulerRotation r = m.eulerRotation();
        const double         angles[3] = {r.x, r.y, r.z};
        m.setRotation(angles, order);
    });
}

MQuaternion MFnTransform::rotateOrientation(MSpace::Space, MStatus* s) const { return transformation(s).rotationOrientation(); }

MStatus MFnTransform::setRotateOrientation(const MQuaternion& quaternion, MSpace::Space, bool balance)
{
    return edit([&](MTransformationMatrix& m) {
        if (balance) {   // what the orientation turns, the rotation turns back
            const auto order = m.rotationOrder();
            m.rotateTo(quaternion.inverse() * m.rotationOrientation() * m.rotation());
            m.reorderRotation(order);
        }
        m.setRotationOrientation(quaternion);
    });
}

MStatus MFnTransform::getScale(double scale[3]) const
{
    MStatus                     status;
    const MTransformationMatrix m = transformation(&status);
    return status ? m.getScale(scale, MSpace::kTransform) : status;
}

MStatus MFnTransform::setScale(const double scale[3])
{
    return edit([&](MTransformationMatrix& m) { m.setScale(scale, MSpace::kTransform); });
}

MStatus MFnTransform::scaleBy(const double scale[3])
{
    return edit([&](MTransformationMatrix& m) { m.addScale(scale, MSpace::kTransform); });
}

MStatus MFnTransform::getShear(double shear[3]) const
{
    MStatus                     status;
    const MTransformationMatrix m = transformation(&status);
    return status ? m.getShear(shear, MSpace::kTransform) : status;
}

MStatus MFnTransform::setShear(const double shear[3])
{
    return edit([&](MTransformationMatrix& m) { m.setShear(shear, MSpace::kTransform); });
}

MStatus MFnTransform::shearBy(const double shear[3])
{
    return edit([&](MTransformationMatrix& m) { m.addShear(shear, MSpace::kTransform); });
}

namespace {

/// Pivots are kept in the space before the transform; in world space they go through the whole path.
MPoint pivotIn(const MFnTransform& fn, const MPoint& p, MSpace::Space space, MStatus* s)
{
    if (space != MSpace::kWorld)
        return p;
    MStatus        status;
    const MDagPath path = fn.dagPath(&status);
    return reported(s, status.statusCode(), MPoint(times(MVector(p), path.inclusiveMatrix(), true)));
}

MStatus pivotFrom(const MFnTransform& fn, MPoint& p, MSpace::Space space)
{
    if (space != MSpace::kWorld)
        return MS::kSuccess;
    MStatus        status;
    const MDagPath path = fn.dagPath(&status);
    if (status)
        p = MPoint(times(MVector(p), path.inclusiveMatrixInverse(), true));
    return status;
}

}  // namespace

MPoint MFnTransform::scalePivot(MSpace::Space space, MStatus* s) const
{
    return pivotIn(*this, transformation(s).scalePivot(MSpace::kTransform), space, s);
}

MStatus MFnTransform::setScalePivot(const MPoint& point, MSpace::Space space, bool balance)
{
    MPoint        p = point;
    const MStatus status = pivotFrom(*this, p, space);
    return status ? edit([&](MTransformationMatrix& m) { m.setScalePivot(p, MSpace::kTransform, balance); }) : status;
}

MVector MFnTransform::scalePivotTranslation(MSpace::Space, MStatus* s) const { return transformation(s).scalePivotTranslation(MSpace::kTransform); }
MStatus MFnTransform::setScalePivotTranslation(const MVector& vec, MSpace::Space)
{
    return edit([&](MTransformationMatrix& m) { m.setScalePivotTranslation(vec, MSpace::kTransform); });
}

MPoint MFnTransform::rotatePivot(MSpace::Space space, MStatus* s) const
{
    return pivotIn(*this, transformation(s).rotatePivot(MSpace::kTransform), space, s);
}

MStatus MFnTransform::setRotatePivot(const MPoint& point, MSpace::Space space, bool balance)
{
    MPoint        p = point;
    const MStatus status = pivotFrom(*this, p, space);
    return status ? edit([&](MTransformationMatrix& m) { m.setRotatePivot(p, MSpace::kTransform, balance); }) : status;
}

MVector MFnTransform::rotatePivotTranslation(MSpace::Space, MStatus* s) const { return transformation(s).rotatePivotTranslation(MSpace::kTransform); }
MStatus MFnTransform::setRotatePivotTranslation(const MVector& vec, MSpace::Space)
{
    return edit([&](MTransformationMatrix& m) { m.setRotatePivotTranslation(vec, MSpace::kTransform); });
}
