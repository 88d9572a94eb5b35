#pragma once
#include <vector>

#include <maya/MObject.h>
#include <maya/MStatus.h>

/// Which attributes of a node a cache of evaluated frames has to keep. See MPxNode::configCache.
class MCacheSchema
{
public:
    /// kInvalidParameter if it is no attribute.
    MStatus add(const MObject& attribute);
    bool    contains(const MObject& attribute) const;
    void    reset() { attributes_.clear(); }

private:
    std::vector<MObject> attributes_;
};
