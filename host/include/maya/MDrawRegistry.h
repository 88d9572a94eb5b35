#pragma once
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

namespace MHWRender {

class MPxDrawOverride;

/// Says which class draws the nodes of a classification.
class MDrawRegistry
{
public:
    using DrawOverrideCreator = MPxDrawOverride* (*)(const MObject& node);

    /// Registering the same classification and id again takes the old one's place.
    static MStatus registerDrawOverrideCreator(const MString& drawClassification, const MString& registrantId,
                                               DrawOverrideCreator creator);
    static MStatus deregisterDrawOverrideCreator(const MString& drawClassification, const MString& registrantId);
};

}  // namespace MHWRender
