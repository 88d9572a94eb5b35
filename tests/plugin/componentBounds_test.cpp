// componentGroup with bounding objects, and all its mesh steps against a slow second way on real meshes.
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MMatrix.h>

#include <cmath>
#include <functional>
#include <random>

#include "component_scene.h"
#include "samples.h"

using namespace scene;
using ComponentBounds = scene::Test;

namespace {

std::string number(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", v);
    return text;
}

/// A stand-in for a bounding object: a node with the same tree of data, set by hand.
void bound(const std::string& name, int type, const MMatrix& matrix, bool contained = false)
{
    const auto child = [&](const char* parent, const std::string& attribute) {
        run("addAttr -parent " + std::string(parent) + " -longName " + attribute + " " + name);
    };
    const auto scale = [&](const std::string& attribute) {
        child("cd", attribute + " -attributeType compound -numberOfChildren 3");
        for (const char* axis : {"x", "y", "z"})
            child(attribute.c_str(), attribute + axis + " -attributeType double");
    };
    run("createNode network -name " + name + ";"
        "addAttr -longName outData -attributeType compound -numberOfChildren 3 " + name);
    child("outData", "opm -dataType matrix");
    child("outData", "cd -attributeType compound -numberOfChildren 8");
    child("cd", "en -attributeType double");
    child("cd", "tp -attributeType short");
    child("cd", "cnt -attributeType bool");
    child("cd", "tso -attributeType double");
    scale("ts");
    child("cd", "bso -attributeType double");
    scale("bs");
    child("cd", "nml -attributeType short");
    child("outData", "dpp -attributeType compound -numberOfChildren 5");
    for (const char* array : {"ppp -dataType pointArray", "npp -dataType vectorArray", "rpp -dataType doubleArray",
                              "wpp -dataType doubleArray", "rgbapp -dataType doubleArray"})
        child("dpp", array);
    std::string values;
    for (unsigned int i = 0; i < 16; ++i)
        values += " " + number(matrix(i / 4, i % 4));
    run("setAttr " + name + ".opm -type \"matrix\"" + values + "; setAttr " + name + ".en 1; setAttr " + name + ".tp " +
        std::to_string(type) + "; setAttr " + name + ".cnt " + std::to_string(contained) + "; setAttr " + name +
        ".tso 1; setAttr " + name + ".bso 1");
    for (const char* axis : {"tsx", "tsy", "tsz", "bsx", "bsy", "bsz"})
        run("setAttr " + name + "." + axis + " 1");
}

void cloud(const std::string& name, const std::string& count, const std::string& points, const std::string& radii)
{
    run("setAttr " + name + ".ppp -type \"pointArray\" " + count + " " + points + "; setAttr " + name +
        ".rpp -type \"doubleArray\" " + count + " " + radii);
}

MMatrix placed(double sx, double sy, double sz, double x, double y, double z)
{
    const double rows[4][4] = {{sx, 0, 0, 0}, {0, sy, 0, 0}, {0, 0, sz, 0}, {x, y, z, 1}};
    return MMatrix(rows);
}

void group(const std::string& geometry, const std::string& settings)
{
    run("createNode componentGroup -name g; connectAttr " + geometry + " g.inGeometry;" + settings);
}

std::string selected() { return componentsAt("g.outComponents"); }

} // namespace

TEST_F(ComponentBounds, AnyPointOrAllPoints)
{
    grid(3);   // x and z at -1.5, -0.5, 0.5, 1.5
    group("p.worldMesh[0]", "");
    bound("b", 0, placed(1, 1, 1, 0, 0, 0));
    run("connectAttr b.outData g.boundingObjects[3]");   // gaps in the indices
    struct { int kind, contained; const char* selected; } const cases[] = {
        {0, 0, "v 5 6 9 10"}, {2, 0, "f 0 1 2 3 4 5 6 7 8"}, {2, 1, "f 4"}, {3, 1, "map 5 6 9 10"}, {0, 1, "v 5 6 9 10"},
    };
    for (const auto& c : cases) {
        run("setAttr g.componentType " + std::to_string(c.kind) + "; setAttr b.cnt " + std::to_string(c.contained));
        EXPECT_EQ(selected(), c.selected) << c.kind << c.contained;
    }
    run("setAttr g.componentType 1; setAttr b.cnt 1");
    const std::string edges = selected();
    EXPECT_EQ(std::count(edges.begin(), edges.end(), ' '), 4) << edges;   // those of the middle face
    run("setAttr b.en 0");
    EXPECT_EQ(selected(), "e 124");
}

