#pragma once
#include <maya/MObject.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

class MDagPath;
class MPoint;
class MVector;
namespace mirk {
class PointWalk;
}

/// Walks the CVs of a curve, or those of a component on it. The overlapping CVs of a periodic curve come up
/// too; writing one writes the one it repeats.
class MItCurveCV
{
public:
    explicit MItCurveCV(MObject& curve, MStatus* ReturnStatus = nullptr);
    explicit MItCurveCV(MObject& curve, MObject& component, MStatus* ReturnStatus = nullptr);
    explicit MItCurveCV(const MDagPath& curve, MObject& component = MObject::kNullObj, MStatus* ReturnStatus = nullptr);
    MItCurveCV(const MItCurveCV&) = delete;
    MItCurveCV& operator=(const MItCurveCV&) = delete;
    ~MItCurveCV();

    MStatus reset();
    MStatus next();
    bool    isDone(MStatus* ReturnStatus = nullptr) const;
    int     index(MStatus* ReturnStatus = nullptr) const;
    MPoint  position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus translateBy(const MVector& translation, MSpace::Space space = MSpace::kObject);
    /// The CV as a component.
    MObject currentItem(MStatus* ReturnStatus = nullptr) const;
    MStatus updateCurve();

private:
    mirk::PointWalk* walk_ = nullptr;
};
