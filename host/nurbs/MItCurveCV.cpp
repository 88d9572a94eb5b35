#include <maya/MItCurveCV.h>

#include "data/fn_base.h"
#include "data/point_walk.h"

using namespace mirk;

namespace {

MStatus openCurveWalk(PointWalk& walk, const MObject& curve, const MObject& component)
{
    return isCurve(curve) ? walk.open(curve, component) : MStatus(MS::kInvalidParameter);
}

}  // namespace

MItCurveCV::MItCurveCV(MObject& curve, MStatus* s) : walk_(new PointWalk)
{
    report(s, openCurveWalk(*walk_, curve, MObject()).statusCode());
}
MItCurveCV::MItCurveCV(MObject& curve, MObject& component, MStatus* s) : walk_(new PointWalk)
{
    report(s, openCurveWalk(*walk_, curve, component).statusCode());
}
MItCurveCV::~MItCurveCV() { delete walk_; }

MStatus MItCurveCV::reset()
{
    walk_->rewind();
    return MS::kSuccess;
}
MStatus MItCurveCV::next()
{
    if (walk_->done())
        return MS::kFailure;
    walk_->step();
    return MS::kSuccess;
}
bool   MItCurveCV::isDone(MStatus* s) const { return reported(s, MS::kSuccess, walk_->done()); }
int    MItCurveCV::index(MStatus* s) const { return reported(s, walk_->done() ? MS::kFailure : MS::kSuccess, walk_->index()); }
MPoint MItCurveCV::position(MSpace::Space space, MStatus* s) const
{
    report(s, walk_->done() ? MS::kFailure : MS::kSuccess);
    return walk_->position(space);
}
MStatus MItCurveCV::setPosition(const MPoint& point, MSpace::Space space) { return walk_->setPosition(point, space); }
MStatus MItCurveCV::translateBy(const MVector& by, MSpace::Space space) { return walk_->translate(by, space); }
MObject MItCurveCV::currentItem(MStatus* s) const
{
    report(s, walk_->done() ? MS::kFailure : MS::kSuccess);
    return walk_->item();
}
MStatus MItCurveCV::updateCurve()
{
    walk_->changed();
    return MS::kSuccess;
}