TEST_F(ComponentBounds, JoinTheSelectionOrLeaveIt)
{
    grid(3);
    group("p.worldMesh[0]", "setAttr g.pattern -type \"string\" \"0 5\"");
    bound("b", 1, placed(1, 1, 1, 0, 0, 0));
    run("connectAttr b.outData g.boundingObjects[0]");
    EXPECT_EQ(selected(), "v 0 5 6 9 10");
    giveComponents("g.inComponents", {"vtx[4:6]", "vtx[15]"});
    run("setAttr g.combine 1");
    EXPECT_EQ(selected(), "v 0 4 5 6 9 10 15");
    run("setAttr g.combine 2");
    EXPECT_EQ(selected(), "v 4 15");
    run("setAttr g.combine 3");
    EXPECT_EQ(selected(), "v 5 6");
}

TEST_F(ComponentBounds, CloudsOnlyWorkAsTheFirstBound)
{
    grid(3);
    group("p.worldMesh[0]", "setAttr g.componentType 2");
    bound("sphere", 0, placed(0.1, 0.1, 0.1, 50, 0, 0), true);
    bound("cloud", 3, MMatrix(), true);
    cloud("cloud", "2", "-1.5 0 1.5 1 1.5 0 -1.5 1", "0.5 -3");
    run("connectAttr sphere.outData g.boundingObjects[0]; connectAttr cloud.outData g.boundingObjects[1]");
    EXPECT_EQ(selected(), "f 109");
    run("disconnectAttr sphere.outData g.boundingObjects[0]; connectAttr -force cloud.outData g.boundingObjects[0];"
        "connectAttr -force sphere.outData g.boundingObjects[1]");
    EXPECT_EQ(selected(), "f 0");                       // one point is enough, whatever `contained` says
    bound("late", 3, MMatrix());
    cloud("late", "1", "1.5 0 -1.5 1", "0.5");
    run("connectAttr late.outData g.boundingObjects[7]");
    EXPECT_EQ(selected(), "f 0 8");                     // all clouds are tested with the first bound
    run("setAttr late.en 0.5");                         // clouds are on or off
    EXPECT_EQ(selected(), "f 0");
    run("setAttr late.en 1; setAttr late.rpp -type \"doubleArray\" 2 0.5 0.5");
    EXPECT_EQ(selected(), "f 0");                       // arrays of different lengths are no cloud
}

TEST_F(ComponentBounds, ManyBoundsEachByItsOwnRule)
{
    grid(3);
    group("p.worldMesh[0]", "setAttr g.componentType 2");
    for (int i = 0; i < 9; ++i) {   // each on one vertex of the diagonal or outside; only the last two take a face
        const bool last = i > 6;
        bound("b" + std::to_string(i), 1, placed(0.6, 0.6, 0.6, i == 7 ? 1.0 : -1.0, 0, i == 7 ? -1.0 : 1.0), last);
        run("setAttr b" + std::to_string(i) + ".en " + std::to_string(last) + "; connectAttr b" + std::to_string(i) +
            ".outData g.boundingObjects[" + std::to_string(i) + "]");
    }
    EXPECT_EQ(selected(), "f 0 8");
    run("setAttr b0.en 1");                             // not contained: the faces around face 0 as well
    EXPECT_EQ(selected(), "f 0 1 3 4 8");
    for (int i = 0; i < 8; ++i)
        run("setAttr b" + std::to_string(i) + ".en 1; setAttr b" + std::to_string(i) + ".cnt 1");
    run("setAttr b8.cnt 0");                            // the ninth goes by another rule than those before
    EXPECT_EQ(selected(), "f 0 1 3 4 8");
}

