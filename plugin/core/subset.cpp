#include "core/subset.h"

#include <maya/MDataHandle.h>
#include <maya/MFnGeometryData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MPlugArray.h>

#include <algorithm>

namespace {

/// The component list at the attribute; a source's value comes before the one held in the block.
MObject componentData(MDataBlock& block, const MPlug& components)
{
    MPlugArray sources;
    if (components.connectedTo(sources, true, false) && sources.length() > 0)
        return sources[0].asMObject();
    return block.inputValue(components).data();
}

MObject groupData(const SubsetSource& source)
{
    if (source.groupId < 0)
        return MObject::kNullObj;
    const auto      id = static_cast<unsigned int>(source.groupId);
    MObject         geometry = source.geometry;
    MFnGeometryData fn(geometry);
    return fn.hasObjectGroup(id) ? fn.objectGroupComponent(id) : MObject::kNullObj;
}

/// A component, or the first one of a list. Null for anything else.
MObject firstComponent(MObject object)
{
    if (object.hasFn(MFn::kComponent))
        return object;
    if (object.apiType() != MFn::kComponentListData)
        return MObject::kNullObj;
    MFnComponentListData list(object);
    return list.length() > 0 ? list[0] : MObject::kNullObj;
}

} // namespace

Subset::Subset(MDataBlock& block, SubsetMode mode, const SubsetSource& source) : mode_(mode)
{
    if (all())
        return;
    listData_ = list_.create();
    component_ = firstComponent(mode == SubsetMode::kObjectGroup ? groupData(source)
                                                                 : componentData(block, source.components));
    if (!component_.isNull())
        list_.add(component_);
}

MIntArray Subset::indices(unsigned int pointCount) const
{
    MIntArray                 ids;
    MObject                   component = component_;
    MFnSingleIndexedComponent fn;
    const bool                single = !all() && !component.isNull() && fn.setObject(component) == MS::kSuccess;
    if (all() || (single && fn.isComplete())) {
        ids.setLength(pointCount);
        for (unsigned int i = 0; i < pointCount; ++i)
            ids[i] = static_cast<int>(i);
    } else if (single) {
        fn.getElements(ids);
        unsigned int inside = 0;
        while (inside < ids.length() && ids[inside] >= 0 && static_cast<unsigned int>(ids[inside]) < pointCount)
            ++inside;
        ids.setLength(inside);
    }
    return ids;
}

unsigned int Subset::componentCount(unsigned int pointCount) const
{
    MObject      component = component_;
    MFnComponent fn;
    if (all() || component.isNull() || fn.setObject(component) != MS::kSuccess || fn.isComplete())
        return pointCount;
    return static_cast<unsigned int>(std::max(0, fn.elementCount()));
}
