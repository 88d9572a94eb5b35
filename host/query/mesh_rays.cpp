#include "query/mesh_rays.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace mirk::query {

const int* triangleCorners(const MeshBody& body, int triangle) { return body.triangles().data() + 3 * size_t(triangle); }

void trianglePoints(const MeshBody& body, int triangle, Vec3 v[3])
{
    const int* corner = triangleCorners(body, triangle);
    for (int k = 0; k < 3; ++k)
        v[k] = Vec3(body.points() + 3 * size_t(body.topology().connects()[size_t(corner[k])]));
}

// ---- rays ----------------------------------------------------------------------------------------------------------

MStatus MeshRays::aim(const double source[3], const double direction[3], double maxParam, double tolerance,
                      bool bothDirections, const Restriction& to)
{
    if (!finite(source) || !finite(direction) || std::isnan(maxParam) || !(tolerance >= 0) || std::isinf(tolerance))
        return MS::kInvalidParameter;
    if (!space_.invertible())
        return MS::kFailure;
    double origin[3];
    space_.pointIn(source, origin);
    const Vec3 along = space_.vectorIn({direction[0], direction[1], direction[2]});
    const double parts[3] = {along.x, along.y, along.z};
    if (!finite(origin) || !finite(parts) || (along.x == 0 && along.y == 0 && along.z == 0))
        return MS::kInvalidParameter;
    ray_ = {{origin[0], origin[1], origin[2]}, along, 0, std::min(maxParam, DBL_MAX), tolerance, nullptr};
    both_ = bothDirections;
    to_ = to;
    listed_ = to.faces != nullptr;
    if (!listed_)
        return to.triangles ? MS::kInvalidParameter : MS::kSuccess;
    if (to.triangles && to.triangles->length() != to.faces->length())
        return MS::kInvalidParameter;
    if (to.sorted && to.faces->length() > 64) {   // the tree is faster than one by one
        listed_ = false;
        filter_.tree = &tree();
        filter_.to = &to_;
        ray_.filter = &filter_;
        return MS::kSuccess;
    }
    return listTriangles(to) ? MS::kSuccess : MS::kInvalidParameter;
}

bool MeshRays::listTriangles(const Restriction& to)
{
    const Topology& t = body_.topology();
    list_.clear();
    for (unsigned i = 0; i < to.faces->length(); ++i) {
        const int face = (*to.faces)[i];
        if (face < 0 || face >= t.faceCount())
            return false;
        const int first = firstTriangle(t, face), count = t.faceSize(face) - 2;
        if (!to.triangles) {
            for (int k = 0; k < count; ++k)
                list_.push_back(first + k);
            continue;
        }
        const int local = (*to.triangles)[i];
        if (local < 0 || local >= count)
            return false;
        list_.push_back(first + local);
    }
    return true;
}

bool MeshRays::SortedFilter::has(int triangle) const
{
    const int  face = tree->faceOf(triangle), local = tree->inFace(triangle);
    unsigned   low = 0, high = to->faces->length();
    while (low < high) {
        const unsigned middle = low + (high - low) / 2;
        const int      f = (*to->faces)[middle];
        const bool     before = f != face ? f < face : to->triangles && (*to->triangles)[middle] < local;
        if (before)
            low = middle + 1;
        else
            high = middle;
    }
    return low < to->faces->length() && (*to->faces)[low] == face
           && (!to->triangles || (*to->triangles)[low] == local);
}

bool MeshRays::oneWay(RayHit& hit, bool first, const Ray& ray) const
{
    if (!listed_)
        return first ? tree().anyHit(ray, hit) : tree().closestHit(ray, hit);
    bool found = false;
    for (int triangle : list_) {
        Vec3   v[3];
        RayHit h;
        trianglePoints(body_, triangle, v);
        if (!intersect(v, ray, h) || (found && !(h.t < hit.t || (h.t == hit.t && triangle < hit.triangle))))
            continue;
        hit = h;
        hit.triangle = triangle;
        found = true;
        if (first)
            break;
    }
    return found;
}