TEST_F(ComponentBounds, TheNodeItself)
{
    grid(3);
    group("p.worldMesh[0]", "");
    run("createNode transform -name t; move -1 0 1 t; createNode boundingObject -name b -parent t;"
        "connectAttr t.worldMatrix[0] b.inParentMatrix;"
        "connectAttr b.outData.outParentMatrix g.boundingObjects[0].boundParentMatrix;"
        "connectAttr b.outData g.boundingObjects[0]");
    EXPECT_EQ(selected(), "v 0 1 4 5");
    run("setAttr t.scale 2 2 2");
    EXPECT_EQ(selected(), "v 0 1 2 4 5 6 8 9");
    run("setAttr b.envelope 0");
    EXPECT_EQ(selected(), "v 116");
}

TEST_F(ComponentBounds, DegenerateBounds)
{
    grid(3);
    group("p.worldMesh[0]", "setAttr g.pattern -type \"string\" \"3\"");
    const MMatrix matrices[] = {placed(0, 0, 0, 0, 0, 0), placed(NAN, 1, 1, 0, 0, 0), placed(-1, 1, 1, 0, 0, 0),
                                placed(1e308, 1e308, 1e308, 0, 0, 0), placed(INFINITY, 1, 1, 0, 0, 0)};
    const char* const expected[] = {"v 3", "v 3", "v 3 5 6 9 10", nullptr, nullptr};
    for (std::size_t i = 0; i < std::size(matrices); ++i) {
        bound("b" + std::to_string(i), int(i % 2) * 2, matrices[i]);
        run("connectAttr -force b" + std::to_string(i) + ".outData g.boundingObjects[0]");
        if (expected[i])
            EXPECT_EQ(selected(), expected[i]) << i;
        else
            EXPECT_FALSE(selected().empty());
    }
    run("setAttr b4.tp 77");
    EXPECT_EQ(selected(), "v 3");
}

// Everything at once, in no order: what comes is a list of the kind asked for, or what a particle group gives.
TEST_F(ComponentBounds, AnythingGivesAList)
{
    const std::vector<samples::Sample> all = samples::all();
    const auto                         random = [&](MFnData::Type kind, samples::Numbers& r) {
        std::vector<MObject> found;
        for (const samples::Sample& sample : all)
            if (sample.kind == kind)
                found.push_back(sample.data);
        return found[std::size_t(r.below(int(found.size())))];
    };
    run("createNode network -name n; createNode transform -name t; createNode componentGroup -name g;"
        "connectAttr t.worldMatrix[0] g.mirrorMatrix");
    bound("b", 3, MMatrix());
    run("connectAttr b.outData g.boundingObjects[2]");
    for (const char* name : {"inGeometry", "inComponents", "inVelocityPP", "inWeightPP"}) {
        MFnGenericAttribute fn;
        MObject             attribute = fn.create(name, name);
        for (int kind = MFnData::kNumeric; kind < MFnData::kAny; ++kind)
            fn.addDataAccept(MFnData::Type(kind));
        MFnDependencyNode(plug("n.message").node()).addAttribute(attribute);
        run(std::string("connectAttr n.") + name + " g." + name);
    }
    samples::Numbers   r(3);
    const MFnData::Type geometries[] = {MFnData::kMesh, MFnData::kNurbsCurve, MFnData::kNurbsSurface,
                                        MFnData::kVectorArray};
    const struct { const char* name; int from, to; } settings[] = {
        {"componentType", 0, 6}, {"combine", 0, 3}, {"filterInput", 0, 1}, {"opRange", 0, 1}, {"opNormalVelocity", 0, 1},
        {"opDepth", 0, 1}, {"opEdgeLength", 0, 1}, {"opFaceArea", 0, 1}, {"opFacePerimeter", 0, 1}, {"opWeightMap", 0, 1},
        {"opAngle", 0, 1}, {"opNgons", 0, 1}, {"mode", 0, 1}, {"space", 0, 1}, {"depth", 0, 4}, {"coordinateSystem", 0, 1},
        {"mirror", 0, 2}, {"mirrorDirection", 0, 2}, {"boundary", 0, 4}, {"invert", 0, 1}, {"outputObjectGroup", 0, 1},
        {"groupId", -1, 2}, {"rangeEnd", -9, 0}, {"stepA", 1, 4}, {"useInComponents", 0, 1}, {"lengthThreshold", 0, 3},
        {"areaThreshold", 0, 2}, {"perimeterThreshold", 0, 9}, {"inBetweenAngle", 0, 180}};
    for (int i = 0; i < 600; ++i) {
        for (const auto& s : settings)
            plug(std::string("g.") + s.name).setInt(s.from + r.below(s.to - s.from + 1));
        plug("g.resetFrames").setString(r.below(4) == 0 ? "*" : "");
        plug("g.pattern").setString(r.below(2) == 0 ? "1:3 7" : "");
        plug("b.tp").setInt(r.below(5));
        plug("b.cnt").setBool(r.below(2));
        plug("b.tsx").setDouble(r.wild());
        plug("b.opm").setMObject(random(MFnData::kMatrix, r));
        plug("b.ppp").setMObject(random(MFnData::kPointArray, r));
        plug("b.rpp").setMObject(random(MFnData::kDoubleArray, r));
        plug("n.inGeometry").setMObject(random(geometries[r.below(4)], r));
        plug("n.inComponents").setMObject(random(r.below(2) ? MFnData::kComponentList : MFnData::kIntArray, r));
        plug("n.inVelocityPP").setMObject(random(MFnData::kVectorArray, r));
        plug("n.inWeightPP").setMObject(random(MFnData::kDoubleArray, r));
        EXPECT_NE(selected(), "") << i;
        MObject data = plug("g.outGeometry").asMObject();
        componentsAt("g.outMirrorIds");
        EXPECT_FALSE(data.isNull()) << i;
    }
}

