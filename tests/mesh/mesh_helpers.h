// Small meshes for tests.
#pragma once
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>

#include "data/mobject.h"
#include "mesh/mesh.h"
#include "support/primitives.h"

namespace mirk::test {

using Points = std::vector<std::array<double, 3>>;
using Faces = std::vector<std::vector<int>>;

inline MPointArray pointArray(const Points& points)
{
    MPointArray a;
    for (const auto& p : points)
        a.append(MPoint(p[0], p[1], p[2]));
    return a;
}

inline MIntArray ints(const std::vector<int>& v) { return v.empty() ? MIntArray() : MIntArray(v.data(), unsigned(v.size())); }
inline std::vector<int> list(const MIntArray& a)
{
    std::vector<int> v;
    for (unsigned i = 0; i < a.length(); ++i)
        v.push_back(a[i]);
    return v;
}

inline MStatus build(const MObject& owner, const Points& points, const Faces& faces)
{
    MIntArray counts, connects;
    for (const auto& f : faces) {
        counts.append(int(f.size()));
        for (int v : f)
            connects.append(v);
    }
    MStatus status;
    MFnMesh().create(int(points.size()), int(faces.size()), pointArray(points), counts, connects, owner, &status);
    return status;
}

/// A mesh data object; checks that it could be made.
inline MObject meshOf(const Points& points, const Faces& faces)
{
    MObject data = wrap(make<MeshData>());
    EXPECT_TRUE(build(data, points, faces));
    return data;
}

inline MObject dataOf(Ref<MeshBody> body) { return wrap(make<MeshData>(std::move(body))); }
inline MeshBody& bodyOf(const MObject& data) { return *objectAs<MeshData>(data)->body; }

/// Two quads side by side: 3 - 4 - 5 over 0 - 1 - 2, in the xy plane.
inline MObject twoQuads()
{
    return meshOf({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}}, {{0, 1, 4, 3}, {1, 2, 5, 4}});
}

template <class V>
void expectVector(const V& v, double x, double y, double z, const char* what = "", double tolerance = 1e-6)
{
    EXPECT_NEAR(v.x, x, tolerance) << what;
    EXPECT_NEAR(v.y, y, tolerance) << what;
    EXPECT_NEAR(v.z, z, tolerance) << what;
}

inline void expectColor(const MColor& c, float r, float g, float b, float a, const char* what = "")
{
    EXPECT_TRUE(c == MColor(r, g, b, a)) << what << ": " << c.r << " " << c.g << " " << c.b << " " << c.a;
}

}  // namespace mirk::test
