// Bounding objects, component groups and attribute transfer: the node types that are registered and await their work.
#pragma once
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>

#include "core/registered.h"

class attributeTransfer : public Registered<attributeTransfer, MPxNode, 0x115750> {};

class boundingObject : public Registered<boundingObject, MPxLocatorNode, 0x115743>
{
public:
    static inline MString drawDbClassification{"drawdb/geometry/boundingObject"};
    static inline MString drawRegistrantId{"BoundingObjectNodePlugin"};
};
using BoundingObjectDrawOverride = RegisteredOverride<boundingObject>;

class boundingObjectManip : public Registered<boundingObjectManip, MPxManipContainer, 0x11574C> {};
class multiAttributeTransfer : public Registered<multiAttributeTransfer, MPxNode, 0x115751> {};
