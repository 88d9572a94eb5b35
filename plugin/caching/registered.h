// Frame caches and time: the node types that are registered and await their work.
#pragma once
#include <maya/MPxLocatorNode.h>

#include "core/gl.h"
#include "core/registered.h"

class timeOffset : public Registered<timeOffset, MPxNode, 0x115755> {};
class frameCacheTracker : public Registered<frameCacheTracker, MPxNode, 0x11579C> {};
class frameCacher : public Registered<frameCacher, MPxNode, 0x115778> {};
class attrFrameCacher : public Registered<attrFrameCacher, MPxNode, 0x1157AC> {};

class gpuCacher : public Registered<gpuCacher, MPxLocatorNode, 0x1157AE>
{
public:
    void postConstructor() override { gl::ready(); }
    static inline MString drawDbClassification{"drawdb/geometry/gpuCacher"};
    static inline MString drawRegistrantId{"GpuCacherNodePlugin"};
};
using GpuCacherDrawOverride = RegisteredOverride<gpuCacher>;

class nCacheInterpolator : public Registered<nCacheInterpolator, MPxNode, 0x1157C8> {};
