#pragma once
#include <memory>

#include <maya/MFnDagNode.h>
#include <maya/MSpace.h>

class MDoubleArray;
class MPoint;
class MPointArray;
class MVector;
namespace mirk {
struct WorldMatrix;
}

#define kMFnNurbsEpsilon 1.0e-3

/// Function set on NURBS curves: on curve data, on a curve shape, or on a DAG path to one, which alone knows world space
/// for a shape. A curve has `CVs + degree - 1` knots; the last `degree` CVs of a periodic one repeat the first.
class MFnNurbsCurve : public MFnDagNode
{
public:
    enum Form { kInvalid, kOpen, kClosed, kPeriodic, kLast };

    MFnNurbsCurve() = default;
    explicit MFnNurbsCurve(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnNurbsCurve(const MDagPath& path, MStatus* ReturnStatus = nullptr);
    ~MFnNurbsCurve() override;
    MFn::Type type() const override;
    MStatus setObject(MObject& object) override;
    MStatus setObject(const MObject& object) override;
    MStatus setObject(const MDagPath& path) override;

    /// Makes a curve in a data object, which is then returned, or as a shape under a transform. Without either it makes
    /// and returns a new transform with the shape; the function set works on the shape then.
    /// Fails without making anything if counts, degree, form or knots do not fit together.
    MObject create(const MPointArray& controlVertices, const MDoubleArray& knotSequences, unsigned int degree, Form form,
                   bool create2D, bool createRational, MObject parentOrOwner = MObject::kNullObj,
                   MStatus* ReturnStatus = nullptr);
    /// The curve through the points; by chord length unless `uniformParam`.
    MObject createWithEditPoints(const MPointArray& editPoints, unsigned int degree, Form form, bool create2D,
                                 bool createRational, bool uniformParam, MObject parentOrOwner = MObject::kNullObj,
                                 MStatus* ReturnStatus = nullptr);
    MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    Form    form(MStatus* ReturnStatus = nullptr) const;
    int     degree(MStatus* ReturnStatus = nullptr) const;
    int     numCVs(MStatus* ReturnStatus = nullptr) const;
    int     numSpans(MStatus* ReturnStatus = nullptr) const;
    int     numKnots(MStatus* ReturnStatus = nullptr) const;
    MStatus getKnotDomain(double& start, double& end) const;

    MStatus getCV(unsigned int index, MPoint& point, MSpace::Space space = MSpace::kObject) const;
    MStatus setCV(unsigned int index, const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus getCVs(MPointArray& points, MSpace::Space space = MSpace::kObject) const;
    /// As many points as the curve has CVs.
    MStatus setCVs(const MPointArray& points, MSpace::Space space = MSpace::kObject);
    MObject cv(unsigned int index, MStatus* ReturnStatus = nullptr) const;
    MObject cvs(unsigned int startIndex, unsigned int endIndex, MStatus* ReturnStatus = nullptr) const;
    double  knot(unsigned int index, MStatus* ReturnStatus = nullptr) const;
    MStatus getKnots(MDoubleArray& knots) const;
    MStatus setKnot(unsigned int index, double param);
    MStatus setKnots(const MDoubleArray& knots, unsigned int startIndex, unsigned int endIndex);
    MStatus reverse();
    MStatus updateCurve();

    bool    isParamOnCurve(double param, MStatus* ReturnStatus = nullptr) const;
    bool    isPointOnCurve(const MPoint& point, double tolerance = kMFnNurbsEpsilon,
                           MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    bool    isPlanar(MVector* planeNormal = nullptr, MStatus* ReturnStatus = nullptr) const;
    MStatus getPointAtParam(double param, MPoint& point, MSpace::Space space = MSpace::kObject) const;
    /// kInvalidParameter if the point is not on the curve.
    MStatus getParamAtPoint(const MPoint& point, double& param, MSpace::Space space = MSpace::kObject) const;
    MStatus getParamAtPoint(const MPoint& point, double& param, double tolerance,
                            MSpace::Space space = MSpace::kObject) const;
    /// Unit vectors. On a straight curve the normal is some direction at a right angle.
    MVector normal(double param, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MVector tangent(double param, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MStatus getDerivativesAtParm(double param, MPoint& position, MVector& dU, MSpace::Space space,
                                 MVector* dUU = nullptr) const;

    MPoint  closestPoint(const MPoint& toThisPoint, double* param = nullptr, double tolerance = kMFnNurbsEpsilon,
                         MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    double  distanceToPoint(const MPoint& point, MSpace::Space space = MSpace::kObject,
                            MStatus* ReturnStatus = nullptr) const;
    double  length(double tolerance = kMFnNurbsEpsilon, MStatus* ReturnStatus = nullptr) const;
    double  findLengthFromParam(double param, MStatus* ReturnStatus = nullptr) const;
    /// Clamped to the curve's ends.
    double  findParamFromLength(double partLength, MStatus* ReturnStatus = nullptr) const;

protected:
    bool acceptsObject(const MObject& object) const override;

private:
    std::shared_ptr<const mirk::WorldMatrix> world_;   // of the path, if there is one
};
