// The frame being drawn, and what the viewport asks the scene about objects.
#pragma once
#include <functional>
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

/// Answers of the scene about an object, set once by the code that knows the scene. What is not set has a neutral
/// answer: dormant, the dormant colour, the identity, an empty box.
struct SceneHooks
{
    std::function<int(const MDagPath&)>    displayStatus;     ///< as MHWRender::DisplayStatus
    std::function<Color(const MDagPath&)>  wireframeColor;
    std::function<Matrix(const MDagPath&)> inclusiveMatrix;
    /// Object space, minimum then maximum; false if the object has no extent.
    std::function<bool(const MDagPath&, double box[6])> boundingBox;
};
SceneHooks& sceneHooks();

/// The wireframe colour that a display status has where the object asks for none of its own.
Color statusColor(int displayStatus);

}  // namespace mirk::view
