// Runs a plug-in's draw override for one object, frame after frame.
#pragma once
#include <memory>

#include <maya/MPxDrawOverride.h>
#include <maya/MUserData.h>

#include "view/draw_list.h"
#include "view/frame.h"

namespace mirk::view {

/// An object's draw override with the data it keeps. One per path that shows the object; lives as long as the override's
/// registration and the node.
class DrawnObject
{
public:
    explicit DrawnObject(std::unique_ptr<MHWRender::MPxDrawOverride> drawOverride) : override_(std::move(drawOverride)) {}

    /// Prepares the object and adds what it draws: drawables as items under `id`, the OpenGL callback as a callback. The
    /// list must be drawn before the next call and before this object goes.
    void draw(const MDagPath& object, const MDagPath& camera, const FrameData& frame, uint32_t id, DrawList& list);

    const MHWRender::MPxDrawOverride& drawOverride() const { return *override_; }

private:
    std::unique_ptr<MHWRender::MPxDrawOverride> override_;
    std::shared_ptr<MUserData>                  kept_;
};

}  // namespace mirk::view