// --- against a second way: host iterators, one component at a time, sets of indices ----------------------------------

namespace {

using Set = std::set<int>;

MDagPath shape(const std::string& name)
{
    MSelectionList list;
    MDagPath       path;
    EXPECT_TRUE(list.add(name.c_str()) && list.getDagPath(0, path) && path.extendToShape());
    return path;
}

const char* const kPrefix[] = {"v", "e", "f", "map"};

/// What the reference knows of the mesh at a plug.
struct Reference
{
    MDagPath mesh;
    int      kind = 0;

    Set fromVertex(int v) const
    {
        MItMeshVertex it(mesh);
        int           previous;
        MIntArray     ids;
        it.setIndex(v, previous);
        if (kind == 0)
            return {v};
        kind == 1 ? it.getConnectedEdges(ids) : kind == 2 ? it.getConnectedFaces(ids) : it.getUVIndices(ids);
        return toSet(ids);
    }
    Set fromFace(int f) const
    {
        MItMeshPolygon it(mesh);
        int            previous;
        MIntArray      ids;
        it.setIndex(f, previous);
        if (kind == 2)
            return {f};
        kind == 1 ? it.getEdges(ids) : it.getVertices(ids);
        if (kind < 3)
            return toSet(ids);
        Set uvs;
        for (int v : toSet(ids))
            uvs.merge(fromVertex(v));
        return uvs;
    }
    Set fromVertices(const std::function<bool(MItMeshVertex&)>& test) const
    {
        Set found;
        for (MItMeshVertex it(mesh); !it.isDone(); it.next())
            if (test(it))
                found.merge(fromVertex(it.index()));
        return found;
    }
    Set fromFaces(const std::function<bool(MItMeshPolygon&)>& test) const
    {
        Set found;
        for (MItMeshPolygon it(mesh); !it.isDone(); it.next())
            if (test(it))
                found.merge(fromFace(int(it.index())));
        return found;
    }
    /// Components by their points.
    Set byPoints(const std::function<bool(const MPoint&)>& inside, bool all) const
    {
        Set        found;
        const auto judge = [&](int id, const MPointArray& points) {
            unsigned int count = 0;
            for (unsigned int i = 0; i < points.length(); ++i)
                count += inside(points[i]);
            if (all ? count == points.length() : count > 0)
                found.insert(id);
        };
        MPointArray points;
        for (MItMeshVertex it(mesh); kind == 0 && !it.isDone(); it.next())
            judge(it.index(), MPointArray(1, it.position(MSpace::kWorld)));
        for (MItMeshEdge it(mesh); kind == 1 && !it.isDone(); it.next()) {
            points = MPointArray(1, it.point(0, MSpace::kWorld));
            points.append(it.point(1, MSpace::kWorld));
            judge(it.index(), points);
        }
        for (MItMeshPolygon it(mesh); kind == 2 && !it.isDone(); it.next()) {
            it.getPoints(points, MSpace::kWorld);
            judge(int(it.index()), points);
        }
        return found;
    }

