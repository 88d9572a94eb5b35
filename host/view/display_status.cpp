// How the viewport shows an object: by selection, templates and display overrides.
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPlug.h>

#include "dag/dag.h"
#include "dag/path_access.h"
#include "view/frame.h"
#include "view/palette.h"

namespace MHWRender {

namespace {

using mirk::Path;

bool isOn(const MFnDependencyNode& node, const char* attribute)
{
    const MPlug plug = node.findPlug(attribute, false);
    return !plug.isNull() && plug.asBool();
}

float channel(const MFnDependencyNode& node, const char* attribute)
{
    const MPlug plug = node.findPlug(attribute, false);
    return plug.isNull() ? 0.f : plug.asFloat();
}

/// The item is this path or one above it, as a whole.
bool covers(const mirk::Item& item, const Path& path)
{
    const auto &above = item.path.nodes, &nodes = path.nodes;
    return !item.component && !item.plug && !above.empty() && above.size() <= nodes.size() &&
           std::equal(above.begin(), above.end(), nodes.begin());
}

/// Components of the object are selected.
bool coversPart(const mirk::Item& item, const Path& path)
{
    return item.component && item.path.nodes.size() && item.path.node() == path.node();
}

/// The colour that the nearest node at or above the object asks for; false if none does.
bool overrideColor(const Path& path, MColor& color)
{
    for (size_t n = path.nodes.size(); n-- > 0;) {
        const MFnDependencyNode node(mirk::PathAccess::node(mirk::PathAccess::wrap({{path.nodes.begin(), path.nodes.begin() + long(n) + 1}})));
        if (!isOn(node, "overrideEnabled"))
            continue;
        if (isOn(node, "overrideRGBColors")) {
            color = MColor(channel(node, "overrideColorR"), channel(node, "overrideColorG"), channel(node, "overrideColorB"));
            return true;
        }
        const int index = int(channel(node, "overrideColor"));
        if (index > 0) {   // 0 stands for the default
            const mirk::view::Color c = mirk::view::paletteColor(index);
            color = MColor(c.r, c.g, c.b);
            return true;
        }
    }
    return false;
}

}  // namespace

DisplayStatus MGeometryUtilities::displayStatus(const MDagPath& dagPath, MStatus* ReturnStatus)
{
    const Path path = mirk::PathAccess::unwrap(dagPath);
    if (ReturnStatus)
        *ReturnStatus = path.valid() ? MStatus::kSuccess : MStatus::kFailure;
    if (!path.valid())
        return kNoStatus;
    if (isOn(MFnDependencyNode(dagPath.node()), "intermediateObject"))
        return kIntermediateObject;
    if (!dagPath.isVisible())
        return kInvisible;
    const std::vector<mirk::Item>& selected = mirk::selection::get();
    bool whole = false, part = false;
    for (const mirk::Item& item : selected) {
        whole = whole || covers(item, path);
        part = part || coversPart(item, path);
    }
    if (dagPath.isTemplated())
        return whole ? kActiveTemplate : kTemplate;
    if (whole)
        return covers(selected.back(), path) ? kLead : kActive;
    return part ? kHilite : kDormant;
}

MColor MGeometryUtilities::wireframeColor(const MDagPath& dagPath, MStatus* ReturnStatus)
{
    const DisplayStatus status = displayStatus(dagPath, ReturnStatus);
    MColor color;
    if (status == kDormant && overrideColor(mirk::PathAccess::unwrap(dagPath), color))
        return color;
    const mirk::view::Color c = mirk::view::statusColor(status);
    return MColor(c.r, c.g, c.b, c.a);
}

}  // namespace MHWRender
