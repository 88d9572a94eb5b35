// Geometry iterators on data handles and DAG paths.
#include <maya/MItGeometry.h>

#if __has_include(<maya/MDataHandle.h>)
#include <maya/MDataHandle.h>

#include "data/fn_base.h"
#include "data/point_walk.h"
#include "graph/access.h"

using namespace mirk;

namespace {

MStatus openHandle(PointWalk& walk, MDataHandle& handle, const unsigned* groupId)
{
    auto* data = dynamic_cast<GeometryData*>(HandleAccess::data(handle));
    if (!data)
        return MS::kFailure;
    return walk.open(data, groupId, [handle]() -> Object* {
        HandleAccess::detachForWrite(handle);
        return HandleAccess::data(handle);
    });
}

}  // namespace

// `readOnly` promises not to write. Code that writes all the same gets its own buffers then, as everybody does.
MItGeometry::MItGeometry(MDataHandle& handle, unsigned groupId, bool, MStatus* s) : walk_(new PointWalk)
{
    report(s, openHandle(*walk_, handle, &groupId).statusCode());
}
MItGeometry::MItGeometry(MDataHandle& handle, bool, MStatus* s) : walk_(new PointWalk)
{
    report(s, openHandle(*walk_, handle, nullptr).statusCode());
}
#endif
