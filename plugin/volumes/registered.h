// Bounding objects, component groups and attribute transfer: the node types that are registered and await their work.
#pragma once
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>

#include "core/registered.h"

class attributeTransfer : public Registered<attributeTransfer, MPxNode, 0x115750> {};

class multiAttributeTransfer : public Registered<multiAttributeTransfer, MPxNode, 0x115751> {};
