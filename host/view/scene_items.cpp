#include "view/scene_items.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MIntArray.h>
#include <maya/MVector.h>

#include "data/mobject.h"
#include "dynamics/particle.h"
#include "view/builders.h"
#include "view/display_status.h"
#include "view/material.h"

namespace mirk::view {

namespace {

constexpr Color kSurface{0.6f, 0.6f, 0.61f, 1.f};   // of objects without a colour of their own

void place(Item item, const Matrix& matrix, DrawList& list)
{
    item.matrix = matrix;
    if (!item.positions.empty())
        list.items.push_back(std::move(item));
}

std::vector<int> toVector(const MIntArray& a)
{
    std::vector<int> out(a.length());
    for (unsigned i = 0; i < a.length(); ++i)
        out[i] = a[i];
    return out;
}

/// Triangles come with vertex ids; the corners of a face are wanted, since corners carry normals and colours.
std::vector<int> triangleCorners(const MFnMesh& mesh, const std::vector<int>& counts, const std::vector<int>& connects)
{
    MIntArray perFace, vertices;
    mesh.getTriangles(perFace, vertices);
    std::vector<int> corners;
    corners.reserve(vertices.length());
    unsigned next = 0;
    int first = 0;
    for (size_t f = 0; f < counts.size() && f < perFace.length(); ++f) {
        const auto begin = connects.begin() + first, end = begin + counts[f];
        for (int i = 0; i < perFace[unsigned(f)] * 3; ++i)
            corners.push_back(first + int(std::find(begin, end, vertices[next++]) - begin));
        first += counts[f];
    }
    return corners;
}

std::vector<float> cornerNormals(const MFnMesh& mesh, size_t cornerCount)
{
    MFloatVectorArray normals;
    MIntArray counts, ids;
    mesh.getNormals(normals);
    mesh.getNormalIds(counts, ids);
    std::vector<float> out;
    if (ids.length() != cornerCount)
        return out;
    out.reserve(cornerCount * 3);
    for (unsigned i = 0; i < ids.length(); ++i) {
        const MFloatVector& n = normals[unsigned(ids[i])];
        out.insert(out.end(), {n.x, n.y, n.z});
    }
    return out;
}

/// Empty if the shape shows no colours.
std::vector<float> cornerColors(const MFnMesh& mesh, Node& shape, size_t cornerCount)
{
    std::vector<float> out;
    if (mesh.numColorSets() < 1 || attributeValue(shape, "displayColors", 1) == 0)
        return out;
    MColorArray colors;
    mesh.getFaceVertexColors(colors);
    if (colors.length() != cornerCount)
        return out;
    out.reserve(cornerCount * 4);
    for (unsigned i = 0; i < colors.length(); ++i)
        out.insert(out.end(), {colors[i].r, colors[i].g, colors[i].b, colors[i].a});
    return out;
}

/// UVs of the current set, two a corner; empty if a face has none.
std::vector<float> cornerUVs(const MFnMesh& mesh, size_t cornerCount)
{
    MFloatArray u, v;
    MIntArray   counts, ids;
    mesh.getUVs(u, v);
    mesh.getAssignedUVs(counts, ids);
    std::vector<float> out;
    if (ids.length() != cornerCount)
        return out;
    out.reserve(cornerCount * 2);
    for (unsigned i = 0; i < ids.length(); ++i)
        out.insert(out.end(), {u[unsigned(ids[i])], v[unsigned(ids[i])]});
    return out;
}

/// The tiles that UVs lie in; those far out are not counted.
Tiles tilesOf(const std::vector<float>& uvs)
{
    constexpr float kFar = 1000;
    float low[2] = {kFar, kFar}, high[2] = {-kFar, -kFar};
    for (size_t i = 0; i < uvs.size(); ++i)
        if (std::fabs(uvs[i]) < kFar) {
            low[i % 2] = std::min(low[i % 2], uvs[i]);
            high[i % 2] = std::max(high[i % 2], uvs[i]);
        }
    Tiles tiles{0, 0, 1, 1};
    for (size_t k = 0; k < 2; ++k)
        if (low[k] <= high[k]) {
            tiles[k] = int(std::floor(low[k]));
            tiles[k + 2] = std::max(int(std::ceil(high[k])), tiles[k] + 1);
        }
    return tiles;
}

/// Triangles of the faces of each shading group, those of no part first. Faces that are named twice go to the last.
std::vector<std::vector<int>> split(const std::vector<int>& triangles, const std::vector<int>& counts, const ShadingGroups& groups)
{
    std::vector<size_t> partOf(counts.size(), 0), partOfCorner;
    for (size_t p = 0; p < groups.parts.size(); ++p)
        for (const int face : groups.parts[p].faces)
            if (face >= 0 && size_t(face) < partOf.size())
                partOf[size_t(face)] = p + 1;
    for (size_t f = 0; f < counts.size(); ++f)
        partOfCorner.insert(partOfCorner.end(), size_t(std::max(counts[f], 0)), partOf[f]);
    std::vector<std::vector<int>> out(groups.parts.size() + 1);
    for (size_t i = 0; i + 2 < triangles.size(); i += 3)
        if (const size_t corner = size_t(triangles[i]); corner < partOfCorner.size())
            out[partOfCorner[corner]].insert(out[partOfCorner[corner]].end(), &triangles[i], &triangles[i] + 3);
    return out;
}

/// An item for each shading group of the mesh. `arrays` has all but UVs.
void addMaterials(const MFnMesh& mesh, MeshArrays arrays, const ShadingGroups& groups, const State& plain, const Matrix& matrix,
                  const Look& look, DrawList& list)
{
    const std::vector<int>           triangles(arrays.triangles.begin(), arrays.triangles.end());
    const std::vector<int>           counts(arrays.counts.begin(), arrays.counts.end());
    const std::vector<float>         uvs = cornerUVs(mesh, arrays.connects.size());
    const Tiles                      tiles = tilesOf(uvs);
    bool                             edges = look.wire;
    const auto                       parts = split(triangles, counts, groups);
    for (size_t p = 0; p < parts.size(); ++p) {
        if (parts[p].empty())
            continue;
        Node*           group = p ? groups.parts[p - 1].group : groups.whole;
        const Material* material = group ? look.materials->of(*group, tiles) : nullptr;
        State           state = plain;
        if (material)
            state.color = material->color;
        std::vector<float> placed;
        if (material && material->texture)
            for (size_t i = 0; i < uvs.size(); ++i)
                placed.push_back((uvs[i] - material->low[i % 2]) / (material->high[i % 2] - material->low[i % 2]));
        arrays.triangles = parts[p];
        arrays.cornerUVs = placed;
        Item item = meshItem(arrays, state, std::exchange(edges, false));
        item.texture = material && !placed.empty() ? material->texture : nullptr;
        place(std::move(item), matrix, list);
    }
}

void addMesh(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    MStatus status;
    const MFnMesh mesh(wrap(&shape), &status);
    const int vertexCount = status ? mesh.numVertices() : 0;
    const float* points = vertexCount > 0 ? mesh.getRawPoints() : nullptr;
    if (!points)
        return;
    MIntArray faceCounts, faceConnects;
    mesh.getVertices(faceCounts, faceConnects);
    const std::vector<int> counts = toVector(faceCounts), connects = toVector(faceConnects);
    MeshArrays arrays;
    arrays.points = {points, size_t(vertexCount) * 3};
    arrays.counts = counts;
    arrays.connects = connects;
    State state;
    state.id = look.id;
    if (!look.shaded) {
        state.color = look.wireColor;
        place(wireItem(arrays, state), matrix, list);
        return;
    }
    const std::vector<int>   triangles = triangleCorners(mesh, counts, connects);
    const std::vector<float> normals = cornerNormals(mesh, connects.size()), colors = cornerColors(mesh, shape, connects.size());
    arrays.triangles = triangles;
    arrays.cornerNormals = normals;
    arrays.cornerColors = colors;
    state.color = kSurface;
    state.wireColor = look.wireColor;
    const ShadingGroups groups = look.materials && colors.empty() ? shadingGroups(shape, look.instance) : ShadingGroups();
    if (groups.none() || triangles.empty())
        place(meshItem(arrays, state, look.wire), matrix, list);
    else
        addMaterials(mesh, arrays, groups, state, matrix, look, list);
}

void addCurve(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    MStatus status;
    const MFnNurbsCurve curve(wrap(&shape), &status);
    double from = 0, to = 0;
    if (!status || !curve.getKnotDomain(from, to))
        return;
    const int count = std::clamp(curve.numSpans() * (curve.degree() > 1 ? 12 : 1), 1, 100000);
    std::vector<float> points;
    for (int i = 0; i <= count; ++i) {
        MPoint p;
        if (curve.getPointAtParam(i == count ? to : from + (to - from) * i / count, p))
            points.insert(points.end(), {float(p.x), float(p.y), float(p.z)});
    }
    State state;
    state.color = look.wireColor;
    state.id = look.id;
    place(curveItem(points, false, state), matrix, list);
}

/// Samples on a grid of parameters, V fastest.
struct Samples
{
    int u = 0, v = 0;   ///< steps; one more sample each
    std::vector<float> points, normals;
};

Samples sample(const MFnNurbsSurface& surface, double u0, double u1, double v0, double v1)
{
    Samples s;
    s.u = std::clamp(surface.numSpansInU() * 8, 1, 400);
    s.v = std::clamp(surface.numSpansInV() * 8, 1, 400);
    for (int i = 0; i <= s.u; ++i)
        for (int j = 0; j <= s.v; ++j) {
            const double u = i == s.u ? u1 : u0 + (u1 - u0) * i / s.u, v = j == s.v ? v1 : v0 + (v1 - v0) * j / s.v;
            MPoint p;
            surface.getPointAtParam(u, v, p);
            const MVector n = surface.normal(u, v);
            s.points.insert(s.points.end(), {float(p.x), float(p.y), float(p.z)});
            s.normals.insert(s.normals.end(), {float(n.x), float(n.y), float(n.z)});
        }
    return s;
}

void addSurface(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    MStatus status;
    const MFnNurbsSurface surface(wrap(&shape), &status);
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    if (!status || !surface.getKnotDomain(u0, u1, v0, v1))
        return;
    Samples s = sample(surface, u0, u1, v0, v1);
    Item item;
    item.state.id = look.id;
    item.positions = std::move(s.points);
    std::vector<uint32_t> lines;   // curves of constant parameter at the spans' borders
    const auto at = [&](int i, int j) { return uint32_t(i * (s.v + 1) + j); };
    for (int i = 0; i <= s.u; ++i)
        for (int j = 0; j <= s.v; ++j) {
            if (i < s.u && j % 8 == 0)
                lines.insert(lines.end(), {at(i, j), at(i + 1, j)});
            if (j < s.v && i % 8 == 0)
                lines.insert(lines.end(), {at(i, j), at(i, j + 1)});
            if (look.shaded && i < s.u && j < s.v)
                item.indices.insert(item.indices.end(), {at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j), at(i + 1, j + 1), at(i, j + 1)});
        }
    if (look.shaded) {
        item.normals = std::move(s.normals);
        item.state.color = kSurface;
        item.state.lit = true;
        item.state.wireColor = look.wireColor;
        if (look.wire)
            item.wire = std::move(lines);
    } else {
        item.primitive = Primitive::kLines;
        item.state.color = look.wireColor;
        item.indices = std::move(lines);
    }
    place(std::move(item), matrix, list);
}

void addLocator(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    const double position[] = {attributeValue(shape, "localPositionX"), attributeValue(shape, "localPositionY"),
                               attributeValue(shape, "localPositionZ")};
    const double scale[] = {attributeValue(shape, "localScaleX", 1), attributeValue(shape, "localScaleY", 1),
                            attributeValue(shape, "localScaleZ", 1)};
    State state;
    state.color = look.wireColor;
    state.id = look.id;
    place(crossItem(position, scale, state), matrix, list);
}

/// Points in the colours of rgbPP, if there are any.
void addParticles(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    Item item;
    item.primitive = Primitive::kPoints;
    item.state.id = look.id;
    item.state.color = look.wireColor;
    item.state.pointSize = float(attributeValue(shape, "pointSize", 2));
    for (const MVector& p : dynamics::vectors(shape, "position"))
        item.positions.insert(item.positions.end(), {float(p.x), float(p.y), float(p.z)});
    const std::vector<MVector> colors = dynamics::vectors(shape, "rgbPP");
    if (colors.size() * 3 == item.positions.size())
        for (const MVector& c : colors)
            item.colors.insert(item.colors.end(), {float(c.x), float(c.y), float(c.z), 1.f});
    place(std::move(item), matrix, list);
}

/// A box behind the eye, and the frame that the lens sees at a small distance before it.
void addCamera(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    const double size = attributeValue(shape, "locatorScale", 1), focal = attributeValue(shape, "focalLength", 35) / 25.4;
    const bool   parallel = attributeValue(shape, "orthographic") != 0;
    const double wide = attributeValue(shape, "horizontalFilmAperture", 1.417), high = attributeValue(shape, "verticalFilmAperture", 0.945);
    const double x = (parallel ? 0.5 : 0.5 * wide / std::max(focal, 1e-3)) * size, y = x * (wide > 0 ? high / wide : 1), z = -size;
    const double eyeX = parallel ? x : 0, eyeY = parallel ? y : 0, b = 0.3 * size;
    std::vector<float> p;
    const auto line = [&](double ax, double ay, double az, double bx, double by, double bz) {
        for (double v : {ax, ay, az, bx, by, bz})
            p.push_back(float(v));
    };
    for (const auto& [i, j] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}) {
        line(i * eyeX, j * eyeY, 0, i * x, j * y, z);
        line(i * x, j * y, z, -j * x, i * y, z);                  // on to the next corner
        line(i * b, j * b, 0, -j * b, i * b, 0);
        line(i * b, j * b, 2 * b, -j * b, i * b, 2 * b);
        line(i * b, j * b, 0, i * b, j * b, 2 * b);
    }
    Item item;
    item.primitive = Primitive::kLines;
    item.state.color = look.wireColor;
    item.state.id = look.id;
    item.positions = std::move(p);
    place(std::move(item), matrix, list);
}

