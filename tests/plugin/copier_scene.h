// What the tests of the copier and the extractor share: small meshes by hand, and readings of the merged mesh.
#pragma once
#include <maya/MFloatArray.h>

#include "arrays.h"

namespace scene {

/// Mesh data by hand. Colours: one a corner, flat rgba, set by ids; UVs: flat, with one id a corner.
struct Shape
{
    std::vector<MPoint> points;
    std::vector<int>    counts, connects;
    std::vector<float>  uvs;
    std::vector<int>    uvIds;
    std::vector<MColor> colors;
    std::vector<int>    hardEdges;
};

/// A triangle on the axes, with sides that differ.
inline Shape triangle()
{
    return {{MPoint(1, 0, 0), MPoint(0, 2, 0), MPoint(0, 0, 3)}, {3}, {0, 1, 2}, {}, {}, {}, {}};
}

/// Two triangles that share the edge from 1 to 2, which is edge 1.
inline Shape kite()
{
    return {{MPoint(0, 0, 0), MPoint(1, 0, 0), MPoint(0, 1, 0), MPoint(1, 1, 0)}, {3, 3}, {0, 1, 2, 2, 1, 3}, {}, {}, {}, {}};
}

inline MIntArray intArray(const std::vector<int>& values)
{
    return values.empty() ? MIntArray() : MIntArray(values.data(), unsigned(values.size()));
}

inline MObject meshData(const Shape& shape)
{
    MFnMeshData data;
    MFnMesh     fn;
    MObject     owner = data.create();
    MPointArray points;
    for (const MPoint& p : shape.points)
        points.append(p);
    EXPECT_FALSE(fn.create(int(shape.points.size()), int(shape.counts.size()), points, intArray(shape.counts),
                           intArray(shape.connects), owner).isNull());
    if (!shape.uvs.empty()) {
        MFloatArray u, v;
        for (std::size_t i = 0; i < shape.uvs.size(); i += 2)
            u.append(shape.uvs[i]), v.append(shape.uvs[i + 1]);
        EXPECT_TRUE(fn.setUVs(u, v) && fn.assignUVs(intArray(shape.counts), intArray(shape.uvIds)));
    }
    if (!shape.colors.empty()) {
        MString     name("paint");
        MColorArray colors;
        MIntArray   ids;
        for (const MColor& color : shape.colors)
            ids.append(int(colors.length())), colors.append(color);
        EXPECT_TRUE(fn.createColorSetDataMesh(name) && fn.setColors(colors, &name) && fn.assignColors(ids, &name));
    }
    for (const int edge : shape.hardEdges)
        EXPECT_TRUE(fn.setEdgeSmoothing(edge, false));
    return owner;
}

/// Connects a mesh to an input; gives the node that it comes from.
inline std::string giveMesh(const std::string& input, const Shape& shape)
{
    static int        count = 0;
    const std::string name = "shape" + std::to_string(++count);
    run("createNode network -name " + name + "; addAttr -longName m -dataType \"mesh\" " + name);
    EXPECT_TRUE(plug(name + ".m").setMObject(meshData(shape)));
    run("connectAttr -force " + name + ".m " + input);
    return name;
}

/// Flat x y z of the points at a plug.
inline std::vector<double> xyz(const std::string& name)
{
    std::vector<double> values;
    for (const MVector& p : points(name))
        values.insert(values.end(), {p.x, p.y, p.z});
    return values;
}

inline void expectValues(const std::vector<double>& found, const std::vector<double>& expected, const std::string& what,
                         double tolerance = 1e-6)
{
    ASSERT_EQ(found.size(), expected.size()) << what;
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], tolerance) << what << ", value " << i;
}

inline std::vector<int> listOf(const MIntArray& values)
{
    std::vector<int> list;
    for (unsigned i = 0; i < values.length(); ++i)
        list.push_back(values[i]);
    return list;
}

/// UV of each corner, flat; -1 -1 for none.
inline std::vector<double> cornerUVs(const std::string& name)
{
    MObject             data = plug(name).asMObject();
    MFnMesh             fn(data);
    std::vector<double> values;
    for (int f = 0; f < fn.numPolygons(); ++f)
        for (int k = 0; k < fn.polygonVertexCount(f); ++k) {
            float u = -1, v = -1;
            fn.getPolygonUV(f, k, u, v);
            values.insert(values.end(), {u, v});
        }
    return values;
}

inline std::vector<int> hardEdges(const std::string& name)
{
    MObject          data = plug(name).asMObject();
    MFnMesh          fn(data);
    std::vector<int> hard;
    for (int e = 0; e < fn.numEdges(); ++e)
        if (!fn.isEdgeSmooth(e))
            hard.push_back(e);
    return hard;
}

/// Flat rgba of each corner of a colour set.
inline std::vector<double> cornerColors(const std::string& name, const char* set)
{
    MObject             data = plug(name).asMObject();
    MColorArray         colors;
    const MString       setName(set);
    std::vector<double> values;
    MFnMesh(data).getFaceVertexColors(colors, &setName);
    for (unsigned i = 0; i < colors.length(); ++i)
        values.insert(values.end(), {colors[i].r, colors[i].g, colors[i].b, colors[i].a});
    return values;
}

/// Names of the colour sets, the current one first.
inline std::vector<std::string> colorSets(const std::string& name)
{
    MObject      data = plug(name).asMObject();
    MFnMesh      fn(data);
    MStringArray names;
    fn.getColorSetNames(names);
    std::vector<std::string> sets;
    if (names.length() > 0)
        sets.push_back(fn.currentColorSetName().asChar());
    for (unsigned i = 0; i < names.length(); ++i)
        if (sets[0] != names[i].asChar())
            sets.push_back(names[i].asChar());
    return sets;
}

} // namespace scene
