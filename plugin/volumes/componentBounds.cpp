#include "volumes/componentBounds.h"

#include "core/pointTree.h"

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
template <class Mark>
void eachReached(const std::vector<double>& xyz, const std::vector<Vec>& centers, const std::vector<double>& radii,
                 Mark&& mark)
{
    const PointTree tree(xyz.data(), xyz.size() / 3);
    for (std::size_t j = 0; j < centers.size(); ++j) {
        const double center[3] = {centers[j].x, centers[j].y, centers[j].z};
        for (int id : tree.reached(center, radii[j])) {
            const auto i = static_cast<std::size_t>(id);
            if (volume::cloudDistance(at(xyz, i), centers[j], radii[j]) != volume::kOutside)
                mark(i);
        }
    }
}

/// For up to eight bounds at once: one bit a bound, set for the points inside it.
struct InsideBits
{
    Marks         ofPoint;
    unsigned char contained = 0;   ///< bits of bounds that ask for all points of a component

    void add(const std::vector<double>& xyz, const volume::Volume& volume, unsigned char bit)
    {
        for (std::size_t i = 0; i < ofPoint.size(); ++i) {
            const Vec p = at(xyz, i);
            if (volume.box.contains(p) && volume::distance(volume, p) != volume::kOutside)
                ofPoint[i] |= bit;
        }
        contained |= volume.contained ? bit : 0;
    }
    void add(const std::vector<double>& xyz, const ComponentBounds& cloud, unsigned char bit)
    {
        if (static_cast<double>(ofPoint.size()) * static_cast<double>(cloud.centers.size()) > kManyTests)
            return eachReached(xyz, cloud.centers, cloud.radii, [&](std::size_t i) { ofPoint[i] |= bit; });
        const volume::Box box = volume::cloudBox(cloud.centers.data(), cloud.radii.data(), cloud.centers.size());
        for (std::size_t i = 0; i < ofPoint.size(); ++i)
            if (box.contains(at(xyz, i)) && reached(at(xyz, i), cloud.centers, cloud.radii))
                ofPoint[i] |= bit;
    }
    /// Whether a bound takes in the component of these points.
    bool takes(const int* begin, const int* end) const
    {
        unsigned char any = 0, all = 0xff;
        for (; begin != end; ++begin) {
            const unsigned char bits = ofPoint[static_cast<std::size_t>(*begin)];
            any |= bits;
            all &= bits;
        }
        return (any & ~contained) != 0 || (any & all & contained) != 0;
    }
};

void addTaken(const MeshTables& mesh, ComponentKind kind, const InsideBits& inside, Marks& marks)
{
    const std::vector<int>& corners = kind == ComponentKind::kEdge ? mesh.edgeVertices : mesh.cornerVertices;
    switch (kind) {
    case ComponentKind::kEdge:
        for (std::size_t e = 0; e < marks.size() && 2 * e + 1 < corners.size(); ++e)
            marks[e] |= static_cast<unsigned char>(inside.takes(&corners[2 * e], &corners[2 * e] + 2));
        break;
    case ComponentKind::kFace:
        for (std::size_t f = 0; f < marks.size() && f + 1 < mesh.faceFirst.size(); ++f)
            marks[f] |= static_cast<unsigned char>(
                inside.takes(corners.data() + mesh.faceFirst[f], corners.data() + mesh.faceFirst[f + 1]));
        break;
    case ComponentKind::kMap: addMarks(marks, uvsOfVertices(mesh, inside.ofPoint)); break;
    default:                  addMarks(marks, inside.ofPoint);   // one point each
    }
}

} // namespace

Marks componentsInside(const MeshTables& mesh, ComponentKind kind, int count, const std::vector<double>& xyz,
                       const ComponentBounds& bounds)
{
    Marks         marks(static_cast<std::size_t>(count), 0);
    InsideBits    inside;
    unsigned char bit = 0;
    for (std::size_t j = 0; j < bounds.volumes.size(); ++j) {
        const volume::Volume& volume = bounds.volumes[j];
        const bool            cloud = volume.kind == volume::Kind::kCloud;
        if (!(volume.envelope > 0.0) || (cloud && j > 0))   // a cloud behind another bound has no effect
            continue;
        if (bit == 0) {
            bit = 1;
            inside.ofPoint.assign(xyz.size() / 3, 0);
            inside.contained = 0;
        }
        cloud ? inside.add(xyz, bounds, bit) : inside.add(xyz, volume, bit);
        bit = static_cast<unsigned char>(bit << 1);
        if (bit == 0)   // eight are together
            addTaken(mesh, kind, inside, marks);
    }
    if (bit != 0)
        addTaken(mesh, kind, inside, marks);
    for (unsigned char& mark : marks)
        mark = mark != 0;
    return marks;
}
