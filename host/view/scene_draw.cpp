#include "view/scene_draw.h"

#include <map>
#include <memory>
#include <utility>

#include <maya/MDagPath.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxEmitterNode.h>
#include <maya/MPxFieldNode.h>
#include <maya/MPxLocatorNode.h>

#include "dag/path_access.h"
#include "data/mobject.h"
#include "dynamics/instancer.h"
#include "view/builders.h"
#include "view/display_status.h"
#include "view/draw_override.h"
#include "view/instances.h"
#include "view/material.h"
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

/// An object that draws itself with OpenGL and has no override.
template <class User>
void addSelfDrawn(User& user, const Path& path, const FrameData& frame, Callback::Order order, DrawList& list)
{
    FrameData own = frame;
    own.world = worldMatrix(path);
    list.callbacks.push_back({[&user, path, own](const Camera&) {
                                  const InCallback inside(own);
                                  M3dView view = M3dView::active3dView();
                                  user.draw(view, PathAccess::wrap(path), view.displayStyle(),
                                            M3dView::DisplayStatus(displayStatus(path)));
                              },
                              own.world, order});
}

/// A locator that says so is drawn after what is transparent, and of those again some last.
Callback::Order orderOf(const MPxLocatorNode& locator)
{
    return !locator.isTransparent() ? Callback::Order::kOpaque : locator.drawLast() ? Callback::Order::kLast : Callback::Order::kTransparent;
}

Bitmap iconOf(MPxFieldNode& field)
{
    Bitmap icon;
    constexpr unsigned kLargest = 512;
    if (field.iconSizeAndOrigin(icon.width, icon.height, icon.x, icon.y) != MS::kSuccess || icon.width > kLargest || icon.height > kLargest)
        icon.width = icon.height = 0;
    icon.bits.resize(size_t((icon.width + 7) / 8) * icon.height);
    if (!icon.bits.empty() && field.iconBitmap(icon.bits.data()) != MS::kSuccess)
        icon.height = 0;
    return icon;
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
            Node& node = *path.node();
            if (node.type->shape || node.hasFn(MFn::kJoint) || dynamics::isInstancer(node) || dynamic_cast<MPxFieldNode*>(node.user.get()) ||
                dynamic_cast<MPxEmitterNode*>(node.user.get()))
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
    /// Locators that the view does not show, and the camera that is looked through.
    bool isLeftOut(Node& node) const
    {
        if (node.apiType() == MFn::kCamera)
            return options_.cameraPath.valid() && options_.cameraPath.node() == &node;
        if (options_.locators)
            return false;
        const auto* locator = dynamic_cast<MPxLocatorNode*>(node.user.get());
        return locator ? locator->excludeAsLocator() : node.apiType() == MFn::kLocator;
    }

    void add(const Path& path)
    {
        if (isLeftOut(*path.node()))
            return;
        out_.objects.push_back(path);
        const auto id = static_cast<uint32_t>(out_.objects.size());
        if (DrawnObject* drawn = overrideFor(path))
            drawn->draw(PathAccess::wrap(path), frame_.cameraPath ? *frame_.cameraPath : MDagPath(), frame_, id, out_.list);
        else
            addPlain(path, look(path, id));
    }

    /// What has no override.
    void addPlain(const Path& path, const Look& look)
    {
        Node& node = *path.node();
        if (node.hasFn(MFn::kJoint))
            addJoint(path, look, out_.list);
        else if (dynamics::isInstancer(node))
            addInstances(node, worldMatrix(path), look, out_.list);
        else if (addShapeItems(node, worldMatrix(path), look, out_.list))
            return;
        else if (auto* locator = dynamic_cast<MPxLocatorNode*>(node.user.get()))
            addSelfDrawn(*locator, path, frame_, orderOf(*locator), out_.list);
        else if (auto* emitter = dynamic_cast<MPxEmitterNode*>(node.user.get()))
            addSelfDrawn(*emitter, path, frame_, Callback::Order::kOpaque, out_.list);
        else if (auto* field = dynamic_cast<MPxFieldNode*>(node.user.get())) {
            addIcon(iconOf(*field), worldMatrix(path), look, out_.list);
            addSelfDrawn(*field, path, frame_, Callback::Order::kOpaque, out_.list);
        }
    }

    Look look(const Path& path, uint32_t id)
    {
        using namespace MHWRender;
        const int  status = options_.selection ? displayStatus(path) : int(kDormant);
        const bool templated = status == kTemplate || status == kActiveTemplate;
        Look look;
        look.id = templated ? 0 : id;
        look.shaded = (options_.displayStyle & (MFrameContext::kGouraudShaded | MFrameContext::kFlatShaded)) && !templated;
        look.wire = options_.wireOnShaded || status == kActive || status == kLead || status == kHilite;
        look.materials = &materials_;
        look.instance = dag::instanceNumber(path);
        look.wireColor = options_.selection ? wireframeColor(path) : statusColor(kDormant);
        return look;
    }

    const SceneDrawOptions& options_;
    FrameData               frame_;
    SceneDraw               out_;
    Materials               materials_;
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
