#include "view/frame.h"

#include <maya/MHWGeometryUtilities.h>

namespace mirk::view {

Viewport& activeViewport()
{
    static Viewport viewport;
    return viewport;
}

InCallback::InCallback(const FrameData& frame)
{
    activeViewport().frame = frame;
    activeViewport().inCallback = true;
}

InCallback::~InCallback()
{
    activeViewport().inCallback = false;
    activeViewport().legacyDepth = 0;
}

Color statusColor(int displayStatus)
{
    using namespace MHWRender;
    switch (displayStatus) {
        case kLead:
        case kActiveComponent: return {0.263f, 1.f, 0.639f, 1.f};
        case kActive:          return {1.f, 1.f, 1.f, 1.f};
        case kActiveAffected:  return {0.783f, 0.f, 0.783f, 1.f};
        case kHilite:          return {0.f, 0.757f, 1.f, 1.f};
        case kTemplate:
        case kIntermediateObject: return {0.462f, 0.462f, 0.462f, 1.f};
        case kActiveTemplate:  return {1.f, 0.469f, 0.469f, 1.f};
        case kLive:            return {0.f, 0.277f, 0.100f, 1.f};
        default:               return {0.f, 0.016f, 0.376f, 1.f};
    }
}

}  // namespace mirk::view
