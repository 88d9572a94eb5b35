#include "view/builders.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "view/shapes.h"

namespace mirk::view {

namespace {

Vec3 row(const Matrix& m, int r) { return {m[r * 4], m[r * 4 + 1], m[r * 4 + 2]}; }
double dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Matrix viewOf(const Matrix& eyeToWorld)
{
    // y and then x are kept as near as right angles allow; z follows
    const Axes axes = axesAlong(row(eyeToWorld, 3), row(eyeToWorld, 1), row(eyeToWorld, 0));
    Matrix view = kIdentity;
    const Vec3 basis[] = {axes.x, axes.y, axes.z};
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r)
            view[r * 4 + c] = basis[c][r];
        view[12 + c] = -dot(axes.origin, basis[c]);
    }
    return view;
}

/// Half width and height of what the film sees, for one unit of distance (or in scene units if orthographic).
std::pair<double, double> halfExtent(const Lens& lens, double aspect)
{
    if (lens.orthographic)
        return {lens.orthographicWidth / 2, lens.orthographicWidth / 2 / aspect};
    const double focal = std::max(lens.focalLength, 1e-3) / 25.4;   // inches, as the film
    const double halfX = lens.horizontalAperture / 2 / focal, halfY = lens.verticalAperture / 2 / focal;
    const bool   filmIsWider = lens.horizontalAperture > aspect * lens.verticalAperture;
    const bool   byWidth = lens.filmFit == 1 || (lens.filmFit == 0 && !filmIsWider) || (lens.filmFit == 3 && filmIsWider);
    return byWidth ? std::pair{halfX, halfX / aspect} : std::pair{halfY * aspect, halfY};
}

/// Which item vertex each corner uses: corners of one mesh vertex share if normal, colour and UV agree.
class Corners
{
public:
    explicit Corners(const MeshArrays& mesh) : mesh_(mesh), first_(mesh.points.size() / 3, -1) {}

    uint32_t vertex(size_t corner, Item& item, const Color& unset)
    {
        const auto meshVertex = static_cast<size_t>(mesh_.connects[corner]);
        float look[9] = {0, 0, 0, unset.r, unset.g, unset.b, unset.a, 0, 0};
        if (hasNormals())
            std::copy_n(&mesh_.cornerNormals[corner * 3], 3, look);
        if (hasColors() && !(mesh_.cornerColors[corner * 4] < 0 && mesh_.cornerColors[corner * 4 + 3] < 0))
            std::copy_n(&mesh_.cornerColors[corner * 4], 4, look + 3);
        if (hasUVs())
            std::copy_n(&mesh_.cornerUVs[corner * 2], 2, look + 7);
        for (int v = first_[meshVertex]; v >= 0; v = next_[size_t(v)])
            if (same(item, size_t(v), look))
                return static_cast<uint32_t>(v);
        next_.push_back(first_[meshVertex]);
        first_[meshVertex] = static_cast<int>(next_.size() - 1);
        item.positions.insert(item.positions.end(), &mesh_.points[meshVertex * 3], &mesh_.points[meshVertex * 3] + 3);
        if (hasNormals())
            item.normals.insert(item.normals.end(), look, look + 3);
        if (hasColors())
            item.colors.insert(item.colors.end(), look + 3, look + 7);
        if (hasUVs())
            item.uvs.insert(item.uvs.end(), look + 7, look + 9);
        return static_cast<uint32_t>(next_.size() - 1);
    }

private:
    bool hasNormals() const { return mesh_.cornerNormals.size() >= mesh_.connects.size() * 3; }
    bool hasColors() const { return mesh_.cornerColors.size() >= mesh_.connects.size() * 4; }
    bool hasUVs() const { return !mesh_.cornerUVs.empty() && mesh_.cornerUVs.size() >= mesh_.connects.size() * 2; }
    bool same(const Item& item, size_t v, const float look[9]) const
    {
        return (!hasNormals() || std::equal(look, look + 3, &item.normals[v * 3])) &&
               (!hasColors() || std::equal(look + 3, look + 7, &item.colors[v * 4])) &&
               (!hasUVs() || std::equal(look + 7, look + 9, &item.uvs[v * 2]));
    }

    const MeshArrays& mesh_;
    std::vector<int>  first_, next_;   // chains of item vertices: head by mesh vertex, then one to the next
};

struct Face { size_t first, count; };

std::vector<Face> validFaces(const MeshArrays& mesh)
{
    const size_t vertexCount = mesh.points.size() / 3;
    std::vector<Face> faces;
    size_t first = 0;
    for (const int count : mesh.counts) {
        if (count < 0 || first + size_t(count) > mesh.connects.size())
            break;
        const auto corners = mesh.connects.subspan(first, size_t(count));
        if (count > 2 && std::all_of(corners.begin(), corners.end(), [&](int v) { return v >= 0 && size_t(v) < vertexCount; }))
            faces.push_back({first, size_t(count)});
        first += size_t(count);
    }
    return faces;
}

/// Edges between item vertices, each mesh edge once. `vertexOf` gives the item vertex of a corner.
template <class VertexOf>
std::vector<uint32_t> edgesOf(const MeshArrays& mesh, const std::vector<Face>& faces, VertexOf vertexOf)
{
    struct Edge { int low, high; size_t a, b; };
    std::vector<Edge> edges;
    for (const Face& f : faces)
        for (size_t i = 0; i < f.count; ++i) {
            const size_t a = f.first + i, b = f.first + (i + 1) % f.count;
            edges.push_back({std::min(mesh.connects[a], mesh.connects[b]), std::max(mesh.connects[a], mesh.connects[b]), a, b});
        }
    std::sort(edges.begin(), edges.end(), [](const Edge& x, const Edge& y) {
        return x.low != y.low ? x.low < y.low : x.high != y.high ? x.high < y.high : x.a < y.a;
    });
    std::vector<uint32_t> out;
    for (size_t i = 0; i < edges.size(); ++i)
        if (!i || edges[i].low != edges[i - 1].low || edges[i].high != edges[i - 1].high) {
            out.push_back(vertexOf(edges[i].a));
            out.push_back(vertexOf(edges[i].b));
        }
    return out;
}

}  // namespace

