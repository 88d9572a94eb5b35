// Voronoi cells of points: which of them touch, and the planes that part them. Points are x, y, z in sequence, three
// values a point, in the object space of the geometry that is cut.
#pragma once
#include <cstddef>
#include <map>
#include <vector>

namespace voronoi {

/// For a point the points whose cells touch its own, in the order in which the triangulation meets them. Points that
/// have no cell of their own have no entry: duplicates and points with a coordinate that single precision cannot hold.
using Neighbors = std::map<int, std::vector<int>>;

/// Adds the pairs of corners of simplices (tetrahedra or triangles) to the table, each once and in both directions.
///
/// @param corners      simplexCount * cornerCount vertex indices
/// @param vertexPoint  the point that a vertex stands for
void addPairs(const int* corners, int simplexCount, int cornerCount, const std::vector<int>& vertexPoint,
              Neighbors& neighbors);

/// A plane that holds all points: a place on it and two directions along it.
struct Plane
{
    float origin[3] = {0, 0, 0}, directions[2][3] = {{1, 0, 0}, {0, 1, 0}};
};

struct Space
{
    int       dimension = 0;   ///< of the set of points, 0 to 3
    Neighbors neighbors;       ///< dimension 3 only
    Plane     plane;           ///< dimension 2 only
};

/// Touching cells by the tetrahedra of a Delaunay triangulation. Points are narrowed to single precision and, for the
/// comparisons, to a grid of 1024 steps along the longest side of their box.
Space neighborsInSpace(const std::vector<double>& points);

/// A matrix for row vectors from the plane's frame (x and y along its directions, z across, all of length 1) to the
/// space of the points; not affine only in what single precision rounds.
void planeFrame(const Plane& plane, float frame[4][4]);

/// Touching cells of points in a plane, by the triangles of a Delaunay triangulation.
///
/// @param toPlane  from the space of the points to the plane's frame
Neighbors neighborsInPlane(const std::vector<double>& points, const float toPlane[4][4]);

/// The plane between a point and its neighbour, as the cutting node takes it.
struct Cut
{
    double center[3];   ///< half-way, moved towards the point by `distance` times the way between them
    double rotate[2];   ///< about x, then about y, in degrees: turns z to the side of the point
};

/// @param distance  share of the way, 0 for half-way; negative counts as 0
Cut cutBetween(const double point[3], const double neighbor[3], double distance);

/// What lengths given to the cutting node are multiplied by, for the number of the user's unit (1 inches to 8 metres).
/// The values are rounded; pieces that were cut with them rely on that.
double lengthScale(int unit);

} // namespace voronoi
