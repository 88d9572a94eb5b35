#pragma once
#include <maya/MStatus.h>
#include <maya/MTime.h>

/// The current time and the playback range.
class MAnimControl
{
public:
    static MTime   currentTime();
    static MStatus setCurrentTime(const MTime& newTime);
    static MTime   minTime();
    static MTime   maxTime();
    static MStatus setMinTime(MTime newMinTime);
    static MStatus setMaxTime(MTime newMaxTime);
    static MStatus setMinMaxTime(MTime min, MTime max);
    static MTime   animationStartTime();
    static MTime   animationEndTime();
    static MStatus setAnimationStartTime(MTime newStartTime);
    static MStatus setAnimationEndTime(MTime newEndTime);
    static MStatus setAnimationStartEndTime(MTime start, MTime end);
    static double  playbackSpeed();
    static MStatus setPlaybackSpeed(double newPlaybackSpeed);
    static double  playbackBy();
    static MStatus setPlaybackBy(double newPlaybackBy);
    static bool    isPlaying();
};
