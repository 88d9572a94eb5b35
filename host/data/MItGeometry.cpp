#include <maya/MItGeometry.h>

#include "data/fn_base.h"
#include "data/point_walk.h"

using namespace mirk;

MItGeometry::MItGeometry(const MObject& object, MStatus* s) : walk_(new PointWalk)
{
    report(s, walk_->open(object, MObject()).statusCode());
}
MItGeometry::MItGeometry(const MObject& object, MObject& component, MStatus* s) : walk_(new PointWalk)
{
    report(s, walk_->open(object, component).statusCode());
}
MItGeometry::MItGeometry(const MItGeometry& other) : walk_(new PointWalk(*other.walk_)) {}
MItGeometry& MItGeometry::operator=(const MItGeometry& other)
{
    *walk_ = *other.walk_;
    return *this;
}
MItGeometry::~MItGeometry() { delete walk_; }

MStatus MItGeometry::reset()
{
    walk_->rewind();
    return MS::kSuccess;
}
MStatus MItGeometry::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}
bool MItGeometry::isDone(MStatus* s) const { return reported(s, MS::kSuccess, walk_->done()); }
int  MItGeometry::count(MStatus* s) const { return reported(s, MS::kSuccess, walk_->count()); }
int  MItGeometry::exactCount(MStatus* s) const { return count(s); }
int  MItGeometry::index(MStatus* s) const { return reported(s, walk_->done() ? MS::kFailure : MS::kSuccess, walk_->index()); }
int  MItGeometry::positionIndex(MStatus* s) const
{
    return reported(s, walk_->done() ? MS::kFailure : MS::kSuccess, walk_->done() ? -1 : walk_->place());
}
MPoint MItGeometry::position(MSpace::Space space, MStatus* s) const
{
    report(s, walk_->done() ? MS::kFailure : MS::kSuccess);
    return walk_->position(space);
}
MStatus MItGeometry::setPosition(const MPoint& point, MSpace::Space space) { return walk_->setPosition(point, space); }
MStatus MItGeometry::allPositions(MPointArray& points, MSpace::Space space) const { return walk_->allPositions(points, space); }
MStatus MItGeometry::setAllPositions(const MPointArray& points, MSpace::Space space) { return walk_->setAllPositions(points, space); }
MVector MItGeometry::normal(MSpace::Space space, MStatus* s) const { return walk_->normal(space, s); }
MObject MItGeometry::currentItem(MStatus* s) const
{
    report(s, walk_->done() ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}
MObject MItGeometry::component(MStatus* s) const { return reported(s, MS::kSuccess, walk_->component()); }