MVector originOf(const Path& path)
{
    double m[4][4];
    dag::inclusiveMatrix(path, m);
    return {m[3][0], m[3][1], m[3][2]};
}

void addLine(std::vector<float>& to, const MVector& a, const MVector& b)
{
    for (const MVector& p : {a, b})
        to.insert(to.end(), {float(p.x), float(p.y), float(p.z)});
}

/// Three circles about a point.
void addBall(std::vector<float>& to, const MVector& at, double radius)
{
    constexpr int kSteps = 24;
    for (unsigned axis = 0; axis < 3; ++axis) {
        MVector before;
        for (int i = 0; i <= kSteps; ++i) {
            MVector p = at;
            p[(axis + 1) % 3] += radius * std::cos(2 * M_PI * i / kSteps);
            p[(axis + 2) % 3] += radius * std::sin(2 * M_PI * i / kSteps);
            if (i)
                addLine(to, before, p);
            before = p;
        }
    }
}

/// A pyramid on a square about the ball, its tip at the next joint.
void addBone(std::vector<float>& to, const MVector& from, const MVector& tip, double radius)
{
    const MVector along = tip - from;
    if (!(along.length() > radius))
        return;
    const MVector way = along.normal(), side = (std::abs(way.y) < 0.9 ? way ^ MVector(0, 1, 0) : way ^ MVector(1, 0, 0)).normal(), up = side ^ way;
    const MVector base = from + way * radius, corners[] = {side, up, -side, -up};
    for (int i = 0; i < 4; ++i) {
        const MVector corner = base + corners[i] * radius;
        addLine(to, corner, base + corners[(i + 1) % 4] * radius);
        addLine(to, corner, tip);
    }
}

}  // namespace