    static Set toSet(const MIntArray& ids)
    {
        Set all;
        for (unsigned int i = 0; i < ids.length(); ++i)
            all.insert(ids[i]);
        return all;
    }
};

double uvLength(MItMeshVertex& a, MItMeshVertex& b)
{
    float2 p, q;
    a.getUV(p);
    b.getUV(q);
    return std::hypot(double(q[0]) - p[0], double(q[1]) - p[1]);
}

/// Neighbours of a component of the kind.
Set neighbours(const Reference& r, int id)
{
    int       previous;
    MIntArray ids;
    if (r.kind == 0) {
        MItMeshVertex it(r.mesh);
        it.setIndex(id, previous);
        it.getConnectedVertices(ids);
    } else if (r.kind == 1) {
        MItMeshEdge it(r.mesh);
        it.setIndex(id, previous);
        it.getConnectedEdges(ids);
    } else {
        MItMeshPolygon it(r.mesh);
        it.setIndex(id, previous);
        it.getConnectedFaces(ids);
    }
    return Reference::toSet(ids);
}

Set grown(const Reference& r, Set seeds, int depth)
{
    for (; depth > 0; --depth) {
        Set next = seeds;
        for (int id : seeds)
            next.merge(neighbours(r, id));
        seeds = next;
    }
    return seeds;
}

/// A ball `p` with poles, a seam in its UVs, faces of three and four corners and holes, off the axes.
void ball()
{
    run("polySphere -radius 2 -subdivisionsX 9 -subdivisionsY 7 -name whole; createNode transform -name p;"
        "createNode mesh -name mesh1 -parent p; createNode network -name balls; addAttr -longName m -dataType \"mesh\" balls;"
        "connectAttr balls.m mesh1.inMesh; rotate 20 30 40 p; scale 1 1.5 0.7 p; move 0.3 -0.2 0.5 p");
    MObject     from = plug("whole.outMesh").asMObject(), to = MFnMeshData().create();
    MFnMesh     whole(from), holed;
    MPointArray points;
    MFloatArray u, v;
    MIntArray   counts, corners, uvs, ids;
    whole.getPoints(points);
    whole.getUVs(u, v);
    for (int face = 0; face < whole.numPolygons(); ++face) {
        if ((face >= 12 && face <= 14) || face == 30)
            continue;
        whole.getPolygonVertices(face, ids);
        counts.append(int(ids.length()));
        for (unsigned int k = 0; k < ids.length(); ++k) {
            int uv = 0;
            whole.getPolygonUVid(face, int(k), uv);
            corners.append(ids[k]);
            uvs.append(uv);
        }
    }
    holed.create(int(points.length()), int(counts.length()), points, counts, corners, u, v, to);
    holed.assignUVs(counts, uvs);
    plug("balls.m").setMObject(to);
}

} // namespace

