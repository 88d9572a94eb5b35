#include "view/scene_items.h"

#include <algorithm>

#include <maya/MColorArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnNurbsSurface.h>
#include <maya/MIntArray.h>

#include "data/mobject.h"
#include "dynamics/particle.h"
#include "view/builders.h"
#include "view/display_status.h"

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
    place(meshItem(arrays, state, look.wire), matrix, list);
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

}  // namespace

bool addShapeItems(Node& shape, const Matrix& matrix, const Look& look, DrawList& list)
{
    switch (shape.apiType()) {
        case MFn::kMesh:         addMesh(shape, matrix, look, list); return true;
        case MFn::kNurbsCurve:   addCurve(shape, matrix, look, list); return true;
        case MFn::kNurbsSurface: addSurface(shape, matrix, look, list); return true;
        case MFn::kLocator:      addLocator(shape, matrix, look, list); return true;
        case MFn::kParticle:
        case MFn::kNParticle:    addParticles(shape, matrix, look, list); return true;
        default:                 return false;
    }
}

}  // namespace mirk::view
