// Polygons from surfaces, as plain arrays that know nothing of meshes.
#pragma once
#include <string>
#include <vector>

#include "nurbs/surface.h"

namespace mirk::nurbs {

/// A polygon mesh: `connects` lists the vertices of all faces in turn, `counts` how many each face has, `uvIds` the
/// texture coordinate of each face corner.
struct Polygons
{
    std::vector<MVector> points;
    std::vector<int>     counts, connects, uvIds;
    std::vector<float>   u, v;
};

struct TessellateOptions
{
    enum Format { count = 0, fit = 1, general = 2, controlVertices = 3 };
    enum Spread { perSurfaceByLength = 1, perSurface = 2, perSpan = 3 };

    Format format = general;
    bool   quads = true;              ///< else triangles
    bool   matchNormalDir = false;    ///< controlVertices: faces look along the surface normal; else against it
    bool   normalizeUV = true;        ///< coordinates from 0 to 1; else the surface's parameters
    int    polygonCount = 200;        ///< count: about that many faces
    double chordHeight = 0.01;        ///< fit: largest distance of an edge from its isoparametric curve
    Spread spreadU = perSpan, spreadV = perSpan;   ///< general
    int    numberU = 3, numberV = 3;  ///< general: isoparametric lines, per span or per surface
};

/// controlVertices puts one vertex at each CV, index u * (CVs in V) + v; of a periodic direction the repeated CVs make no
/// vertices. The other formats put vertices on the surface. A periodic direction closes without doubled vertices. Every
/// vertex has its own texture coordinate, at a seam two. Null with a text if the surface is empty or the numbers are not
/// positive.
bool tessellate(const SurfaceBody& surface, const TessellateOptions& options, Polygons& out, std::string& why);

/// The grid at given parameters, rising, both ends of the domain included.
Polygons tessellateAt(const SurfaceView& s, const std::vector<double>& us, const std::vector<double>& vs, bool quads,
                      bool normalizeUV);

}  // namespace mirk::nurbs
