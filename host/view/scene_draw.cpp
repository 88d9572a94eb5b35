#include "view/scene_draw.h"

#include <map>
#include <memory>
#include <utility>

#include <maya/MDagPath.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxLocatorNode.h>

#include "dag/path_access.h"
#include "data/mobject.h"
#include "view/builders.h"
#include "view/display_status.h"
#include "view/draw_override.h"
#include "view/registry.h"
#include "view/scene_items.h"

namespace mirk::view {

namespace {

/// An object's override as kept from frame to frame.
struct Kept
{
    Ref<Node>                    node;
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

DrawnObject* overrideFor(const Path& path)
{
    const DrawOverrideCreator creator = findDrawOverride(path.node()->type->classification);
    if (!creator)
        return nullptr;
    Kept& kept = keptOverrides()[dag::fullName(path)];
    kept.used = true;
    if (kept.creator == creator && kept.node == path.nodes.back())
        return kept.drawn.get();
    std::unique_ptr<MHWRender::MPxDrawOverride> made(creator(wrap(path.node())));
    kept.node = path.nodes.back();
    kept.creator = creator;
    kept.drawn = made ? std::make_unique<DrawnObject>(std::move(made)) : nullptr;
    return kept.drawn.get();
}

/// Objects that were not drawn this time lose their override, deleted nodes among them.
void dropUnused()
{
    for (auto it = keptOverrides().begin(); it != keptOverrides().end();) {
        const bool used = std::exchange(it->second.used, false);
        it = used ? std::next(it) : keptOverrides().erase(it);
    }
}

Matrix worldMatrix(const Path& path)
{
    double m[4][4];
    dag::inclusiveMatrix(path, m);
    Matrix out;
    std::copy(&m[0][0], &m[0][0] + 16, out.begin());
    return out;
}

/// A locator that draws itself with OpenGL and has no override.
void addLegacyLocator(const Path& path, const FrameData& frame, DrawList& list)
{
    auto* locator = dynamic_cast<MPxLocatorNode*>(path.node()->user.get());
    if (!locator)
        return;
    FrameData own = frame;
    own.world = worldMatrix(path);
    list.callbacks.push_back({[locator, path, own](const Camera&) {
                                  const InCallback inside(own);
                                  M3dView view = M3dView::active3dView();
                                  locator->draw(view, PathAccess::wrap(path), view.displayStyle(),
                                                M3dView::DisplayStatus(displayStatus(path)));
                              },
                              own.world});
}

class Collector
{
public:
    explicit Collector(const SceneDrawOptions& options) : options_(options)
    {
        frame_.camera = options.camera;
        frame_.displayStyle = options.displayStyle;
        if (options.cameraPath.valid())
            frame_.cameraPath = std::make_shared<const MDagPath>(PathAccess::wrap(options.cameraPath));
        activeViewport().frame = frame_;
    }

    SceneDraw run()
    {
        if (options_.grid)
            addGrid(out_.list);
        std::vector<Path> shapes;   // gathered first: drawing may run code that edits the scene
        dag::descend(Path(), [&](const Path& path) {
            if (!showsItself(*path.node()))
                return false;
            if (path.node()->type->shape)
                shapes.push_back(path);
            return true;
        });
        for (const Path& path : shapes)
            if (path.valid())
                add(path);
        dropUnused();
        return std::move(out_);
    }

private:
    void add(const Path& path)
    {
        out_.objects.push_back(path);
        const auto id = static_cast<uint32_t>(out_.objects.size());
        if (DrawnObject* drawn = overrideFor(path))
            drawn->draw(PathAccess::wrap(path), frame_.cameraPath ? *frame_.cameraPath : MDagPath(), frame_, id, out_.list);
        else if (!addShapeItems(*path.node(), worldMatrix(path), look(path, id), out_.list) &&
                 path.node()->apiType() == MFn::kPluginLocatorNode)
            addLegacyLocator(path, frame_, out_.list);
    }

    Look look(const Path& path, uint32_t id) const
    {
        using namespace MHWRender;
        const int  status = options_.selection ? displayStatus(path) : int(kDormant);
        const bool templated = status == kTemplate || status == kActiveTemplate;
        Look look;
        look.id = templated ? 0 : id;
        look.shaded = (options_.displayStyle & (MFrameContext::kGouraudShaded | MFrameContext::kFlatShaded)) && !templated;
        look.wire = options_.wireOnShaded || status == kActive || status == kLead || status == kHilite;
        look.wireColor = options_.selection ? wireframeColor(path) : statusColor(kDormant);
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

std::vector<Path> pickScene(const SceneDrawOptions& options, int x, int y, int width, int height)
{
    const SceneDraw scene = collectScene(options);
    RenderRequest request;
    request.camera = options.camera;
    request.list = &scene.list;
    std::vector<Path> found;
    for (const Hit& hit : renderer().pick(request, x, y, width, height))
        if (hit.id <= scene.objects.size())
            found.push_back(scene.objects[hit.id - 1]);
    return found;
}

bool cameraOf(const Path& path, int width, int height, Camera& camera, Path& shape)
{
    Path found = path;
    if (found.valid() && found.node()->apiType() != MFn::kCamera && found.node()->dag)
        for (Node* child : found.node()->dag->children)
            if (child->apiType() == MFn::kCamera) {
                found.nodes.push_back(Ref<Node>(child));
                break;
            }
    if (!found.valid() || found.node()->apiType() != MFn::kCamera)
        return false;
    Node& node = *found.node();
    Lens  lens;
    lens.focalLength = attributeValue(node, "focalLength", lens.focalLength);
    lens.horizontalAperture = attributeValue(node, "horizontalFilmAperture", lens.horizontalAperture);
    lens.verticalAperture = attributeValue(node, "verticalFilmAperture", lens.verticalAperture);
    lens.filmFit = int(attributeValue(node, "filmFit", lens.filmFit));
    lens.orthographic = attributeValue(node, "orthographic", 0) != 0;
    lens.orthographicWidth = attributeValue(node, "orthographicWidth", lens.orthographicWidth);
    lens.nearClip = attributeValue(node, "nearClipPlane", lens.nearClip);
    lens.farClip = attributeValue(node, "farClipPlane", lens.farClip);
    camera = makeCamera(worldMatrix(found), lens, width, height);
    shape = found;
    return true;
}

}  // namespace mirk::view
