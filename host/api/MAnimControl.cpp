#include <maya/MAnimControl.h>

#include "api/playback.h"
#include "graph/context.h"
#include "graph/edit.h"
#include "graph/scene.h"

namespace mirk::playback {

Range& range()
{
    static Range r = [] {
        const double frame = MTime(1, MTime::uiUnit()).as(MTime::kSeconds);
        return Range{frame, 120 * frame, frame, 200 * frame};
    }();
    return r;
}

void reset()
{
    const double frame = MTime(1, MTime::uiUnit()).as(MTime::kSeconds);
    range() = {frame, 120 * frame, frame, 200 * frame};
}

namespace {

Cell* timeCell()
{
    Node* node = scene().first("time1");
    return node ? node->cell(node->type->find("outTime")) : nullptr;
}

}  // namespace

double currentTime()
{
    const eval::When now = eval::now();
    Cell* cell = timeCell();
    return !now.normal ? now.seconds : cell ? cell->number() : 0;
}

void setCurrentTime(double seconds)
{
    const eval::At normal({});   // the scene's time, whatever time is being read
    if (Cell* cell = timeCell())
        edit::setNumber(*cell, seconds);
}

}  // namespace mirk::playback

using namespace mirk;

namespace {

MTime   toUi(double seconds) { return MTime(MTime(seconds, MTime::kSeconds).as(MTime::uiUnit()), MTime::uiUnit()); }
double  seconds(const MTime& t) { return t.as(MTime::kSeconds); }
MStatus set(double& place, const MTime& t)
{
    place = seconds(t);
    return MS::kSuccess;
}

}  // namespace

MTime   MAnimControl::currentTime() { return toUi(playback::currentTime()); }
MStatus MAnimControl::setCurrentTime(const MTime& newTime)
{
    playback::setCurrentTime(seconds(newTime));
    return MS::kSuccess;
}
MTime   MAnimControl::minTime() { return toUi(playback::range().min); }
MTime   MAnimControl::maxTime() { return toUi(playback::range().max); }
MStatus MAnimControl::setMinTime(MTime t) { return set(playback::range().min, t); }
MStatus MAnimControl::setMaxTime(MTime t) { return set(playback::range().max, t); }
MStatus MAnimControl::setMinMaxTime(MTime min, MTime max)
{
    if (max < min)
        return MS::kInvalidParameter;
    set(playback::range().min, min);
    return set(playback::range().max, max);
}
MTime   MAnimControl::animationStartTime() { return toUi(playback::range().start); }
MTime   MAnimControl::animationEndTime() { return toUi(playback::range().end); }
MStatus MAnimControl::setAnimationStartTime(MTime t) { return set(playback::range().start, t); }
MStatus MAnimControl::setAnimationEndTime(MTime t) { return set(playback::range().end, t); }
MStatus MAnimControl::setAnimationStartEndTime(MTime start, MTime end)
{
    if (end < start)
        return MS::kInvalidParameter;
    set(playback::range().start, start);
    return set(playback::range().end, end);
}
double  MAnimControl::playbackSpeed() { return playback::range().speed; }
MStatus MAnimControl::setPlaybackSpeed(double speed)
{
    if (!(speed >= 0))
        return MS::kInvalidParameter;
    playback::range().speed = speed;
    return MS::kSuccess;
}
double  MAnimControl::playbackBy() { return playback::range().by; }
MStatus MAnimControl::setPlaybackBy(double by)
{
    if (!(by > 0))
        return MS::kInvalidParameter;
    playback::range().by = by;
    return MS::kSuccess;
}
bool    MAnimControl::isPlaying() { return false; }
