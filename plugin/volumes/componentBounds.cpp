#include "volumes/componentBounds.h"

#include <algorithm>

#include "volumes/pointTree.h"

using volume::Vec;

namespace {

/// Above so many tests a tree pays.
constexpr double kManyTests = 1e6;

Vec at(const std::vector<double>& xyz, std::size_t i) { return {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]}; }

bool reached(Vec point, const std::vector<Vec>& centers, const std::vector<double>& radii)
{
    for (std::size_t j = 0; j < centers.size(); ++j)
        if (volume::cloudDistance(point, centers[j], radii[j]) != volume::kOutside)
            return true;
    return false;
}

/// The same as asking every point, from the side of the spheres.
void markReached(const std::vector<double>& xyz, const std::vector<Vec>& centers, const std::vector<double>& radii,
                 Marks& marks)
{
    const PointTree tree(xyz);
    for (std::size_t j = 0; j < centers.size(); ++j) {
        const double center[3] = {centers[j].x, centers[j].y, centers[j].z};
        for (int id : tree.within(center, radii[j])) {
            const auto i = static_cast<std::size_t>(id);
            marks[i] |= static_cast<unsigned char>(volume::cloudDistance(at(xyz, i), centers[j], radii[j]) !=
                                                   volume::kOutside);
        }
    }
}

Marks taken(const MeshTables& mesh, ComponentKind kind, const Marks& inside, bool contained)
{
    switch (kind) {
    case ComponentKind::kEdge: return contained ? edgesWithBoth(mesh, inside) : edgesWithAny(mesh, inside);
    case ComponentKind::kFace: return contained ? facesWithAll(mesh, mesh.cornerVertices, inside)
                                                : facesWithAny(mesh, mesh.cornerVertices, inside);
    case ComponentKind::kMap:  return uvsOfVertices(mesh, inside);
    default:                   return inside;   // one point each
    }
}

} // namespace

Marks pointsInside(const std::vector<double>& xyz, const volume::Volume& volume)
{
    Marks inside(xyz.size() / 3, 0);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        const Vec p = at(xyz, i);
        inside[i] = volume.box.contains(p) && volume::distance(volume, p) != volume::kOutside;
    }
    return inside;
}

Marks pointsInside(const std::vector<double>& xyz, const std::vector<Vec>& centers, const std::vector<double>& radii)
{
    Marks             inside(xyz.size() / 3, 0);
    const volume::Box box = volume::cloudBox(centers.data(), radii.data(), centers.size());
    if (static_cast<double>(inside.size()) * static_cast<double>(centers.size()) > kManyTests) {
        markReached(xyz, centers, radii, inside);
        return inside;
    }
    for (std::size_t i = 0; i < inside.size(); ++i)
        inside[i] = box.contains(at(xyz, i)) && reached(at(xyz, i), centers, radii);
    return inside;
}

Marks componentsInside(const MeshTables& mesh, ComponentKind kind, int count, const std::vector<double>& xyz,
                       const ComponentBounds& bounds)
{
    Marks marks(static_cast<std::size_t>(count), 0);
    for (std::size_t j = 0; j < bounds.volumes.size(); ++j) {
        const volume::Volume& volume = bounds.volumes[j];
        const bool            cloud = volume.kind == volume::Kind::kCloud;
        if (!(volume.envelope > 0.0) || (cloud && j > 0))   // a cloud behind another bound has no effect
            continue;
        const Marks inside = cloud ? pointsInside(xyz, bounds.centers, bounds.radii) : pointsInside(xyz, volume);
        if (std::find(inside.begin(), inside.end(), 1) != inside.end())
            addMarks(marks, taken(mesh, kind, inside, volume.contained && !cloud));
    }
    return marks;
}
