// How the surface CV iterator starts.
#pragma once
#include "data/point_walk.h"

namespace mirk {

inline MStatus openSurfaceWalk(PointWalk& walk, const MObject& surface, const MObject& component, bool useRows,
                               std::shared_ptr<const WorldMatrix> world = nullptr)
{
    if (!isSurface(surface))
        return MS::kInvalidParameter;
    const MStatus status = walk.open(surface, component, std::move(world));
    if (!useRows)
        walk.columnsFirst();
    return status;
}

}  // namespace mirk
