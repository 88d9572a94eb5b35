// How a cocoon is drawn: lines and triangles straight from what the last evaluation left on the node, with the oldest of
// OpenGL, in the space of the locator.
#include <maya/MDagPath.h>
#include <maya/MDrawContext.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MUserData.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "generators/cocoon.h"

/// The callback gets nothing but this: the path leads to the node.
class CocoonData : public MUserData
{
public:
    CocoonData() : MUserData(false) {}
    MDagPath path;
};

namespace {

/// Segments by their width in pixels, to a quarter of one: a width cannot change within a call. Those without are not
/// drawn.
std::map<float, std::vector<unsigned int>> byWidth(const std::vector<float>& widths)
{
    std::map<float, std::vector<unsigned int>> groups;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (!(widths[i] > 0.0f))
            continue;
        const float width = std::max(0.25f, std::round(std::min(widths[i], 64.0f) * 4.0f) / 4.0f);
        std::vector<unsigned int>& places = groups[width];
        places.push_back(static_cast<unsigned int>(2 * i));
        places.push_back(static_cast<unsigned int>(2 * i + 1));
    }
    return groups;
}

bool isOpaque(const std::vector<float>& rgba)
{
    for (std::size_t i = 3; i < rgba.size(); i += 4)
        if (!(rgba[i] >= 1.0f))
            return false;
    return true;
}

/// What can be seen through hides nothing that comes later.
void setArrays(const std::vector<float>& points, const std::vector<float>& rgba)
{
    glDepthMask(isOpaque(rgba) ? GL_TRUE : GL_FALSE);
    glVertexPointer(3, GL_FLOAT, 0, points.data());
    glColorPointer(4, GL_FLOAT, 0, rgba.data());
}

void drawLinks(const DrawnWeb& web, bool antialiased)
{
    if (antialiased) {
        glDisable(GL_MULTISAMPLE);   // lines of many samples are not smoothed
        glEnable(GL_LINE_SMOOTH);
        glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
    } else {
        glDisable(GL_LINE_SMOOTH);
    }
    setArrays(web.linkPoints, web.linkColors);
    for (const auto& [width, places] : byWidth(web.linkWidths)) {
        glLineWidth(width);
        glDrawElements(GL_LINES, static_cast<GLsizei>(places.size()), GL_UNSIGNED_INT, places.data());
    }
}

void drawFaces(const DrawnWeb& web)
{
    glDisable(GL_CULL_FACE);
    setArrays(web.facePoints, web.faceColors);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(web.facePoints.size() / 3));
}

/// The matrices of the object are loaded. What is changed here is taken back.
void drawWeb(const cocoon& node)
{
    const DrawnWeb& web = node.drawn();
    if (web.linkPoints.empty() && web.facePoints.empty())
        return;
    glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT | GL_HINT_BIT |
                 GL_LIGHTING_BIT | GL_MULTISAMPLE_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glBindBuffer(GL_ARRAY_BUFFER, 0);   // a buffer that is still bound would be read instead of our arrays
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glShadeModel(GL_SMOOTH);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);   // the picture stays opaque
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    if (!web.facePoints.empty())
        drawFaces(web);
    if (!web.linkPoints.empty())
        drawLinks(web, MPlug(node.thisMObject(), cocoon::aAntialiased).asBool());
    glPopClientAttrib();
    glPopAttrib();
}

void loadMatrix(GLenum mode, const MMatrix& matrix)
{
    glMatrixMode(mode);
    glPushMatrix();
    glLoadMatrixd(&matrix.matrix[0][0]);
}

/// The viewport need not have loaded the matrices of the fixed pipeline.
void drawCallback(const MHWRender::MDrawContext& context, const MUserData* userData)
{
    const auto* data = dynamic_cast<const CocoonData*>(userData);
    if (!data || !data->path.isValid())
        return;
    const auto* node = dynamic_cast<const cocoon*>(MFnDependencyNode(data->path.node()).userNode());
    if (!node)
        return;
    loadMatrix(GL_PROJECTION, context.getMatrix(MHWRender::MFrameContext::kProjectionMtx));
    loadMatrix(GL_MODELVIEW, context.getMatrix(MHWRender::MFrameContext::kWorldViewMtx));
    drawWeb(*node);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

} // namespace

const DrawnWeb& cocoon::drawn() const
{
    MPlug(thisMObject(), aForceEvaluate).asBool();   // the value is of no use: reading it evaluates
    return drawn_;
}

void cocoon::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus)
{
    if (!view.beginGL())
        return;
    drawWeb(*this);
    view.endGL();
}

MBoundingBox cocoon::boundingBox() const
{
    MBoundingBox box;
    const auto   add = [&](const std::vector<float>& points) {
        for (std::size_t i = 0; i + 2 < points.size(); i += 3)
            if (std::isfinite(points[i]) && std::isfinite(points[i + 1]) && std::isfinite(points[i + 2]))
                box.expand(MPoint(points[i], points[i + 1], points[i + 2]));
    };
    const DrawnWeb& web = drawn();
    add(web.linkPoints);
    add(web.facePoints);
    return box;
}

CocoonDrawOverride::CocoonDrawOverride(const MObject& node) : MPxDrawOverride(node, drawCallback) {}

MUserData* CocoonDrawOverride::prepareForDraw(const MDagPath& object, const MDagPath&, const MHWRender::MFrameContext&,
                                              MUserData* oldData)
{
    auto* data = dynamic_cast<CocoonData*>(oldData);
    if (!data)
        data = new CocoonData;
    data->path = object;
    return data;
}
