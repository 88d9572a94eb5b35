// Bounding objects, component groups and attribute transfer: the node types that are registered and await their work.
#pragma once
#include <maya/MPxLocatorNode.h>
#include <maya/MPxManipContainer.h>

#include "core/registered.h"


class compListToObjGrp : public Registered<compListToObjGrp, MPxNode, 0x115745> {};
class group : public Registered<group, MPxNode, 0x115742> {};
class objGrpToCompList : public Registered<objGrpToCompList, MPxNode, 0x115744> {};
class componentToComponent : public Registered<componentToComponent, MPxNode, 0x115776> {};
