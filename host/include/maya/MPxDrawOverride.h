#pragma once
#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MViewport2Renderer.h>

class MDagPath;
class MUserData;

namespace mirk::view { class DrawnObject; }

namespace MHWRender {

class MDrawContext;
class MFrameContext;
class MUIDrawManager;

/// Base of classes that draw a DAG object in the viewport. In a frame prepareForDraw comes first, the only one that may
/// read the scene; then addUIDrawables, then the callback with an OpenGL context current.
class MPxDrawOverride
{
public:
    using GeometryDrawOverrideCb = void (*)(const MDrawContext& context, const MUserData* data);

    /// `callback` may be null. Pictures are made on request and each prepares the override anew, always dirty or not.
    MPxDrawOverride(const MObject& obj, GeometryDrawOverrideCb callback, bool isAlwaysDirty = true);
    virtual ~MPxDrawOverride();
    MPxDrawOverride(const MPxDrawOverride&) = delete;
    MPxDrawOverride& operator=(const MPxDrawOverride&) = delete;

    virtual DrawAPI      supportedDrawAPIs() const;   ///< default: kOpenGL
    virtual bool         isBounded(const MDagPath& objPath, const MDagPath& cameraPath) const;   ///< default: true
    /// In object space. Default: the bounding box of the object.
    virtual MBoundingBox boundingBox(const MDagPath& objPath, const MDagPath& cameraPath) const;
    virtual bool         disableInternalBoundingBoxDraw() const;   ///< default: false
    /// Object to world. Default: the inclusive matrix of the path.
    virtual MMatrix      transform(const MDagPath& objPath, const MDagPath& cameraPath) const;
    virtual bool         isTransparent() const;             ///< default: false
    virtual bool         excludedFromPostEffects() const;   ///< default: true

    /// `oldData` is what the last call gave, if it was kept. Null is handed on as it is.
    virtual MUserData* prepareForDraw(const MDagPath& objPath, const MDagPath& cameraPath,
                                      const MFrameContext& frameContext, MUserData* oldData) = 0;

    virtual bool hasUIDrawables() const;   ///< default: false
    virtual void addUIDrawables(const MDagPath& objPath, MUIDrawManager& drawManager,
                                const MFrameContext& frameContext, const MUserData* data);

private:
    friend class mirk::view::DrawnObject;

    GeometryDrawOverrideCb callback_;
};

}  // namespace MHWRender
