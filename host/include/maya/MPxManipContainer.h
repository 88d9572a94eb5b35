#pragma once
#include <maya/MPxNode.h>

class MTypeId;

/// Base of user-defined manipulators. Without a window there is nothing to manipulate with: the type can be registered,
/// created and connected to node types.
class MPxManipContainer : public MPxNode
{
public:
    MPxManipContainer();
    ~MPxManipContainer() override;
    Type type() const override;

    virtual MStatus createChildren();
    virtual MStatus connectToDependNode(const MObject& dependNode);

    /// Says that nodes of the type have a manipulator: that of this name followed by "Manip".
    static MStatus addToManipConnectTable(MTypeId& id);
    static MStatus removeFromManipConnectTable(MTypeId& id);
    static MStatus initialize();
};
