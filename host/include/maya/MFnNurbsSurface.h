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

/// Function set on NURBS surfaces: on surface data, on a surface shape, or on a DAG path to one. CVs are stored with V
/// running fastest. Each direction has `CVs + degree - 1` knots; a periodic one repeats its first `degree` CVs at the end.
class MFnNurbsSurface : public MFnDagNode
{
public:
    enum Form { kInvalid, kOpen, kClosed, kPeriodic, kLast };

    MFnNurbsSurface() = default;
    explicit MFnNurbsSurface(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnNurbsSurface(const MDagPath& path, MStatus* ReturnStatus = nullptr);
    ~MFnNurbsSurface() override;
    MFn::Type type() const override;
    MStatus setObject(MObject& object) override;
    MStatus setObject(const MObject& object) override;
    MStatus setObject(const MDagPath& path) override;

    /// Makes a surface in a data object or as a shape under a transform.
    /// Fails without making anything if counts, degrees, forms or knots do not fit together.
    MObject create(const MPointArray& controlVertices, const MDoubleArray& uKnotSequences,
                   const MDoubleArray& vKnotSequences, unsigned int degreeInU, unsigned int degreeInV, Form formU,
                   Form formV, bool createRational, MObject parentOrOwner = MObject::kNullObj,
                   MStatus* ReturnStatus = nullptr);
    MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    Form    formInU(MStatus* ReturnStatus = nullptr) const;
    Form    formInV(MStatus* ReturnStatus = nullptr) const;
    int     degreeU(MStatus* ReturnStatus = nullptr) const;
    int     degreeV(MStatus* ReturnStatus = nullptr) const;
    int     numCVsInU(MStatus* ReturnStatus = nullptr) const;
    int     numCVsInV(MStatus* ReturnStatus = nullptr) const;
    int     numSpansInU(MStatus* ReturnStatus = nullptr) const;
    int     numSpansInV(MStatus* ReturnStatus = nullptr) const;
    int     numKnotsInU(MStatus* ReturnStatus = nullptr) const;
    int     numKnotsInV(MStatus* ReturnStatus = nullptr) const;
    MStatus getKnotDomain(double& startU, double& endU, double& startV, double& endV) const;
    double  knotInU(unsigned int index, MStatus* ReturnStatus = nullptr) const;
    double  knotInV(unsigned int index, MStatus* ReturnStatus = nullptr) const;
    MStatus getKnotsInU(MDoubleArray& knots) const;
    MStatus getKnotsInV(MDoubleArray& knots) const;

    MStatus getCV(unsigned int indexU, unsigned int indexV, MPoint& point, MSpace::Space space = MSpace::kObject) const;
    MStatus setCV(unsigned int indexU, unsigned int indexV, const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus getCVs(MPointArray& points, MSpace::Space space = MSpace::kObject) const;
    /// As many points as the surface has CVs.
    MStatus setCVs(const MPointArray& points, MSpace::Space space = MSpace::kObject);
    MObject cv(unsigned int indexU, unsigned int indexV, MStatus* ReturnStatus = nullptr) const;
    MStatus updateSurface();

    bool    isParamOnSurface(double u, double v, MStatus* ReturnStatus = nullptr) const;
    MStatus getPointAtParam(double u, double v, MPoint& point, MSpace::Space space = MSpace::kObject) const;
    MVector normal(double u, double v, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    /// Unit vectors.
    MStatus getTangents(double u, double v, MVector& tangentU, MVector& tangentV,
                        MSpace::Space space = MSpace::kObject) const;
    MStatus getDerivativesAtParam(double u, double v, MPoint& position, MVector& dU, MVector& dV, MSpace::Space space,
                                  MVector* dUU = nullptr, MVector* dVV = nullptr, MVector* dUV = nullptr) const;
    /// Surfaces have no trims here, so `ignoreTrimBoundaries` changes nothing.
    MPoint  closestPoint(const MPoint& toThisPoint, double* paramU = nullptr, double* paramV = nullptr,
                         bool ignoreTrimBoundaries = false, double tolerance = 1.0e-3,
                         MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    double  distanceToPoint(const MPoint& point, MSpace::Space space = MSpace::kObject,
                            MStatus* ReturnStatus = nullptr) const;
    /// kInvalidParameter if the point is not on the surface.
    MStatus getParamAtPoint(const MPoint& point, double& paramU, double& paramV, MSpace::Space space = MSpace::kObject,
                            double tolerance = 1.0e-3) const;
    double  area(MSpace::Space space = MSpace::kObject, double tolerance = 1.0e-3, MStatus* ReturnStatus = nullptr) const;

protected:
    bool acceptsObject(const MObject& object) const override;

private:
    std::shared_ptr<const mirk::WorldMatrix> world_;   // of the path, if there is one
};
