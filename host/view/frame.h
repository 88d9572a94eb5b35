// The frame being drawn.
#pragma once
#include <memory>

#include "view/draw_list.h"

class MDagPath;

namespace mirk::view {

/// What MFrameContext and MDrawContext read.
struct FrameData
{
    Camera                          camera;
    std::shared_ptr<const MDagPath> cameraPath;         ///< may be null: a camera that is no node
    unsigned                        displayStyle = 1;   ///< MFrameContext::DisplayStyle values, or-ed
    Matrix                          world = kIdentity;  ///< of the object being drawn
};

/// The viewport that is being drawn or was drawn last: what M3dView reads.
struct Viewport
{
    FrameData frame;
    int       legacyDepth = 0;       ///< of nested M3dView::beginGL
    bool      inCallback = false;    ///< an OpenGL context is current and waits for calls
};
Viewport& activeViewport();

/// While it lives, the viewport is inside an object's OpenGL callback.
class InCallback
{
public:
    explicit InCallback(const FrameData& frame);
    ~InCallback();
    InCallback(const InCallback&) = delete;
    InCallback& operator=(const InCallback&) = delete;
};

/// The wireframe colour that a display status has where the object asks for none of its own.
Color statusColor(int displayStatus);

}  // namespace mirk::view