TEST_F(ComponentBounds, StepsAgreeWithAWalkOverTheMesh)
{
    ball();
    group("mesh1.worldMesh[0]", "setAttr g.opPattern 0");
    const MVector direction(0.3, 1.0, -0.2);
    const float   degrees = 0.01746f;
    const auto    facing = [&](const MVector& n) {
        const double angle = n.angle(direction);
        return angle >= 20.0f * degrees && angle <= 75.0f * degrees;
    };
    struct { const char* settings; std::function<Set(const Reference&)> reference; } const cases[] = {
        {"setAttr g.opNormalVelocity 1; setAttr g.direction 0.3 1 -0.2; setAttr g.spreadAngleMin 20;"
         "setAttr g.spreadAngleMax 75",
         [&](const Reference& r) {
             const auto vertex = [&](MItMeshVertex& it) { MVector n; it.getNormal(n, MSpace::kWorld); return facing(n); };
             const auto face = [&](MItMeshPolygon& it) { MVector n; it.getNormal(n, MSpace::kWorld); return facing(n); };
             return r.kind == 2 ? r.fromFaces(face) : r.fromVertices(vertex);
         }},
        {"setAttr g.opFaceArea 1; setAttr g.areaThreshold 0.4",
         [](const Reference& r) {
             return r.fromFaces([](MItMeshPolygon& it) { double a; it.getArea(a, MSpace::kWorld); return a <= 0.4; });
         }},
        {"setAttr g.opFacePerimeter 1; setAttr g.perimeterThreshold 2.5",
         [](const Reference& r) {
             return r.fromFaces([&](MItMeshPolygon& it) {
                 MIntArray   edges;
                 double      sum = 0.0;
                 MItMeshEdge edge(r.mesh);
                 it.getEdges(edges);
                 for (int e : Reference::toSet(edges)) {
                     int    previous;
                     double length = 0.0;
                     edge.setIndex(e, previous);
                     edge.getLength(length, MSpace::kWorld);
                     sum += length;
                 }
                 return sum <= 2.5;
             });
         }},
        {"setAttr g.boundary 1",
         [](const Reference& r) {
             Set found;
             for (MItMeshEdge it(r.mesh); r.kind == 1 && !it.isDone(); it.next())
                 if (it.onBoundary())
                     found.insert(it.index());
             if (r.kind == 1)
                 return found;
             return r.kind == 2 ? r.fromFaces([](MItMeshPolygon& it) { return it.onBoundary(); })
                  : r.kind == 3 ? r.fromVertices([](MItMeshVertex& it) { return it.onBoundary(); })
                                : r.fromVertices([](MItMeshVertex& it) { return it.onBoundary(); });
         }},
        {"setAttr g.opDepth 1; setAttr g.depth 3; setAttr g.useInComponents 0;"
         "setAttr g.initialComponents -type \"string\" \"4 20\"",
         [](const Reference& r) {
             if (r.kind < 3)
                 return grown(r, {4, 20}, 3);
             Reference vertices = r;   // UVs grow by way of the vertices that have them
             vertices.kind = 0;
             Set seeds, uvs;
             for (MItMeshVertex it(r.mesh); !it.isDone(); it.next())
                 for (int uv : r.fromVertex(it.index()))
                     if (uv == 4 || uv == 20)
                         seeds.insert(it.index());
             for (int v : grown(vertices, seeds, 3))
                 uvs.merge(r.fromVertex(v));
             return uvs;
         }},
        {"setAttr g.opEdgeLength 1; setAttr g.lengthThreshold 0.12; setAttr g.space 1",
         [](const Reference& r) {
             Set           found;
             MItMeshVertex a(r.mesh), b(r.mesh);
             for (MItMeshEdge it(r.mesh); !it.isDone(); it.next()) {
                 int       previous;
                 MIntArray faces;
                 a.setIndex(it.index(0), previous);
                 b.setIndex(it.index(1), previous);
                 if (!(uvLength(a, b) <= 0.12))
                     continue;
                 it.getConnectedFaces(faces);
                 if (r.kind == 1)
                     found.insert(it.index());
                 else if (r.kind == 2)
                     found.merge(Reference::toSet(faces));
                 else
                     for (int end : {it.index(0), it.index(1)})
                         found.merge(r.fromVertex(end));
             }
             return found;
         }},
    };
    for (const auto& c : cases) {
        run(c.settings);
        for (int kind = 0; kind < 4; ++kind) {
            run("setAttr g.componentType " + std::to_string(kind));
            const Set expected = c.reference({shape("p"), kind});
            EXPECT_GT(expected.size(), 0u) << c.settings << kind;
            EXPECT_EQ(selected(), textOf(kPrefix[kind], expected)) << c.settings << kind;
        }
        run("delete g; createNode componentGroup -name g; connectAttr mesh1.worldMesh[0] g.inGeometry;"
            "setAttr g.opPattern 0");
    }
}

