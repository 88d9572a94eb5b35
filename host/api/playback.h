// The playback range; the current time itself is the value of time1.
#pragma once

namespace mirk::playback {

/// In seconds.
struct Range
{
    double min, max;             ///< of the playback
    double start, end;           ///< of the animation
    double speed = 1;            ///< 0: every frame
    double by = 1;               ///< frames a step
};

Range& range();
/// Frames 1 to 120 of 1 to 200, as in a new scene.
void   reset();

/// Seconds; 0 if there is no time node.
double currentTime();
/// Undoable.
void   setCurrentTime(double seconds);

}  // namespace mirk::playback
