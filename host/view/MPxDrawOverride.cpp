#include <maya/MPxDrawOverride.h>

#include <maya/MDagPath.h>
#include <maya/MUserData.h>

#include "dag/dag.h"
#include "dag/path_access.h"
#include "nodes/dag_attrs.h"
#include "view/renderer.h"

MUserData::~MUserData() = default;

namespace MHWRender {

MPxDrawOverride::MPxDrawOverride(const MObject&, GeometryDrawOverrideCb callback, bool) : callback_(callback) {}

MPxDrawOverride::~MPxDrawOverride() = default;

DrawAPI MPxDrawOverride::supportedDrawAPIs() const { return kOpenGL; }
bool    MPxDrawOverride::isBounded(const MDagPath&, const MDagPath&) const { return true; }
bool    MPxDrawOverride::disableInternalBoundingBoxDraw() const { return false; }
bool    MPxDrawOverride::isTransparent() const { return false; }
bool    MPxDrawOverride::excludedFromPostEffects() const { return true; }
bool    MPxDrawOverride::hasUIDrawables() const { return false; }
void    MPxDrawOverride::addUIDrawables(const MDagPath&, MUIDrawManager&, const MFrameContext&, const MUserData*) {}

MBoundingBox MPxDrawOverride::boundingBox(const MDagPath& objPath, const MDagPath&) const
{
    mirk::Node* node = mirk::PathAccess::unwrap(objPath).node();
    double b[6];
    if (!node || !mirk::nodes::nodeBox(*node, b))
        return MBoundingBox();
    return MBoundingBox(MPoint(b[0], b[1], b[2]), MPoint(b[3], b[4], b[5]));
}

MMatrix MPxDrawOverride::transform(const MDagPath& objPath, const MDagPath&) const
{
    MMatrix matrix;
    mirk::PathAccess::inclusiveMatrix(objPath, matrix.matrix);
    return matrix;
}

MRenderer* MRenderer::theRenderer(bool initializeRenderer)
{
    static MRenderer instance;
    try {
        if (initializeRenderer)
            mirk::view::renderer();
        return mirk::view::rendererIsOpen() ? &instance : nullptr;
    } catch (const mirk::view::Error&) {
        return nullptr;
    }
}

DrawAPI MRenderer::drawAPI() const { return kOpenGL; }
bool    MRenderer::drawAPIIsOpenGL() const { return true; }

}  // namespace MHWRender
