#pragma once
#include <maya/MColor.h>
#include <maya/MStatus.h>

class MDagPath;

namespace MHWRender {

/// How the viewport shows an object.
enum DisplayStatus
{
    kActive,              ///< selected
    kLive,
    kDormant,             ///< not selected
    kInvisible,
    kHilite,              ///< its components can be selected
    kTemplate,
    kActiveTemplate,
    kActiveComponent,
    kLead,                ///< selected last
    kIntermediateObject,
    kActiveAffected,
    kNoStatus
};

class MGeometryUtilities
{
public:
    static MColor        wireframeColor(const MDagPath& path, MStatus* ReturnStatus = nullptr);
    static DisplayStatus displayStatus(const MDagPath& path, MStatus* ReturnStatus = nullptr);
};

}  // namespace MHWRender
