#include "view/scene_draw.h"

#include <map>
#include <string>
#include <utility>

#include <maya/MFnDependencyNode.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MItDag.h>
#include <maya/MMatrix.h>
#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MPxLocatorNode.h>

#include "view/builders.h"
#include "view/convert.h"
#include "view/draw_override.h"
#include "view/registry.h"
#include "view/scene_items.h"

namespace mirk::view {

namespace {

/// An object's override as kept from frame to frame.
struct Kept
{
    MObjectHandle                node;
    DrawOverrideCreator          creator = nullptr;
    std::unique_ptr<DrawnObject> drawn;
    bool                         used = false;
};

/// By full path. Never destroyed: overrides are code of plug-ins, whose own objects may be gone when the process ends.
std::map<std::string, Kept>& keptOverrides()
{
    static auto* all = new std::map<std::string, Kept>;
    return *all;
}

DrawnObject* overrideFor(const MDagPath& path)
{
    const MFnDependencyNode node(path.node());
    const DrawOverrideCreator creator = findDrawOverride(MFnDependencyNode::classification(node.typeName()).asChar());
    if (!creator)
        return nullptr;
    Kept& kept = keptOverrides()[path.fullPathName().asChar()];
    kept.used = true;
    const MObject object = path.node();
    if (kept.drawn && kept.creator == creator && kept.node.isValid() && kept.node.object() == object)
        return kept.drawn.get();
    std::unique_ptr<MHWRender::MPxDrawOverride> made(creator(object));
    kept.node = MObjectHandle(object);
    kept.creator = creator;
    kept.drawn = made ? std::make_unique<DrawnObject>(std::move(made)) : nullptr;
    return kept.drawn.get();
}

void dropUnused()
{
    for (auto it = keptOverrides().begin(); it != keptOverrides().end();) {
        const bool used = std::exchange(it->second.used, false);
        it = used ? std::next(it) : keptOverrides().erase(it);
    }
}

double number(const MFnDependencyNode& node, const char* name, double otherwise)
{
    const MPlug plug = node.findPlug(name, false);
    return plug.isNull() ? otherwise : plug.asDouble();
}

/// A locator that draws itself with OpenGL and has no override.
void addLegacyLocator(const MDagPath& path, const FrameData& frame, const Matrix& matrix, DrawList& list)
{
    auto* locator = dynamic_cast<MPxLocatorNode*>(MFnDependencyNode(path.node()).userNode());
    if (!locator)
        return;
    FrameData own = frame;
    own.world = matrix;
    list.callbacks.push_back({[locator, path, own](const Camera&) {
                                  const InCallback inside(own);
                                  M3dView view = M3dView::active3dView();
                                  const int status = MHWRender::MGeometryUtilities::displayStatus(path);
                                  locator->draw(view, path, view.displayStyle(), M3dView::DisplayStatus(status));
                              },
                              matrix});
}

class Collector
{
public:
    explicit Collector(const SceneDrawOptions& options) : options_(options)
    {
        frame_.camera = options.camera;
        frame_.cameraPath = options.cameraPath;
        frame_.displayStyle = options.displayStyle;
        activeViewport().frame = frame_;
    }

    SceneDraw run()
    {
        if (options_.grid)
            addGrid(out_.list);
        for (MItDag it; !it.isDone(); it.next()) {
            MDagPath path;
            if (it.depth() == 0 || !it.getPath(path))
                continue;
            if (!path.isVisible())
                it.prune();
            else
                add(path);
        }
        dropUnused();
        return std::move(out_);
    }

private:
    void add(const MDagPath& path)
    {
        if (!path.hasFn(MFn::kShape))
            return;
        out_.objects.push_back(path);
        const auto id = static_cast<uint32_t>(out_.objects.size());
        if (DrawnObject* drawn = overrideFor(path)) {
            drawn->draw(path, options_.cameraPath ? *options_.cameraPath : MDagPath(), frame_, id, out_.list);
            return;
        }
        const Matrix matrix = fromMatrix(path.inclusiveMatrix());
        if (!addShapeItems(path, matrix, look(path, id), out_.list) && path.apiType() == MFn::kPluginLocatorNode)
            addLegacyLocator(path, frame_, matrix, out_.list);
    }

    Look look(const MDagPath& path, uint32_t id) const
    {
        using namespace MHWRender;
        const int  status = options_.selection ? int(MGeometryUtilities::displayStatus(path)) : int(kDormant);
        const bool active = status == kActive || status == kLead || status == kHilite;
        Look look;
        look.id = status == kTemplate ? 0 : id;
        look.shaded = (options_.displayStyle & (MFrameContext::kGouraudShaded | MFrameContext::kFlatShaded)) && status != kTemplate &&
                      status != kActiveTemplate;
        look.wire = options_.wireOnShaded || active;
        if (options_.selection) {
            const MColor c = MGeometryUtilities::wireframeColor(path);
            look.wireColor = {c.r, c.g, c.b, c.a};
        } else {
            look.wireColor = statusColor(kDormant);
        }
        return look;
    }

    const SceneDrawOptions& options_;
    FrameData               frame_;
    SceneDraw               out_;
};

}  // namespace

SceneDraw collectScene(const SceneDrawOptions& options) { return Collector(options).run(); }

Image renderScene(const SceneDrawOptions& options)
{
    const SceneDraw scene = collectScene(options);
    RenderRequest request;
    request.camera = options.camera;
    request.list = &scene.list;
    request.samples = options.samples;
    return renderer().render(request);
}

std::vector<MDagPath> pickScene(const SceneDrawOptions& options, int x, int y, int width, int height)
{
    const SceneDraw scene = collectScene(options);
    RenderRequest request;
    request.camera = options.camera;
    request.list = &scene.list;
    std::vector<MDagPath> found;
    for (const Hit& hit : renderer().pick(request, x, y, width, height))
        if (hit.id <= scene.objects.size())
            found.push_back(scene.objects[hit.id - 1]);
    return found;
}

bool cameraOf(const MDagPath& path, int width, int height, Camera& camera, std::shared_ptr<const MDagPath>& shape)
{
    MDagPath found = path;
    if (found.isValid() && found.apiType() != MFn::kCamera)
        found.extendToShape();
    if (!found.isValid() || found.apiType() != MFn::kCamera)
        return false;
    const MFnDependencyNode node(found.node());
    Lens lens;
    lens.focalLength = number(node, "focalLength", lens.focalLength);
    lens.horizontalAperture = number(node, "horizontalFilmAperture", lens.horizontalAperture);
    lens.verticalAperture = number(node, "verticalFilmAperture", lens.verticalAperture);
    lens.filmFit = int(number(node, "filmFit", lens.filmFit));
    lens.orthographic = number(node, "orthographic", 0) != 0;
    lens.orthographicWidth = number(node, "orthographicWidth", lens.orthographicWidth);
    lens.nearClip = number(node, "nearClipPlane", lens.nearClip);
    lens.farClip = number(node, "farClipPlane", lens.farClip);
    camera = makeCamera(fromMatrix(found.inclusiveMatrix()), lens, width, height);
    shape = std::make_shared<const MDagPath>(found);
    return true;
}

}  // namespace mirk::view
