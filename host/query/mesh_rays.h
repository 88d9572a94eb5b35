// Rays and closest points in the space that a caller asks for, over one mesh.
#pragma once
#include <cmath>
#include <vector>

#include <maya/MIntArray.h>
#include <maya/MStatus.h>

#include "mesh/mesh.h"
#include "mesh/space.h"
#include "query/tree.h"

namespace mirk::query {

/// Faces, or triangles of faces, that a query is restricted to. `triangles` may be null: all of the faces.
struct Restriction
{
    const MIntArray* faces = nullptr;
    const MIntArray* triangles = nullptr;
    bool             sorted = false;    ///< by face, then triangle
};

/// Rays against a mesh in one space: checks the ray, restricts it, and walks both directions.
class MeshRays
{
public:
    MeshRays(const MeshBody& body, const SpaceMatrix& space) : body_(body), space_(space) {}

    /// kFailure for a singular matrix, kInvalidParameter for a ray or restriction that makes no sense.
    MStatus aim(const double source[3], const double direction[3], double maxParam, double tolerance, bool bothDirections,
                const Restriction& to);
    bool closest(RayHit& hit);
    bool any(RayHit& hit);
    /// By rising parameter; a face that is met along a diagonal once.
    std::vector<RayHit> all();

    int  faceOf(const RayHit& hit) const { return hit.face >= 0 ? hit.face : tree().faceOf(hit.triangle); }
    int  localTriangle(const RayHit& hit) const { return hit.face >= 0 ? hit.inFace : tree().inFace(hit.triangle); }
    /// In the caller's space.
    void point(const RayHit& hit, double p[3]) const;

private:
    const Tree& tree() const { return tree_ ? *tree_ : *(tree_ = &body_.tree()); }
    bool        listTriangles(const Restriction& to);
    bool        inListed(RayHit& hit, bool first) const;
    bool        oneWay(RayHit& hit, bool first, const Ray& ray) const;
    bool        bothWays(RayHit& hit, bool first);

    /// Sorted faces, or sorted pairs of face and triangle: answers by bisection.
    struct SortedFilter final : TriangleFilter
    {
        const Tree*        tree = nullptr;
        const Restriction* to = nullptr;
        bool has(int triangle) const override;
    };

    const MeshBody&     body_;
    const SpaceMatrix&  space_;
    mutable const Tree* tree_ = nullptr;   // built at the first need
    Ray                 ray_;
    Restriction        to_;
    SortedFilter       filter_;
    bool               both_ = false, listed_ = false;
    std::vector<int>   list_;    // triangles to test one by one
};

/// Three vertices of a triangle of the mesh.
void trianglePoints(const MeshBody& body, int triangle, Vec3 v[3]);
/// The corners of a triangle of the mesh.
const int* triangleCorners(const MeshBody& body, int triangle);

/// A closest point in the caller's space; the distance is that of the caller's space.
class MeshNearest
{
public:
    /// `worldToMesh` and back as of `space`, which is to be invertible.
    explicit MeshNearest(const SpaceMatrix& space);
    bool find(const Tree& tree, const SpaceMatrix& space, const double point[3], double maxDistance, Nearest& result) const;

private:
    bool   scaled_ = false;   ///< distances differ by a factor only
    double factor_ = 1;
    Metric metric_;
};

inline bool finite(const double p[3]) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

}  // namespace mirk::query