void addJoint(const Path& joint, const Look& look, DrawList& list)
{
    Node& node = *joint.node();
    if (attributeValue(node, "drawStyle") == 2)   // none
        return;
    const double radius = 0.5 * attributeValue(node, "radius", 1);
    Item         item;
    item.primitive = Primitive::kLines;
    item.state.color = look.wireColor;
    item.state.id = look.id;
    const MVector at = originOf(joint);
    addBall(item.positions, at, radius);
    for (Node* child : node.dag->children)
        if (child->hasFn(MFn::kJoint)) {
            Path below = joint;
            below.nodes.emplace_back(child);
            addBone(item.positions, at, originOf(below), radius);
        }
    place(std::move(item), kIdentity, list);
}

void addIcon(const Bitmap& icon, const Matrix& matrix, const Look& look, DrawList& list)
{
    const size_t row = (icon.width + 7) / 8;
    Item         item;
    item.primitive = Primitive::kPoints;
    item.space = Space::kAnchored;
    item.state.color = look.wireColor;
    item.state.id = look.id;
    for (unsigned y = 0; y < icon.height; ++y)
        for (unsigned x = 0; x < icon.width; ++x)
            if (icon.bits[y * row + x / 8] & (0x80 >> x % 8))
                item.positions.insert(item.positions.end(), {float(x) - float(icon.x), float(y) - float(icon.y), 0});
    place(std::move(item), matrix, list);
}

bool addShapeItems(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    switch (shape.apiType()) {
        case MFn::kMesh:         addMesh(shape, matrix, look, list); return true;
        case MFn::kNurbsCurve:   addCurve(shape, matrix, look, list); return true;
        case MFn::kNurbsSurface: addSurface(shape, matrix, look, list); return true;
        case MFn::kLocator:      addLocator(shape, matrix, look, list); return true;
        case MFn::kParticle:
        case MFn::kNParticle:    addParticles(shape, matrix, look, list); return true;
        case MFn::kCamera:       addCamera(shape, matrix, look, list); return true;
        default:                 return false;
    }
}

}  // namespace mirk::view