Camera makeCamera(const Matrix& eyeToWorld, const Lens& lens, int width, int height)
{
    Camera camera;
    camera.width = width;
    camera.height = height;
    camera.view = viewOf(eyeToWorld);
    const auto [halfX, halfY] = halfExtent(lens, height > 0 ? double(width) / height : 1);
    const double n = lens.nearClip, f = std::max(lens.farClip, n * 1.001 + 1e-6);
    Matrix& p = camera.projection;
    p = Matrix{};
    p[0] = 1 / std::max(halfX, 1e-12);
    p[5] = 1 / std::max(halfY, 1e-12);
    if (lens.orthographic) {
        p[10] = -2 / (f - n);
        p[14] = -(f + n) / (f - n);
        p[15] = 1;
    } else {
        p[10] = -(f + n) / (f - n);
        p[11] = -1;
        p[14] = -2 * f * n / (f - n);
    }
    return camera;
}

Matrix lookAt(double eyeX, double eyeY, double eyeZ, double atX, double atY, double atZ)
{
    const Vec3 back{eyeX - atX, eyeY - atY, eyeZ - atZ};
    // axes whose y is the back axis and whose x is at right angles to world up; looking straight up or down, x stays x
    const bool steep = std::hypot(back[0], back[2]) < 1e-9 * std::fabs(back[1]);
    const Axes a = axesAlong({eyeX, eyeY, eyeZ}, back, steep ? Vec3{1, 0, 0} : Vec3{back[2], 0, -back[0]});
    return {a.x[0], a.x[1], a.x[2], 0, -a.z[0], -a.z[1], -a.z[2], 0, a.y[0], a.y[1], a.y[2], 0, eyeX, eyeY, eyeZ, 1};
}

Item meshItem(const MeshArrays& mesh, const State& state, bool edges)
{
    Item item;
    item.state = state;
    item.state.lit = true;
    const std::vector<Face> faces = validFaces(mesh);
    Corners corners(mesh);
    std::vector<uint32_t> vertexOf(mesh.connects.size(), UINT32_MAX);
    for (const Face& f : faces)
        for (size_t c = f.first; c < f.first + f.count; ++c)
            vertexOf[c] = corners.vertex(c, item, state.color);
    if (!mesh.triangles.empty()) {
        for (const int corner : mesh.triangles)   // what is out of range falls away when the item is drawn
            item.indices.push_back(corner >= 0 && size_t(corner) < vertexOf.size() ? vertexOf[size_t(corner)] : UINT32_MAX);
    } else {
        for (const Face& f : faces)
            for (size_t i = 2; i < f.count; ++i)
                item.indices.insert(item.indices.end(), {vertexOf[f.first], vertexOf[f.first + i - 1], vertexOf[f.first + i]});
    }
    if (item.indices.empty())
        item.positions.clear();   // a mesh without faces: no stray triangle from loose points
    else if (edges)
        item.wire = edgesOf(mesh, faces, [&](size_t corner) { return vertexOf[corner]; });
    return item;
}

Item wireItem(const MeshArrays& mesh, const State& state)
{
    Item item;
    item.primitive = Primitive::kLines;
    item.state = state;
    item.indices = edgesOf(mesh, validFaces(mesh), [&](size_t corner) { return uint32_t(mesh.connects[corner]); });
    if (!item.indices.empty())
        item.positions.assign(mesh.points.begin(), mesh.points.end());
    return item;
}

Item curveItem(std::span<const float> points, bool closed, const State& state)
{
    Item item;
    item.primitive = Primitive::kLines;
    item.state = state;
    const size_t count = points.size() / 3;
    if (count < 2)
        return item;
    item.positions.assign(points.begin(), points.begin() + std::ptrdiff_t(count * 3));
    for (uint32_t i = 1; i < count; ++i)
        item.indices.insert(item.indices.end(), {i - 1, i});
    if (closed && count > 2)
        item.indices.insert(item.indices.end(), {uint32_t(count - 1), 0u});
    return item;
}

Item crossItem(const double position[3], const double halfSize[3], const State& state)
{
    Item item;
    item.primitive = Primitive::kLines;
    item.state = state;
    for (int axis = 0; axis < 3; ++axis)
        for (const double side : {-1.0, 1.0})
            for (int c = 0; c < 3; ++c)
                item.positions.push_back(float(position[c] + (c == axis ? side * halfSize[c] : 0)));
    return item;
}

void addGrid(DrawList& list, double halfSize, double spacing)
{
    if (!(spacing > 0) || !(halfSize >= spacing) || halfSize / spacing > 1000)
        return;
    Item lines, axes;
    const int n = int(halfSize / spacing);
    const float end = float(n * spacing);
    for (int i = -n; i <= n; ++i) {
        std::vector<float>& to = i == 0 ? axes.positions : lines.positions;
        const float at = float(i * spacing);
        to.insert(to.end(), {at, 0, -end, at, 0, end, -end, 0, at, end, 0, at});
    }
    lines.state.color = {0.36f, 0.37f, 0.38f, 1};
    axes.state.color = {0.13f, 0.13f, 0.14f, 1};
    axes.state.depthPriority = 1;
    lines.primitive = axes.primitive = Primitive::kLines;
    list.items.push_back(std::move(lines));
    list.items.push_back(std::move(axes));
}

}  // namespace mirk::view
