// Generators of geometry: the node types that are registered and await their work.
#pragma once

#include "core/registered.h"

class bound : public Registered<bound, MPxNode, 0x115757> {};
class pointCloudToCurve : public Registered<pointCloudToCurve, MPxNode, 0x11575C> {};

class cage : public Registered<cage, MPxNode, 0x11576C> {};
class mapToMesh : public Registered<mapToMesh, MPxNode, 0x115772> {};
class meshToMap : public Registered<meshToMap, MPxNode, 0x115773> {};
class pointCloudToMultiCurve : public Registered<pointCloudToMultiCurve, MPxNode, 0x115774> {};
class pointCloudToMesh : public Registered<pointCloudToMesh, MPxNode, 0x11578E> {};

class convexHull : public Registered<convexHull, MPxNode, 0x11579D> {};
class stickyCurves : public Registered<stickyCurves, MPxNode, 0x115747> {};
class voxelGrid : public Registered<voxelGrid, MPxNode, 0x1157A4> {};
class curvesToPointCloud : public Registered<curvesToPointCloud, MPxNode, 0x1157B2> {};
class blendCurves : public Registered<blendCurves, MPxNode, 0x1157B3> {};
class resample : public Registered<resample, MPxNode, 0x1157BF> {};
class smartFillHole : public Registered<smartFillHole, MPxNode, 0x1157C7> {};
