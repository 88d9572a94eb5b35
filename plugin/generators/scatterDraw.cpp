// What scatter looks like: its points, in world space wherever the locator stands.
#include <maya/M3dView.h>
#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MUIDrawManager.h>

#include <algorithm>

#include "core/arrays.h"
#include "generators/scatter.h"

#include <GL/glew.h>   // what OpenGL 1 has needs no loading

/// Nothing is kept from preparing to drawing but that there is something to draw.
class ScatterData : public MUserData
{
public:
    ScatterData() : MUserData(false) {}
};

namespace {

bool hasTexture(const MObject& node, const ScatterTextureAttributes& at)
{
    MPlugArray sources;
    return MPlug(node, at.active).asBool() && MPlug(node, at.color).connectedTo(sources, true, false);
}

bool isThinned(const MObject& node)
{
    return hasTexture(node, scatter::aTexture) ||
           std::any_of(std::begin(scatter::aProjector), std::end(scatter::aProjector),
                       [&](const ScatterTextureAttributes& at) { return hasTexture(node, at); });
}

/// What a view shows of a node; nothing is evaluated for a node that is not shown.
struct Shown
{
    Shown(const MObject& node, const MDagPath& path)
    {
        size = MPlug(node, scatter::aPointSize).asInt();
        if (size <= 0 || !MPlug(node, scatter::aEnvelope).asBool() || !MPlug(node, scatter::aDisplay).asBool())
            return;
        // textures thin the points: their cloud is drawn in a tint halfway to white
        const bool tinted = isThinned(node);
        for (unsigned int i = 0; i < 3; ++i) {
            const float channel = MPlug(node, scatter::aPointColorRGB[i]).asFloat();
            color[i] = tinted ? 0.5f + 0.5f * channel : channel;
        }
        const ArrayView view = viewArray(MPlug(node, scatter::aOutPosPP).asMObject());
        if (view.kind != MFn::kVectorArrayData)
            return;
        const MMatrix toObject = path.inclusiveMatrixInverse();
        points.setLength(view.length);
        for (unsigned int i = 0; i < view.length; ++i) {
            const double* p = view.doubles + std::size_t{3} * i;
            points[i] = MPoint(p[0], p[1], p[2]) * toObject;
        }
    }

    int         size = 0;
    MColor      color;
    MPointArray points;   ///< in the object's space
};

} // namespace

void scatter::draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle, M3dView::DisplayStatus)
{
    const Shown shown(thisMObject(), path);
    if (shown.points.length() == 0 || !view.beginGL())
        return;
    glPushAttrib(GL_CURRENT_BIT | GL_POINT_BIT | GL_ENABLE_BIT);
    glDisable(GL_LIGHTING);
    glPointSize(static_cast<float>(shown.size));
    glColor3f(shown.color.r, shown.color.g, shown.color.b);
    glBegin(GL_POINTS);
    for (unsigned int i = 0; i < shown.points.length(); ++i)
        glVertex3d(shown.points[i].x, shown.points[i].y, shown.points[i].z);
    glEnd();
    glPopAttrib();
    view.endGL();
}

ScatterDrawOverride::ScatterDrawOverride(const MObject& node)
    : MPxDrawOverride(node, [](const MHWRender::MDrawContext&, const MUserData*) {})
{
}

MUserData* ScatterDrawOverride::prepareForDraw(const MDagPath&, const MDagPath&, const MHWRender::MFrameContext&,
                                               MUserData* oldData)
{
    auto* data = dynamic_cast<ScatterData*>(oldData);
    return data ? data : new ScatterData;
}

void ScatterDrawOverride::addUIDrawables(const MDagPath& object, MHWRender::MUIDrawManager& to,
                                         const MHWRender::MFrameContext&, const MUserData* data)
{
    const MObject node = object.node();
    if (!data || !dynamic_cast<scatter*>(MFnDependencyNode(node).userNode()))
        return;
    const Shown shown(node, object);
    if (shown.points.length() == 0)
        return;
    to.beginDrawable(MHWRender::MUIDrawManager::kAutomatic);
    to.setColor(shown.color);
    to.setPointSize(static_cast<float>(shown.size));
    to.points(shown.points, false);
    to.endDrawable();
}
