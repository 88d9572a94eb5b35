// Viewport display: the node types that are registered and await their work.
#pragma once
#include <maya/MPxLocatorNode.h>

#include "core/gl.h"
#include "core/registered.h"

class displayAttributes : public Registered<displayAttributes, MPxLocatorNode, 0x115760>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/displayAttributes"};
    static inline MString drawRegistrantId{"DisplayAttributesNodePlugin"};
};
using DisplayAttributesDrawOverride = RegisteredOverride<displayAttributes>;

class displayComponents : public Registered<displayComponents, MPxLocatorNode, 0x11574B>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/displayComponents"};
    static inline MString drawRegistrantId{"DisplayComponentsNodePlugin"};
};
using DisplayComponentsDrawOverride = RegisteredOverride<displayComponents>;

class displayDriver : public Registered<displayDriver, MPxLocatorNode, 0x11576F>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/displayDriver"};
    static inline MString drawRegistrantId{"DisplayDriverNodePlugin"};
};
using DisplayDriverDrawOverride = RegisteredOverride<displayDriver>;

class mirrorPlane : public Registered<mirrorPlane, MPxLocatorNode, 0x115759>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/mirrorPlane"};
    static inline MString drawRegistrantId{"MirrorPlaneNodePlugin"};
};
using MirrorPlaneDrawOverride = RegisteredOverride<mirrorPlane>;

class projectionPlane : public Registered<projectionPlane, MPxLocatorNode, 0x115768>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/projectionPlane"};
    static inline MString drawRegistrantId{"ProjectionPlaneNodePlugin"};
};
using ProjectionPlaneDrawOverride = RegisteredOverride<projectionPlane>;

class outline : public Registered<outline, MPxLocatorNode, 0x1157C5>
{
public:
    void postConstructor() override { gl::ready(); }
    static inline MString drawDbClassification{"drawdb/geometry/outline"};
    static inline MString drawRegistrantId{"OutlineNodePlugin"};
};
using OutlineDrawOverride = RegisteredOverride<outline>;
