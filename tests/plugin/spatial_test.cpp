// kdTree, shortestPath and resolvePointCollisions through the graph; expected values by hand, by brute force and by a
// plain search.
#include <gtest/gtest.h>

#include <maya/MFnComponentListData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnSingleIndexedComponent.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <csignal>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <thread>

#include <unistd.h>

#include "scene.h"

using namespace scene;

namespace {

class Spatial : public scene::Test {};

std::vector<int> ints(const std::string& name)
{
    MObject          data = plug(name).asMObject();
    MFnIntArrayData  fn(data);
    std::vector<int> values;
    for (unsigned int i = 0; i < fn.length(); ++i)
        values.push_back(fn[i]);
    return values;
}

std::string join(const std::vector<double>& values)
{
    std::string text;
    for (double v : values)
        text += std::to_string(v) + " ";
    return text;
}

std::string vectorSource(const std::string& name, const std::vector<double>& xyz)
{
    return arraySource(name, "vectorArray", int(xyz.size() / 3), join(xyz));
}

void setInts(const std::string& name, const std::vector<int>& values)
{
    run("setAttr " + name + " -type Int32Array " + std::to_string(values.size()) + " "
        + join(std::vector<double>(values.begin(), values.end())));
}

std::vector<double> randomPoints(int count, unsigned seed, double grid = 0.0)
{
    std::mt19937        random(seed);
    std::vector<double> xyz;
    for (int i = 0; i < 3 * count; ++i) {
        const double x = random() / 4294967296.0;
        xyz.push_back(std::stod(std::to_string(grid > 0.0 ? std::floor(x * grid) / grid : x)));   // as the text has it
    }
    return xyz;
}

double distanceSq(const double* p, const double* q)
{
    return (p[0] - q[0]) * (p[0] - q[0]) + (p[1] - q[1]) * (p[1] - q[1]) + (p[2] - q[2]) * (p[2] - q[2]);
}

// ---- kdTree --------------------------------------------------------------------------------------------------------

class KdTree : public Spatial
{
protected:
    void build(const std::vector<double>& tree, const std::vector<double>& queries)
    {
        run("createNode kdTree -name k; setAttr k.outputMappingData 1");
        run("connectAttr " + vectorSource("t", tree) + " k.inGeometry");
        run("connectAttr " + vectorSource("q", queries) + " k.inGeometry2");
    }
};

TEST_F(KdTree, AgreesWithBruteForce)
{
    const std::vector<double> tree = randomPoints(400, 1), queries = randomPoints(150, 2);
    build(tree, queries);
    struct Case { const char* when; int count; double radius; const char* more; };
    for (const Case& c : {Case{"by count", 7, -1, ""}, Case{"by count, small leaves", 7, -1, "setAttr k.maxPointsPerLeaf 1"},
                          Case{"by radius", 400, 0.02, ""}, Case{"by radius, the nearest of them", 3, 0.02, ""}}) {
        run("setAttr k.count " + std::to_string(c.count) + "; setAttr k.radius " + std::to_string(c.radius) + ";" + c.more);
        const std::vector<int>     counts = ints("k.outCountPP"), ids = ints("k.outIdPP");
        const std::vector<double>  distances = doubles("k.outDistancePP");
        const std::vector<MVector> means = vectors("k.outAveragePositionPP");
        ASSERT_EQ(counts.size(), 150u);
        std::size_t at = 0;
        for (std::size_t i = 0; i < 150; ++i) {
            std::vector<std::pair<double, int>> all;
            for (int j = 0; j < 400; ++j) {
                const double d = distanceSq(&queries[3 * i], &tree[std::size_t(3 * j)]);
                if (c.radius < 0 || d < static_cast<float>(c.radius))   // squared distances against the radius itself
                    all.push_back({d, j});
            }
            std::sort(all.begin(), all.end());
            all.resize(std::min(all.size(), std::size_t(c.count)));
            ASSERT_EQ(std::size_t(counts[i]), all.size()) << c.when;
            MVector mean;
            for (const auto& [d, j] : all) {
                ASSERT_LT(at, ids.size());
                EXPECT_EQ(ids[at], j) << c.when;
                EXPECT_DOUBLE_EQ(distances[at++], d) << c.when;
                mean += MVector(&tree[std::size_t(3 * j)]) / double(all.size());
            }
            EXPECT_TRUE(means[i].isEquivalent(mean, 1e-12)) << c.when;
        }
        EXPECT_EQ(at, ids.size());
    }
}

TEST_F(KdTree, QueriesSharedAmongThreadsGiveWhatEachGivesAlone)
{
    const std::vector<double> tree = randomPoints(3000, 5), queries = randomPoints(5000, 6);
    build(tree, queries);
    run("setAttr k.count 6; setAttr k.radius 0.004");
    const std::vector<int>     counts = ints("k.outCountPP"), ids = ints("k.outIdPP");
    const std::vector<double>  distances = doubles("k.outDistancePP");
    const std::vector<MVector> means = vectors("k.outAveragePositionPP");
    std::vector<int>           fewCounts, fewIds;
    std::vector<double>        fewDistances;
    std::vector<MVector>       fewMeans;
    const auto                 append = [](auto& to, const auto& from) { to.insert(to.end(), from.begin(), from.end()); };
    for (std::ptrdiff_t from = 0; from < 5000; from += 1000) {   // too few to be shared
        const std::vector<double> few(queries.begin() + 3 * from, queries.begin() + 3 * from + 3000);
        run("connectAttr -force " + vectorSource("few" + std::to_string(from), few) + " k.inGeometry2");
        append(fewCounts, ints("k.outCountPP"));
        append(fewIds, ints("k.outIdPP"));
        append(fewDistances, doubles("k.outDistancePP"));
        append(fewMeans, vectors("k.outAveragePositionPP"));
    }
    EXPECT_GT(ids.size(), 5000u);
    EXPECT_EQ(counts, fewCounts);
    EXPECT_EQ(ids, fewIds);
    EXPECT_EQ(distances, fewDistances);
    EXPECT_EQ(means, fewMeans);
}

TEST_F(KdTree, CountsRadiiAndEdges)
{
    // points at 0, 1, 2, 4 on a line; queries at 0 and 5
    build({0, 0, 0, 1, 0, 0, 2, 0, 0, 4, 0, 0}, {0, 0, 0, 5, 0, 0});
    run("createNode network -name n; addAttr -longName c -dataType Int32Array n; addAttr -longName r -dataType doubleArray n");
    struct Case
    {
        const char*      when;
        std::string      set;
        std::vector<int> counts, ids;
    };
    const Case cases[] = {
        {"more than there are", "setAttr k.count 9", {4, 4}, {0, 1, 2, 3, 3, 2, 1, 0}},
        {"a neighbour at the radius is out: squared distances", "setAttr k.radius 4", {2, 1}, {0, 1, 3}},
        {"no point within the radius", "setAttr k.radius 0.5", {1, 0}, {0}},
        {"overlapping ones passed over", "setAttr k.ignoreOverlappingPoints 1", {0, 0}, {}},
        {"passed over after the cut", "setAttr k.radius 4.5; setAttr k.count 2", {1, 1}, {1, 3}},
        {"radius 0", "setAttr k.radius 0; setAttr k.ignoreOverlappingPoints 0", {0, 0}, {}},
        {"counts of the queries", "setAttr k.radius -1; setAttr n.c -type Int32Array 3 1 2 3; connectAttr n.c k.inCountPP",
         {1, 2}, {0, 3, 2}},
        {"fewer counts than queries: the rest is 0", "setAttr n.c -type Int32Array 1 3", {3, 0}, {0, 1, 2}},
        {"negative count", "setAttr n.c -type Int32Array 2 -4 1", {0, 1}, {3}},
        {"radii of the queries", "setAttr k.radius 0.5; setAttr n.c -type Int32Array 2 9 9;"
         "setAttr n.r -type doubleArray 2 3 8; connectAttr n.r k.inRadiusPP", {2, 1}, {0, 1, 3}},
        {"mapping data off", "setAttr k.outputMappingData 0", {2, 1}, {}},
    };
    for (const Case& c : cases) {
        run(c.set);
        EXPECT_EQ(ints("k.outCountPP"), c.counts) << c.when;
        EXPECT_EQ(ints("k.outIdPP"), c.ids) << c.when;
        EXPECT_EQ(doubles("k.outDistancePP").size(), c.ids.size()) << c.when;
    }
    run("setAttr k.active 0; setAttr arrays.t -type vectorArray 1 7 7 7");
    EXPECT_EQ(vectors("k.outGeometry").size(), 1u);
    EXPECT_EQ(ints("k.outCountPP"), (std::vector<int>{2, 1})) << "inactive: as it was";
    run("setAttr k.active 1; setAttr arrays.t -type vectorArray 0");
    EXPECT_TRUE(ints("k.outCountPP").empty());
    EXPECT_TRUE(vectors("k.outAveragePositionPP").empty());
}

TEST_F(KdTree, CarriesDataInItsType)
{
    build({0, 0, 0, 1, 0, 0, 5, 0, 0, 6, 0, 0}, {0.25, 0, 0, 5.75, 0, 0, 100, 0, 0});
    run("setAttr k.count 2; setAttr k.radius 100");
    run("createNode network -name n; addAttr -longName d -dataType doubleArray n; addAttr -longName i -dataType Int32Array n;"
        "addAttr -longName v -dataType vectorArray n");
    run("setAttr n.d -type doubleArray 4 1 2 10 20; setAttr n.i -type Int32Array 4 1 2 -3 -4;"
        "setAttr n.v -type vectorArray 4 1 0 0 2 0 0 0 8 0 0 4 2");
    run("connectAttr n.d k.inDataPP");
    EXPECT_EQ(doubles("k.outDataPP"), (std::vector<double>{1.5, 15, 0}));
    run("connectAttr -force n.i k.inDataPP");
    EXPECT_EQ(ints("k.outDataPP"), (std::vector<int>{1, -3, 0})) << "1.5 and -3.5 without their fraction";
    run("connectAttr -force n.v k.inDataPP");
    expectNear(vectors("k.outDataPP"), {{1.5, 0, 0}, {0, 6, 1}, {0, 0, 0}});
    run("setAttr n.d -type doubleArray 1 8; connectAttr -force n.d k.inDataPP");
    EXPECT_EQ(doubles("k.outDataPP"), (std::vector<double>{4, 0, 0})) << "a missing value counts as 0";
    run("disconnectAttr n.d k.inDataPP");
    EXPECT_TRUE(doubles("k.outDataPP").empty());
}

TEST_F(KdTree, FollowsGeometryInWorldSpace)
{
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; move 10 0 0 p; createNode kdTree -name k");
    run("connectAttr p.worldMesh[0] k.inGeometry; connectAttr " + vectorSource("q", {11, 1, 2}) + " k.inGeometry2; setAttr k.count 1");
    expectNear(vectors("k.outAveragePositionPP"), {{11, 0, 1}});
    run("move 20 0 0 p");
    expectNear(vectors("k.outAveragePositionPP"), {{19, 0, 1}});
    run("setAttr arrays.q -type vectorArray 1 30 0 -9");
    expectNear(vectors("k.outAveragePositionPP"), {{21, 0, -1}});
}

// ---- shortestPath --------------------------------------------------------------------------------------------------

struct Graph { std::vector<MVector> points; std::vector<std::vector<int>> neighbors; };

Graph graphOf(const std::string& mesh)
{
    MObject     data = plug(mesh).asMObject();
    MFnMesh     fn(data);
    MPointArray points;
    Graph       g;
    fn.getPoints(points);
    for (unsigned i = 0; i < points.length(); ++i)
        g.points.push_back(MVector(points[i]));
    g.neighbors.resize(g.points.size());
    for (int e = 0; e < fn.numEdges(); ++e) {
        int2 ends;
        fn.getEdgeVertices(e, ends);
        g.neighbors[std::size_t(ends[0])].push_back(ends[1]);
        g.neighbors[std::size_t(ends[1])].push_back(ends[0]);
    }
    return g;
}

/// The rule word for word: an ordered set of distance and vertex, run until it is empty.
std::vector<int> dijkstra(const Graph& g, int start, int end, const std::set<int>& obstacles = {})
{
    const double                     inf = std::numeric_limits<double>::infinity();
    std::vector<double>              distance(g.points.size(), inf);
    std::vector<int>                 previous(g.points.size(), -1);
    std::set<std::pair<double, int>> open{{0.0, start}};
    distance[std::size_t(start)] = 0;
    while (!open.empty()) {
        const int v = open.begin()->second;
        open.erase(open.begin());
        for (int n : g.neighbors[std::size_t(v)]) {
            if (obstacles.count(n))
                continue;
            const MVector d = g.points[std::size_t(n)] - g.points[std::size_t(v)];
            const float   x = float(d.x), y = float(d.y), z = float(d.z);
            const double  through = distance[std::size_t(v)] + double(std::sqrt(x * x + y * y + z * z));
            if (through >= distance[std::size_t(n)])
                continue;
            open.erase({distance[std::size_t(n)], n});
            distance[std::size_t(n)] = through;
            previous[std::size_t(n)] = v;
            open.insert({through, n});
        }
    }
    std::vector<int> path{end};
    while (path.back() != start && previous[std::size_t(path.back())] >= 0)
        path.push_back(previous[std::size_t(path.back())]);
    std::reverse(path.begin(), path.end());
    return path.front() == start ? path : std::vector<int>();
}

class ShortestPath : public Spatial
{
protected:
    /// A grid of unit squares in the xz plane, `side` vertices along it; vertex side * row + column.
    void grid(int side)
    {
        const std::string n = std::to_string(side - 1);
        run("polyPlane -width " + n + " -height " + n + " -subdivisionsX " + n + " -subdivisionsY " + n + " -name g;"
            "createNode shortestPath -name s; connectAttr gShape.outMesh s.inMesh; setAttr s.mode 2");
    }
    void ask(const std::string& pairs) { run("setAttr s.expression -type \"string\" \"" + pairs + "\""); }
};

TEST_F(ShortestPath, TheSamePathsAsThePlainMethod)
{
    const char* meshes[] = {"polyPlane -width 1 -height 1 -subdivisionsX 18 -subdivisionsY 13 -name m",
                            "polySphere -subdivisionsX 24 -subdivisionsY 16 -name m",
                            "polyTorus -subdivisionsX 20 -subdivisionsY 12 -name m",
                            // points on top of each other: edges of no length
                            "polyPlane -width 1 -height 1 -subdivisionsX 9 -subdivisionsY 9 -name m; scale -r 0 1 1 m.vtx[20:59]"};
    for (const char* mesh : meshes) {
        SCOPED_TRACE(mesh);
        run("file -force -new");
        run(mesh);
        run("createNode shortestPath -name s; connectAttr mShape.outMesh s.inMesh; setAttr s.mode 2;"
            "createNode network -name o; addAttr -longName i -dataType Int32Array o; connectAttr o.i s.inObstacleVertexComponents");
        const Graph  g = graphOf("mShape.outMesh");
        const int    count = int(g.points.size());
        std::mt19937 random(6);
        for (bool blocked : {false, true}) {
            std::set<int> obstacles;
            for (int i = 0; blocked && i < count / 5; ++i)
                obstacles.insert(int(random() % unsigned(count)));
            setInts("o.i", {obstacles.begin(), obstacles.end()});
            run(std::string("setAttr s.obstacles ") + (blocked ? "1" : "0"));
            std::string      pairs;
            std::vector<int> vertices, counts;
            for (int i = 0; i < 60; ++i) {
                const int a = int(random() % unsigned(count)), b = int(random() % unsigned(count));
                pairs += std::to_string(a) + ":" + std::to_string(b) + " ";
                const std::vector<int> path = a == b ? std::vector<int>() : dijkstra(g, a, b, obstacles);
                if (path.empty())
                    continue;
                vertices.insert(vertices.end(), path.begin(), path.end());
                counts.push_back(int(path.size()));
            }
            ask(pairs);
            EXPECT_EQ(ints("s.outCounts"), counts);
            EXPECT_EQ(ints("s.outIndexPP"), vertices);
            const std::vector<double> distances = doubles("s.outDistancePP");
            const std::vector<int>    steps = ints("s.outStepPP"), edges = ints("s.outIndexPE");
            ASSERT_EQ(distances.size(), vertices.size());
            EXPECT_EQ(edges.size(), vertices.size() - counts.size());
            double sum = 0;
            for (std::size_t k = 0; k < vertices.size(); ++k) {
                sum = steps[k] == 0 ? 0 : sum + (g.points[std::size_t(vertices[k])] - g.points[std::size_t(vertices[k - 1])]).length();
                EXPECT_NEAR(distances[k], sum, 1e-5);
            }
        }
    }
}

TEST_F(ShortestPath, TiesLimitsAndCrossings)
{
    grid(4);   // 12 13 14 15 / 8 9 10 11 / 4 5 6 7 / 0 1 2 3
    struct Case
    {
        const char*      when;
        std::string      set, pairs;
        std::vector<int> vertices, counts, steps;
    };
    const Case cases[] = {
        {"equal routes: the smaller vertex first", "", "0:5 5:0", {0, 1, 5, 5, 1, 0}, {3, 3}, {0, 1, 2, 0, 1, 2}},
        {"start is end, past the end, negative, malformed", "", "3:3 0:16 -1:2 a:1 4 :5 1:2:x", {}, {}, {}},
        {"limits of the pair count points", "", "0:3:3  0:3:1 0:3:0", {0, 1, 2, 0, 0, 1, 2, 3}, {3, 1, 4}, {0, 1, 2, 0, 0, 1, 2, 3}},
        {"a distance of the pair", "", "0:3:9:1.5 0:3:-1:2", {0, 1, 0, 1, 2}, {2, 3}, {0, 1, 0, 1, 2}},
        {"those of the node", "setAttr s.maxSteps 2; setAttr s.maxDistance 0.5", "0:3 0:3:3 0:3::2 0:3:4:2", {0, 0, 0, 1, 0, 1, 2}, {1, 1, 2, 3},
         {0, 0, 0, 1, 0, 1, 2}},
        {"paths may cross", "setAttr s.maxSteps -1; setAttr s.maxDistance -1", "4:7 1:13", {4, 5, 6, 7, 1, 5, 9, 13}, {4, 4}, {0, 1, 2, 3, 0, 1, 2, 3}},
        {"or not", "setAttr s.intersecting 0", "4:7 1:13 6:2", {4, 5, 6, 7, 1, 5}, {4, 2}, {0, 1, 2, 3, 0, 1}},
        {"what was published first decides where to cut", "", "4:7 7:4", {4, 5, 6, 7, 7, 6, 5, 4}, {4, 4}, {0, 1, 2, 3, 0, 1, 2, 3}},
        {"travel without steps", "setAttr s.intersecting 1; setAttr s.travel 1", "0:3", {}, {}, {}},
        {"travel: the last edge", "setAttr s.maxSteps 9", "0:3 0:1", {2, 3}, {2}, {2, 3}},
        {"travel: as far as the distance goes", "", "0:3:9:1.2 0:3:9:2 0:3:9:0.5", {0, 1, 1, 2}, {2, 2}, {0, 1, 1, 2}},
        {"inactive", "setAttr s.active 0", "0:3", {}, {}, {}},
    };
    for (const Case& c : cases) {
        run(c.set);
        ask(c.pairs);
        EXPECT_EQ(ints("s.outIndexPP"), c.vertices) << c.when;
        EXPECT_EQ(ints("s.outCounts"), c.counts) << c.when;
        EXPECT_EQ(ints("s.outStepPP"), c.steps) << c.when;
        EXPECT_EQ(vectors("s.outPositionPP").size(), c.vertices.size()) << c.when;
    }
    ask("0:3");
    run("setAttr s.active 1; setAttr s.travel 0; setAttr s.nodeState 2");
    EXPECT_TRUE(ints("s.outIndexPP").empty()) << "blocked: as it was";
}

MObject vertexList(const std::vector<int>& ids, MFn::Type also = MFn::kInvalid)
{
    MFnComponentListData      list;
    MObject                   data = list.create();
    MFnSingleIndexedComponent fn;
    MObject                   component = fn.create(MFn::kMeshVertComponent);
    for (int id : ids)
        fn.addElement(id);
    list.add(component);
    if (also != MFn::kInvalid) {
        component = fn.create(also);
        fn.addElement(15);
        list.add(component);
    }
    return data;
}

TEST_F(ShortestPath, PairsOfComponentsObstaclesAndArrays)
{
    grid(4);
    run("createNode network -name n; addAttr -longName a -dataType componentList n; addAttr -longName b -dataType componentList n;"
        "addAttr -longName o -dataType componentList n; addAttr -longName i -dataType Int32Array n; addAttr -longName d -dataType doubleArray n;"
        "connectAttr n.a s.inStartComponents; connectAttr n.b s.inEndComponents; connectAttr n.o s.inObstacleVertexComponents;"
        "setAttr s.mode 0");
    plug("n.a").setMObject(vertexList({0, 4}, MFn::kMeshPolygonComponent));
    plug("n.b").setMObject(vertexList({2, 6, 9}));
    EXPECT_EQ(ints("s.outIndexPP"), (std::vector<int>{0, 1, 2, 4, 5, 6})) << "one to one, the first component counts";
    run("setAttr n.i -type Int32Array 1 2; connectAttr n.i s.inMaxStepPP");
    EXPECT_EQ(ints("s.outCounts"), (std::vector<int>{2, 2})) << "the limit of the first pair stays in force";
    run("setAttr n.i -type Int32Array 2 2 -1; setAttr n.d -type doubleArray 2 -1 0.5; connectAttr n.d s.inMaxDistancePP");
    EXPECT_EQ(ints("s.outCounts"), (std::vector<int>{2, 1}));
    run("setAttr n.i -type Int32Array 0; setAttr n.d -type doubleArray 0; setAttr s.mode 1");
    EXPECT_EQ(ints("s.outCounts"), (std::vector<int>{3, 4, 4, 4, 3, 3})) << "starts as the outer loop";

    run("setAttr s.mode 2");
    ask("4:6");
    plug("n.o").setMObject(vertexList({5, 1}));
    EXPECT_EQ(ints("s.outIndexPP"), (std::vector<int>{4, 5, 6}));
    run("setAttr s.obstacles 1");
    EXPECT_EQ(ints("s.outIndexPP"), (std::vector<int>{4, 8, 9, 10, 6})) << "around";
    plug("n.o").setMObject(vertexList({5, 1, 9, 13}));
    EXPECT_TRUE(ints("s.outCounts").empty()) << "no way";
    ask("5:6 6:5");
    EXPECT_EQ(ints("s.outIndexPP"), (std::vector<int>{5, 6})) << "out of an obstacle, not into it";
    run("setAttr s.obstacles 0");
    EXPECT_EQ(ints("s.outCounts"), (std::vector<int>{2, 2}));

    MFnComponentListData      list(plug("s.outVertexComponents").asMObject());
    MFnSingleIndexedComponent fn(list[0]);
    EXPECT_EQ(fn.componentType(), MFn::kMeshVertComponent);
    EXPECT_EQ(fn.elementCount(), 2);
    MFnComponentListData edges(plug("s.outEdgeComponents").asMObject());
    EXPECT_EQ(MFnSingleIndexedComponent(edges[0]).elementCount(), 1);
}

TEST_F(ShortestPath, CurvesColorsAndKeptLengths)
{
    grid(3);   // 6 7 8 / 3 4 5 / 0 1 2, from -1 to 1
    run("createNode nurbsCurve -name c; createNode nurbsCurve -name d; connectAttr s.outCurves[2] c.create; connectAttr s.outCurves[7] d.create");
    ask("0:2");
    MFnNurbsCurve first(plug("c.worldSpace[0]").asMObject());
    EXPECT_EQ(first.numCVs(), 3);
    EXPECT_EQ(first.degree(), 1);
    MPoint p;
    first.getCV(2, p);
    EXPECT_TRUE(p.isEquivalent(MPoint(1, 0, 1), 1e-6));
    EXPECT_NE(MFnNurbsCurve(plug("d.worldSpace[0]").asMObject()).numCVs(), 3) << "one path only";

    run("polyColorPerVertex -rgb 0.25 0.5 0.75 -alpha 1 g; setAttr s.colors 1");
    EXPECT_EQ(doubles("s.outRgbaPP"), (std::vector<double>{0.25, 0.5, 0.75, 1, 0.25, 0.5, 0.75, 1, 0.25, 0.5, 0.75, 1}));
    run("setAttr s.colorSet -type \"string\" \"none of this name\"");
    EXPECT_TRUE(doubles("s.outRgbaPP").empty());

    // moved points are published, the way stays that of the shape the lengths were read from
    run("move -r 0 50 0 g.vtx[1]");
    EXPECT_EQ(ints("s.outIndexPP"), (std::vector<int>{0, 1, 2}));
    expectNear(vectors("s.outPositionPP"), {{-1, 0, 1}, {0, 50, 1}, {1, 0, 1}});
    EXPECT_EQ(doubles("s.outDistancePP"), (std::vector<double>{0, 1, 2}));
    run("string $maker[] = `ls -type polyPlane`; setAttr ($maker[0] + \".subdivisionsWidth\") 4");   // other counts: read anew
    EXPECT_EQ(ints("s.outCounts").size(), 1u);
}

// ---- resolvePointCollisions ----------------------------------------------------------------------------------------

class Collisions : public Spatial
{
protected:
    void build(const std::vector<double>& xyz)
    {
        run("createNode resolvePointCollisions -name r; setAttr r.iterations 1; connectAttr " + vectorSource("p", xyz) + " r.inGeometry");
    }
};

TEST_F(Collisions, ByHand)
{
    // two points half a unit apart and one alone; squared distance 0.25, overlap 0.75 of which neighbours push the mean
    build({0, 0, 0, 0.5, 0, 0, 9, 0, 0});
    run("createNode network -name n; addAttr -longName f -dataType doubleArray n; addAttr -longName i -dataType Int32Array n");
    struct Case { const char* when; std::string set; double a, b; };
    // alone: the first one moves by 0.75 / 2; the second sees it at -0.375 but the distance of before, and moves as far
    const Case cases[] = {
        {"one by one", "", -0.375, 0.875},
        {"inactive", "setAttr r.active 0", 0, 0.5},
        {"a radius smaller than the squared distance", "setAttr r.active 1; setAttr r.radius 0.2", 0, 0.5},
        {"its square root reaches", "setAttr r.radius 0.26", -0.005, 0.505},
        // mutual: first pair 0.75 by halves: -0.375, 0.875; the second point's look-up is from there: 0.875^2 > 0.75...
        {"mutual", "setAttr r.radius 1; setAttr r.mutual 1", -0.375 - 0.1171875, 0.875 + 0.1171875},
        {"a subset of one", "setAttr r.mutual 0; setAttr n.i -type Int32Array 3 1 77 -1; connectAttr n.i r.inComponents; setAttr r.useComponents 1",
         0, 0.875},
    };
    for (const Case& c : cases) {
        run(c.set);
        expectNear(vectors("r.outGeometry"), {{c.a, 0, 0}, {c.b, 0, 0}, {9, 0, 0}}, 1e-6);
    }
    // factors: the second point has none and looks for nobody; the larger one moves less when it has mass
    run("setAttr r.useComponents 0; setAttr n.f -type doubleArray 1 1; connectAttr n.f r.inRadiusPP");
    expectNear(vectors("r.outGeometry"), {{-0.375, 0, 0}, {0.5, 0, 0}, {9, 0, 0}}, 1e-6);
    run("setAttr r.mutual 1; setAttr r.radiusAffectsMass 1; setAttr n.f -type doubleArray 3 1 0.1 1");
    const std::vector<MVector> moved = vectors("r.outGeometry");
    EXPECT_NEAR(moved[0].x, -0.75 * 0.1 / 1.1, 1e-6);
    EXPECT_NEAR(moved[1].x, 0.5 + 0.75 * 1.0 / 1.1, 1e-6);
}

TEST_F(Collisions, PushesApartWhatIsTooNear)
{
    const std::vector<double> xyz = randomPoints(200, 8);
    build(xyz);
    run("setAttr r.radius 0.0025; setAttr r.iterations 60; setAttr r.mutual 1");   // a reach of 0.05
    const std::vector<MVector> moved = vectors("r.outGeometry");
    const auto nearest = [](const std::vector<MVector>& p) {
        double d = 9;
        for (std::size_t i = 0; i < p.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                d = std::min(d, (p[i] - p[j]).length());
        return d;
    };
    std::vector<MVector> before;
    for (std::size_t i = 0; i < 200; ++i)
        before.push_back(MVector(&xyz[3 * i]));
    EXPECT_LT(nearest(before), 0.03);
    EXPECT_GT(nearest(moved), 0.045);
}

TEST_F(Collisions, GeometryComponentsAndCoincidentPoints)
{
    run("polyPlane -width 2 -height 2 -subdivisionsX 1 -subdivisionsY 1 -name p; move 5 0 0 p; scale 0.1 1 0.1 p;"
        "createNode resolvePointCollisions -name r; setAttr r.iterations 1; setAttr r.useComponents 1;"
        "createNode network -name n; addAttr -longName c -dataType componentList n; connectAttr n.c r.inComponents;"
        "connectAttr p.worldMesh[0] r.inGeometry");
    plug("n.c").setMObject(vertexList({0}));
    const std::vector<MVector> moved = points("r.outGeometry");
    ASSERT_EQ(moved.size(), 4u);
    EXPECT_LT(moved[0].x, -1.5) << "in world space, and back";
    EXPECT_TRUE(moved[3].isEquivalent(MVector(1, 0, -1), 1e-6)) << "not selected";
    run("disconnectAttr n.c r.inComponents");
    expectNear(points("r.outGeometry"), {{-1, 0, 1}, {1, 0, 1}, {-1, 0, -1}, {1, 0, -1}});
    run("file -force -new");
    build({1, 2, 3, 1, 2, 3});
    run("setAttr r.mutual 1");
    expectNear(vectors("r.outGeometry"), {{1, 2, 3}, {1, 2, 3}});
}

} // namespace

TEST_F(Spatial, ManyPathsCanBeInterruptedAndThoseFoundStay)
{
    run("polyPlane -subdivisionsX 60 -subdivisionsY 60 -name p; createNode network -name n; addAttr -longName all -dataType componentList n;"
        "setAttr n.all -type componentList 1 \"vtx[0:3720]\"; createNode shortestPath -name s; setAttr s.mode 1;"
        "connectAttr pShape.outMesh s.inMesh; connectAttr n.all s.inStartComponents; connectAttr n.all s.inEndComponents");
    const auto        before = std::signal(SIGINT, SIG_IGN);   // outside of the search it means nothing here
    std::atomic<bool> done{false};
    std::thread       user([&] {
        for (; !done; std::this_thread::sleep_for(std::chrono::milliseconds(20)))
            kill(getpid(), SIGINT);
    });
    Warnings               warnings;
    const std::vector<int> counts = ints("s.outCounts");
    done = true;
    user.join();
    std::signal(SIGINT, before);
    EXPECT_GT(counts.size(), 5u);
    EXPECT_LT(counts.size(), 3721u * 3720u);
    EXPECT_EQ(ints("s.outIndexPP").size(), std::size_t(std::accumulate(counts.begin(), counts.end(), 0)));
    ASSERT_EQ(warnings.texts.size(), 1u);
    EXPECT_NE(warnings.texts[0].find("s: Interrupted after "), std::string::npos) << warnings.texts[0];
    run("setAttr n.all -type componentList 1 \"vtx[0:3]\"");   // searched to the end again
    EXPECT_EQ(ints("s.outCounts").size(), 12u);
    EXPECT_EQ(warnings.texts.size(), 1u);
}
