// Pictures of the scene: what its objects look like, and the camera that sees them.
#pragma once
#include <vector>

#include <maya/MFrameContext.h>

#include "dag/dag.h"
#include "view/renderer.h"

namespace mirk::view {

struct SceneDrawOptions
{
    Camera   camera;
    Path     cameraPath;   ///< handed to draw overrides; empty if the camera is no node
    unsigned displayStyle = MHWRender::MFrameContext::kGouraudShaded;
    bool     wireOnShaded = false;
    bool     grid = true;
    bool     locators = true;    ///< locators are shown, and what is drawn like them
    bool     selection = true;   ///< selected objects show their status colour
    int      samples = 4;
};

struct SceneDraw
{
    DrawList          list;
    std::vector<Path> objects;   ///< the object with pick id i stands at i - 1
};

/// All visible objects, evaluated as far as drawing needs: meshes, curves, surfaces, locators, joints, cameras
/// but the one that is looked through, fields, emitters, and whatever has a draw
/// override or draws itself. The result must be drawn before the scene changes and before the next call.
SceneDraw collectScene(const SceneDrawOptions& options);

/// Collects and draws. Throws Error.
Image renderScene(const SceneDrawOptions& options);

/// Objects in a rectangle of pixels from the lower left, nearest first. Throws Error.
std::vector<Path> pickScene(const SceneDrawOptions& options, int x, int y, int width, int height);

/// The camera of a camera shape, or of the shape below a transform. False and nothing written if there is none.
bool cameraOf(const Path& path, int width, int height, Camera& camera, Path& shape);

}  // namespace mirk::view
