#include "core/node.h"

#include <maya/MDataHandle.h>
#include <maya/MGlobal.h>
#include <maya/MStringArray.h>

short nodeState(MDataBlock& block)
{
    return block.outputValue(MPxNode::state).asShort();
}

bool isAnyOf(const MPlug& plug, std::initializer_list<const MObject*> attributes)
{
    for (const MObject* attribute : attributes) {
        if (plug == *attribute)
            return true;
    }
    return false;
}

MString nodeName(const MPlug& plug)
{
    MStringArray parts;
    plug.name().split('.', parts);
    return parts.length() > 0 ? parts[0] : MString();
}

void warn(const MPlug& plug, const MString& text)
{
    MGlobal::displayWarning(nodeName(plug) + text);
}