bool MeshRays::bothWays(RayHit& hit, bool first)
{
    const bool ahead = oneWay(hit, first, ray_);
    if (!both_ || (ahead && first))
        return ahead;
    Ray back = ray_;
    back.direction = back.direction * -1;
    if (ahead)
        back.tMax = hit.t;
    RayHit behind;
    if (!oneWay(behind, first, back) || (ahead && !(behind.t < hit.t)))
        return ahead;
    hit = behind;
    hit.t = -hit.t;
    return true;
}

bool MeshRays::closest(RayHit& hit) { return bothWays(hit, false); }

bool MeshRays::any(RayHit& hit) { return bothWays(hit, true); }

std::vector<RayHit> MeshRays::all()
{
    std::vector<RayHit> hits;
    Ray ray = ray_;
    for (int way = 0; way < (both_ ? 2 : 1); ++way) {
        const size_t from = hits.size();
        if (listed_) {
            for (int triangle : list_) {
                Vec3   v[3];
                RayHit h;
                trianglePoints(body_, triangle, v);
                if (intersect(v, ray, h)) {
                    h.triangle = triangle;
                    hits.push_back(h);
                }
            }
        } else {
            tree().allHits(ray, hits);
        }
        for (size_t i = from; way == 1 && i < hits.size(); ++i)
            hits[i].t = -hits[i].t;
        ray.direction = ray.direction * -1;
    }
    std::sort(hits.begin(), hits.end(), [](const RayHit& a, const RayHit& b) {
        return a.t != b.t ? a.t < b.t : a.triangle < b.triangle;
    });
    // the triangles of one face share the hit on their diagonal, both directions the one at the source
    std::vector<RayHit> once;
    for (const RayHit& h : hits) {
        const double near = 1e-9 * std::fabs(h.t) + 1e-12;
        bool         again = false;
        for (size_t k = once.size(); k-- > 0 && !again && h.t - once[k].t <= near;)
            again = faceOf(once[k]) == faceOf(h);
        if (!again)
            once.push_back(h);
    }
    return once;
}

void MeshRays::point(const RayHit& hit, double p[3]) const
{
    const double inside[3] = {hit.point.x, hit.point.y, hit.point.z};
    space_.pointOut(inside, p);
}

// ---- closest points ------------------------------------------------------------------------------------------------

MeshNearest::MeshNearest(const SpaceMatrix& space)
{
    if (!space.active())
        return;
    const auto& m = space.linear();
    double gram[3][3], inverseSq = 0;
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k) {
            metric_.m[i][k] = m[i][k];
            gram[i][k] = m[i][0] * m[k][0] + m[i][1] * m[k][1] + m[i][2] * m[k][2];
            inverseSq += space.linearInverse()[i][k] * space.linearInverse()[i][k];
        }
    const double mean = (gram[0][0] + gram[1][1] + gram[2][2]) / 3, little = 1e-12 * mean;
    factor_ = std::sqrt(mean);
    metric_.shrink = 1 / std::sqrt(inverseSq);
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k)
            scaled_ = scaled_ || !(std::fabs(gram[i][k] - (i == k ? mean : 0)) <= little);
    scaled_ = !scaled_;
}

bool MeshNearest::find(const Tree& tree, const SpaceMatrix& space, const double point[3], double maxDistance,
                       Nearest& result) const
{
    double p[3];
    space.pointIn(point, p);
    if (!finite(p))
        return false;
    const Vec3 at(p[0], p[1], p[2]);
    if (!space.active())
        return tree.nearest(at, maxDistance, result);
    return scaled_ ? tree.nearest(at, maxDistance / factor_, result) : tree.nearest(at, maxDistance, result, &metric_);
}

}  // namespace mirk::query