TEST_F(ComponentBounds, VolumesAgreeWithATestOfEachPoint)
{
    ball();
    group("mesh1.worldMesh[0]", "setAttr g.opPattern 0");
    const double  rows[4][4] = {{1.7, 0.5, 0, 0}, {-0.4, 2.1, 0.7, 0}, {0.2, -0.8, 1.9, 0}, {1.2, 0.9, 0.6, 1}};
    const MMatrix matrix(rows), inverse = matrix.inverse();
    const std::function<bool(const MPoint&)> inside[] = {
        [&](const MPoint& w) { const MPoint p = w * inverse; return p.x * p.x + p.y * p.y + p.z * p.z <= 1.0; },
        [&](const MPoint& w) {
            const MPoint p = w * inverse;
            return std::fabs(p.x) <= 1 && std::fabs(p.y) <= 1 && std::fabs(p.z) <= 1;
        },
        [&](const MPoint& w) {   // caps of radius 1 at height 1 and -1
            const MPoint p = w * inverse;
            const double y = std::max(0.0, std::fabs(p.y) - 1.0);
            return p.x * p.x + y * y + p.z * p.z <= 1.0;
        }};
    for (int type = 0; type < 3; ++type) {
        bound("b", type, matrix);
        run("connectAttr -force b.outData g.boundingObjects[0]");
        for (int kind = 0; kind < 3; ++kind) {
            for (int contained = 0; contained < 2; ++contained) {
                run("setAttr g.componentType " + std::to_string(kind) + "; setAttr b.cnt " + std::to_string(contained));
                const Set expected = Reference{shape("p"), kind}.byPoints(inside[type], contained);
                EXPECT_GT(expected.size(), 0u) << type << kind << contained;
                EXPECT_EQ(selected(), textOf(kPrefix[kind], expected)) << type << kind << contained;
            }
        }
        run("delete b");
    }
}

TEST_F(ComponentBounds, ManySpheresAgreeWithATestOfEach)
{
    run("polySphere -subdivisionsX 80 -subdivisionsY 80 -name p");
    group("p.outMesh", "setAttr g.opPattern 0");
    bound("b", 3, MMatrix());
    std::mt19937               random(5);
    const std::vector<MVector> vertices = points("p.outMesh");
    std::vector<MVector>       centers;
    std::vector<double>        radii;
    std::string                texts[2];
    for (int i = 0; i < 300; ++i) {
        const auto any = [&] { return int(random() % 2001) / 1000.0 - 1.0; };
        centers.push_back(MVector(any(), any(), any()));
        radii.push_back(int(random() % 100) / 1000.0);
        if (i % 10 == 0)   // exactly at the border
            centers.back() = vertices[random() % vertices.size()] + MVector(0.0, radii.back(), 0.0);
        texts[0] += number(centers.back().x) + " " + number(centers.back().y) + " " + number(centers.back().z) + " 1 ";
        texts[1] += number(radii.back()) + " ";
    }
    cloud("b", "300", texts[0], texts[1]);
    run("connectAttr b.outData g.boundingObjects[0]");
    Set expected;
    for (std::size_t v = 0; v < vertices.size(); ++v)
        for (std::size_t j = 0; j < centers.size(); ++j)
            if (radii[j] > 0.0 && (vertices[v] - centers[j]).length() <= radii[j])
                expected.insert(int(v));
    EXPECT_GT(expected.size(), 100u);
    EXPECT_EQ(selected(), textOf("v", expected));
}
