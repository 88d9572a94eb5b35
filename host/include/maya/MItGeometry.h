#pragma once
#include <maya/MObject.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

class MDagPath;
class MDataHandle;
class MPoint;
class MPointArray;
class MVector;
namespace mirk {
class PointWalk;
}

/// Walks the points of any geometry: vertices of a mesh, CVs of a curve, CVs of a surface with V running fastest. Built
/// with a group id it walks the members of that object group only, and nothing if there is no such group. The overlapping
/// CVs of periodic curves and surfaces are walked too; writing one writes those it repeats.
class MItGeometry
{
public:
    MItGeometry(MDataHandle& dataHandle, unsigned int groupId, bool readOnly = true, MStatus* ReturnStatus = nullptr);
    explicit MItGeometry(MDataHandle& dataHandle, bool readOnly = true, MStatus* ReturnStatus = nullptr);
    explicit MItGeometry(const MDagPath& dagPath, MStatus* ReturnStatus = nullptr);
    MItGeometry(const MDagPath& dagPath, MObject& component, MStatus* ReturnStatus = nullptr);
    /// On a shape or on geometry data.
    explicit MItGeometry(const MObject& object, MStatus* ReturnStatus = nullptr);
    MItGeometry(const MObject& object, MObject& component, MStatus* ReturnStatus = nullptr);
    MItGeometry(const MItGeometry& other);
    MItGeometry& operator=(const MItGeometry& other);
    virtual ~MItGeometry();

    MStatus reset();
    MStatus next();
    bool    isDone(MStatus* ReturnStatus = nullptr) const;
    int     count(MStatus* ReturnStatus = nullptr) const;
    int     exactCount(MStatus* ReturnStatus = nullptr) const;
    /// Of the point in the whole geometry.
    int     index(MStatus* ReturnStatus = nullptr) const;
    /// Of the point among those walked.
    int     positionIndex(MStatus* ReturnStatus = nullptr) const;
    MPoint  position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus allPositions(MPointArray& points, MSpace::Space space = MSpace::kObject) const;
    /// As many points as are walked.
    MStatus setAllPositions(const MPointArray& points, MSpace::Space space = MSpace::kObject);
    /// Of a mesh vertex; a zero vector and kFailure on other geometry.
    MVector normal(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    /// The current point as a component.
    MObject currentItem(MStatus* ReturnStatus = nullptr) const;
    MObject component(MStatus* ReturnStatus = nullptr) const;

private:
    mirk::PointWalk* walk_ = nullptr;
};
