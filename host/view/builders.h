// What scenes are drawn with: cameras from film and lens, items from meshes, curves and locators.
#pragma once
#include <span>

#include "view/draw_list.h"

namespace mirk::view {

/// A camera as its node describes it.
struct Lens
{
    double focalLength = 35;                                ///< millimetres
    double horizontalAperture = 1.417, verticalAperture = 0.945;   ///< inches
    int    filmFit = 0;                                     ///< 0 fill, 1 horizontal, 2 vertical, 3 overscan
    bool   orthographic = false;
    double orthographicWidth = 10;
    double nearClip = 0.1, farClip = 10000;
};

/// View and projection for a picture. `eyeToWorld` is the camera's inclusive matrix; its scale and shear are ignored.
Camera makeCamera(const Matrix& eyeToWorld, const Lens& lens, int width, int height);

/// A matrix of a camera at a point that looks at another, y up where possible.
Matrix lookAt(double eyeX, double eyeY, double eyeZ, double atX, double atY, double atZ);

/// A mesh as flat arrays. Per-corner arrays go along `connects`. An empty one is not there.
struct MeshArrays
{
    std::span<const float> points;          ///< 3 a vertex
    std::span<const int>   counts;          ///< corners of each face
    std::span<const int>   connects;        ///< vertex of each corner
    std::span<const int>   triangles;       ///< 3 corners (places in connects) a triangle; else faces are cut into fans
    std::span<const float> cornerNormals;   ///< 3 a corner; else the shading shows facets
    std::span<const float> cornerColors;    ///< 4 a corner; with red and alpha below 0 the corner takes `state.color`
    std::span<const float> cornerUVs;       ///< 2 a corner
};

/// Lit triangles; with `edges` the mesh's edges are in the wire array. Faces with a vertex out of range are left out.
Item meshItem(const MeshArrays& mesh, const State& state, bool edges);

/// The edges alone.
Item wireItem(const MeshArrays& mesh, const State& state);

/// A polyline through points, 3 floats each.
Item curveItem(std::span<const float> points, bool closed, const State& state);

/// Three lines that cross at a position along the axes, a locator's shape.
Item crossItem(const double position[3], const double halfSize[3], const State& state);

/// The ground grid in x and z, the two axes apart so that they can stand out.
void addGrid(DrawList& list, double halfSize = 12, double spacing = 1);

}  // namespace mirk::view
