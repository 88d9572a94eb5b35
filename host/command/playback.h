// The playback range and how it plays; times in seconds.
#pragma once
#include <string>

namespace mirk::command {

struct Playback
{
    double      min = 1 / 24.0, max = 120 / 24.0, start = 1 / 24.0, end = 200 / 24.0;
    double      speed = 0, by = 1, maxSpeed = 0;
    std::string loop = "continuous", view = "active";
};

Playback& playback();

}  // namespace mirk::command
