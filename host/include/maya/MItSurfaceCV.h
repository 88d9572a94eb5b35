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

/// Walks the CVs of a surface row by row (a row is one U index, V running along it; the other way round without
/// `useRows`), or those of a component on it. The overlapping CVs of a periodic direction come up too; writing one writes
/// those it repeats.
class MItSurfaceCV
{
public:
    explicit MItSurfaceCV(MObject& surface, bool useRows = true, MStatus* ReturnStatus = nullptr);
    explicit MItSurfaceCV(MObject& surface, MObject& component, bool useRows = true, MStatus* ReturnStatus = nullptr);
    explicit MItSurfaceCV(const MDagPath& surface, MObject& component = MObject::kNullObj, bool useRows = true,
                          MStatus* ReturnStatus = nullptr);
    MItSurfaceCV(const MItSurfaceCV&) = delete;
    MItSurfaceCV& operator=(const MItSurfaceCV&) = delete;
    ~MItSurfaceCV();

    MStatus reset();
    /// The next CV of the row.
    MStatus next();
    /// The first CV of the next row.
    MStatus nextRow();
    bool    isRowDone(MStatus* ReturnStatus = nullptr) const;
    bool    isDone(MStatus* ReturnStatus = nullptr) const;
    MStatus getIndex(int& indexU, int& indexV) const;
    /// indexU * CVs in V + indexV.
    int     index(MStatus* ReturnStatus = nullptr) const;
    MPoint  position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = nullptr) const;
    MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus translateBy(const MVector& translation, MSpace::Space space = MSpace::kObject);
    MObject currentItem(MStatus* ReturnStatus = nullptr) const;
    MStatus updateSurface();

private:
    int rowOfCurrent() const;

    mirk::PointWalk* walk_ = nullptr;
    bool          useRows_ = true;
    int           row_ = -1;   // of the CVs passed since reset or nextRow, -1 before the first
};
