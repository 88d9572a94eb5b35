#include <maya/MPxDrawOverride.h>

#include <maya/MDagPath.h>
#include <maya/MFnDagNode.h>
#include <maya/MUserData.h>

#include "view/renderer.h"

MUserData::~MUserData() = default;

namespace MHWRender {

MPxDrawOverride::MPxDrawOverride(const MObject&, GeometryDrawOverrideCb callback, bool isAlwaysDirty)
    : callback_(callback), alwaysDirty_(isAlwaysDirty)
{
}

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
    return MFnDagNode(objPath).boundingBox();
}

MMatrix MPxDrawOverride::transform(const MDagPath& objPath, const MDagPath&) const { return objPath.inclusiveMatrix(); }

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
