#include <maya/MItSurfaceCV.h>

#include "data/fn_base.h"
#include "data/point_walk.h"
#include "nurbs/surface_walk.h"

using namespace mirk;

MItSurfaceCV::MItSurfaceCV(MObject& surface, bool useRows, MStatus* s) : walk_(new PointWalk), useRows_(useRows)
{
    report(s, openSurfaceWalk(*walk_, surface, MObject(), useRows).statusCode());
}
MItSurfaceCV::MItSurfaceCV(MObject& surface, MObject& component, bool useRows, MStatus* s)
    : walk_(new PointWalk), useRows_(useRows)
{
    report(s, openSurfaceWalk(*walk_, surface, component, useRows).statusCode());
}
MItSurfaceCV::~MItSurfaceCV() { delete walk_; }

MStatus MItSurfaceCV::reset()
{
    walk_->rewind();
    row_ = -1;
    return MS::kSuccess;
}

int MItSurfaceCV::rowOfCurrent() const
{
    const int i = walk_->index();
    return i < 0 ? -1 : useRows_ ? i / walk_->columns() : i % walk_->columns();
}

// The end of a row holds until nextRow(): the walk stands on the next row's first CV by then.
MStatus MItSurfaceCV::next()
{
    if (isRowDone())
        return MS::kFailure;
    row_ = rowOfCurrent();
    walk_->step();
    return MS::kSuccess;
}
MStatus MItSurfaceCV::nextRow()
{
    if (walk_->done())
        return MS::kFailure;
    const int row = row_ >= 0 ? row_ : rowOfCurrent();
    while (!walk_->done() && rowOfCurrent() == row)
        walk_->step();
    row_ = -1;
    return MS::kSuccess;
}
bool MItSurfaceCV::isRowDone(MStatus* s) const
{
    return reported(s, MS::kSuccess, walk_->done() || (row_ >= 0 && rowOfCurrent() != row_));
}
bool    MItSurfaceCV::isDone(MStatus* s) const { return reported(s, MS::kSuccess, walk_->done()); }
MStatus MItSurfaceCV::getIndex(int& indexU, int& indexV) const
{
    const int i = index();
    if (i < 0)
        return MS::kFailure;
    indexU = i / walk_->columns();
    indexV = i % walk_->columns();
    return MS::kSuccess;
}
int MItSurfaceCV::index(MStatus* s) const
{
    const int i = isRowDone() ? -1 : walk_->index();
    return reported(s, i < 0 ? MS::kFailure : MS::kSuccess, i);
}
MPoint MItSurfaceCV::position(MSpace::Space space, MStatus* s) const
{
    const bool here = !isRowDone();
    report(s, here ? MS::kSuccess : MS::kFailure);
    return here ? walk_->position(space) : MPoint();
}
MStatus MItSurfaceCV::setPosition(const MPoint& point, MSpace::Space space)
{
    return isRowDone() ? MStatus(MS::kFailure) : walk_->setPosition(point, space);
}
MStatus MItSurfaceCV::translateBy(const MVector& by, MSpace::Space space)
{
    return isRowDone() ? MStatus(MS::kFailure) : walk_->translate(by, space);
}
MObject MItSurfaceCV::currentItem(MStatus* s) const
{
    const bool here = !isRowDone();
    report(s, here ? MS::kSuccess : MS::kFailure);
    return here ? walk_->item() : MObject();
}
MStatus MItSurfaceCV::updateSurface()
{
    walk_->changed();
    return MS::kSuccess;
}
