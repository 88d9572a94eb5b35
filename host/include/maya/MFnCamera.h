#pragma once
#include <maya/MFloatMatrix.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MVector.h>

/// Function set for cameras. Angles in radians, focal length in millimetres, film sizes in inches.
class MFnCamera : public MFnDagNode
{
public:
    MFnCamera() = default;
    explicit MFnCamera(const MObject& object, MStatus* ReturnStatus = nullptr);
    explicit MFnCamera(const MDagPath& object, MStatus* ReturnStatus = nullptr);
    MFn::Type type() const override;
    using MFnDagNode::create;
    MObject create(MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = nullptr);

    /// Without a path world space is that of the first instance.
    MPoint  eyePoint(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MVector viewDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MVector upDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MVector rightDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MPoint  centerOfInterestPoint(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    double  centerOfInterest(MStatus* ReturnStatus = nullptr) const;
    MStatus setCenterOfInterest(double dist);

    double  horizontalFieldOfView(MStatus* ReturnStatus = nullptr) const;
    MStatus setHorizontalFieldOfView(double fov);
    double  verticalFieldOfView(MStatus* ReturnStatus = nullptr) const;
    MStatus setVerticalFieldOfView(double fov);
    double  aspectRatio(MStatus* ReturnStatus = nullptr) const;
    double  focalLength(MStatus* ReturnStatus = nullptr) const;
    MStatus setFocalLength(double focalLength);
    double  horizontalFilmAperture(MStatus* ReturnStatus = nullptr) const;
    MStatus setHorizontalFilmAperture(double hFilmAperture);
    double  verticalFilmAperture(MStatus* ReturnStatus = nullptr) const;
    MStatus setVerticalFilmAperture(double vFilmAperture);
    double  nearClippingPlane(MStatus* ReturnStatus = nullptr) const;
    MStatus setNearClippingPlane(double dNear);
    double  farClippingPlane(MStatus* ReturnStatus = nullptr) const;
    MStatus setFarClippingPlane(double dFar);
    bool    isOrtho(MStatus* ReturnStatus = nullptr) const;
    MStatus setIsOrtho(bool orthoState);
    double  orthoWidth(MStatus* ReturnStatus = nullptr) const;
    MStatus setOrthoWidth(double orthoWidth);
    MFloatMatrix projectionMatrix(MStatus* ReturnStatus = nullptr) const;

private:
    double  number(const char* attribute, MStatus* ReturnStatus) const;
    MStatus setNumber(const char* attribute, double value);
    MVector direction(const MVector& local, MSpace::Space space, MStatus* ReturnStatus) const;
};
