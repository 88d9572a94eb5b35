#include "view/display_status.h"

#include <algorithm>

#include <maya/MDagPath.h>
#include <maya/MHWGeometryUtilities.h>

#include "dag/path_access.h"
#include "nodes/dag_attrs.h"
#include "view/frame.h"
#include "view/palette.h"

namespace mirk::view {

namespace {

/// The item is this path or one above it, as a whole.
bool covers(const mirk::Item& item, const Path& path)
{
    const auto &above = item.path.nodes, &nodes = path.nodes;
    return !item.component && !item.plug && !above.empty() && above.size() <= nodes.size() &&
           std::equal(above.begin(), above.end(), nodes.begin());
}

bool coversPart(const mirk::Item& item, const Path& path)
{
    return item.component && item.path.node() && item.path.node() == path.node();
}

bool isTemplated(Node& node)
{
    return attributeValue(node, "template") != 0 ||
           (attributeValue(node, "overrideEnabled") != 0 && attributeValue(node, "overrideDisplayType") == 1);
}

}  // namespace

double attributeValue(Node& node, const char* name, double otherwise)
{
    const Attribute* attribute = node.findAttribute(name);
    return attribute && node.cell(attribute) ? nodes::pulledNumber(node, attribute) : otherwise;
}

bool showsItself(Node& node)
{
    return attributeValue(node, "visibility", 1) != 0 && attributeValue(node, "lodVisibility", 1) != 0 &&
           attributeValue(node, "intermediateObject") == 0 &&
           (attributeValue(node, "overrideEnabled") == 0 || attributeValue(node, "overrideVisibility", 1) != 0);
}

int displayStatus(const Path& path)
{
    using namespace MHWRender;
    if (!path.valid())
        return kNoStatus;
    if (attributeValue(*path.node(), "intermediateObject") != 0)
        return kIntermediateObject;
    bool templated = false;
    for (const Ref<Node>& node : path.nodes) {
        if (!showsItself(*node))
            return kInvisible;
        templated = templated || isTemplated(*node);
    }
    const std::vector<mirk::Item>& selected = selection::get();
    const auto any = [&](auto test) { return std::any_of(selected.begin(), selected.end(), [&](auto& i) { return test(i, path); }); };
    const bool whole = any(covers);
    if (templated)
        return whole ? kActiveTemplate : kTemplate;
    if (whole)
        return covers(selected.back(), path) ? kLead : kActive;
    return any(coversPart) ? kHilite : kDormant;
}

Color wireframeColor(const Path& path)
{
    const int status = displayStatus(path);
    if (status == MHWRender::kDormant)
        for (size_t n = path.nodes.size(); n-- > 0;) {   // the nearest node at or above the object that asks
            Node& node = *path.nodes[n];
            if (attributeValue(node, "overrideEnabled") == 0)
                continue;
            if (attributeValue(node, "overrideRGBColors") != 0)
                return {float(attributeValue(node, "overrideColorR")), float(attributeValue(node, "overrideColorG")),
                        float(attributeValue(node, "overrideColorB")), 1};
            if (const int index = int(attributeValue(node, "overrideColor")))   // 0 stands for the default
                return paletteColor(index);
        }
    return statusColor(status);
}

}  // namespace mirk::view

namespace MHWRender {

MColor MGeometryUtilities::wireframeColor(const MDagPath& path, MStatus* ReturnStatus)
{
    const mirk::Path own = mirk::PathAccess::unwrap(path);
    if (ReturnStatus)
        *ReturnStatus = own.valid() ? MStatus::kSuccess : MStatus::kFailure;
    const mirk::view::Color c = mirk::view::wireframeColor(own);
    return MColor(c.r, c.g, c.b, c.a);
}

DisplayStatus MGeometryUtilities::displayStatus(const MDagPath& path, MStatus* ReturnStatus)
{
    const mirk::Path own = mirk::PathAccess::unwrap(path);
    if (ReturnStatus)
        *ReturnStatus = own.valid() ? MStatus::kSuccess : MStatus::kFailure;
    return DisplayStatus(mirk::view::displayStatus(own));
}

}  // namespace MHWRender
