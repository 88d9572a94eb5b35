// shatter through the graph: laws of Voronoi cells, what it passes on as it is, and a scene that it leaves as it was.
#include <gtest/gtest.h>

#include <maya/MDGContext.h>
#include <maya/MDGContextGuard.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MTime.h>

#include <cmath>
#include <random>
#include <set>
#include <string>

#include "command/registry.h"
#include "generators/voronoi.h"
#include "graph/undo.h"
#include "mel/interpreter.h"
#include "python/python.h"
#include "scene.h"
#include "shards.h"

using namespace scene;
using shards::Pieces;

namespace {

class Shatter : public scene::Test
{
protected:
    void TearDown() override { run("currentUnit -linear cm"); }

    /// A node `s` on the mesh of that transform, with points as its cells.
    static void shatter(const std::string& mesh, const std::vector<double>& points)
    {
        std::string values;
        for (double p : points)
            values += std::to_string(p) + " ";
        run("createNode shatter -n s; setAttr s.printStatus 0");
        run("connectAttr " + mesh + "Shape.outMesh s.inGeometry");
        run("connectAttr " + arraySource("cells", "vectorArray", int(points.size() / 3), values) + " s.inPositionPP");
        run("setAttr s.autoEvaluate 1");
    }
    static MObject result() { return plug("s.outGeometry").asMObject(); }

    /// Points on whole steps of the grid that the triangulation compares them on, in a cube around the origin: what it
    /// finds is exact.
    static std::vector<double> gridPoints(int count, double half, unsigned seed, double inner = 1)
    {
        std::mt19937        random(seed);
        std::vector<double> points{-half, -half, -half, half, half, half};
        const int           margin = int(512 * (1 - inner));
        while (int(points.size()) < 3 * count)
            points.push_back((margin + int(random() % unsigned(1025 - 2 * margin))) * half / 512 - half);
        return points;
    }
    static std::set<std::string> nodes()
    {
        std::set<std::string> names;
        for (const std::string& n : mirk::mel::execute("ls").asStrings())
            names.insert(n);
        return names;
    }
    static double volumeOf(const std::string& plugName) { return Pieces(plug(plugName).asMObject()).volume(); }
    static std::size_t nearest(const std::vector<double>& points, const MVector& place)
    {
        std::size_t best = 0;
        for (std::size_t i = 1; 3 * i < points.size(); ++i)
            if ((place - at(points, i)).length() < (place - at(points, best)).length())
                best = i;
        return best;
    }
    static MVector at(const std::vector<double>& points, std::size_t i) { return {points[3 * i], points[3 * i + 1], points[3 * i + 2]}; }
};

const std::vector<double> kCorners{-0.5, -0.5, -0.5, 0.5, -0.5, -0.5, -0.5, 0.5, -0.5, -0.5, -0.5, 0.5};

TEST_F(Shatter, ShardsAreClosedAndFillTheMesh)
{
    struct Case { const char* make; int count; double half; int cleanup; };
    const Case cases[] = {
        {"polyCube -ch 0 -w 2 -h 2 -d 2 -n m", 12, 1, 0},
        {"polyCube -ch 0 -w 2 -h 2 -d 2 -sx 3 -sy 2 -sz 4 -n m", 30, 1, 1},
        {"polySphere -ch 0 -sx 24 -sy 16 -n m", 35, 1, 0},
        {"polyTorus -ch 0 -r 1.5 -sr 0.4 -sx 30 -sy 16 -n m", 25, 2, 0},
        {"polyCylinder -ch 0 -sx 20 -h 1.9 -n m", 20, 1, 1},
        {"file -i \"/usr/share/glmark2/models/bunny.obj\"; rename bunny m", 40, 1, 0},   // a scan of 69 666 triangles
    };
    for (const Case& c : cases) {
        run("file -f -new");
        if (std::string(c.make).find("bunny") != std::string::npos && !std::filesystem::exists("/usr/share/glmark2/models/bunny.obj"))
            continue;
        run(c.make);
        shatter("m", gridPoints(c.count, c.half, unsigned(c.count)));
        run("setAttr s.cleanup " + std::to_string(c.cleanup));
        const Pieces pieces(result());
        EXPECT_TRUE(pieces.allClosed()) << c.make;
        EXPECT_GT(pieces.pieces.size(), std::size_t(c.count) / 2) << c.make;
        const double whole = volumeOf("mShape.outMesh");
        EXPECT_NEAR(pieces.volume(), whole, 1e-4 * whole) << c.make;
        for (const shards::Piece& piece : pieces.pieces)   // the wall of a hole counts as a piece and below 0
            EXPECT_TRUE(piece.volume > 0 || c.count == 40) << c.make;
    }
}

TEST_F(Shatter, EveryPointOfAShardIsNearestToItsCell)
{
    run("polySphere -ch 0 -r 2 -sx 20 -sy 14 -n m");
    std::vector<double> points = gridPoints(30, 1, 5);   // the sphere's middle: each cell holds its point
    shatter("m", points);
    const Pieces pieces(result());
    ASSERT_EQ(pieces.pieces.size(), points.size() / 3);
    for (std::size_t i = 0; i < pieces.pieces.size(); ++i)
        for (int v : pieces.pieces[i].vertices) {
            const MVector p = pieces.at(v);
            EXPECT_LE((p - at(points, i)).length(), (p - at(points, nearest(points, p))).length() + 1e-5) << i;
        }
}

TEST_F(Shatter, DistanceLeavesAGap)
{
    run("polyCube -ch 0 -w 4 -h 4 -d 4 -n m");
    const std::vector<double> points = gridPoints(12, 1, 9);
    shatter("m", points);
    run("setAttr s.distance 0.125");
    const Pieces               pieces(result());
    const voronoi::Neighbors   neighbors = voronoi::neighborsInSpace(points).neighbors;
    ASSERT_EQ(pieces.pieces.size(), neighbors.size());
    EXPECT_TRUE(pieces.allClosed());
    EXPECT_LT(pieces.volume(), 0.95 * 64);
    for (const auto& [i, others] : neighbors)
        for (int v : pieces.pieces[std::size_t(i)].vertices)
            for (int j : others) {
                const MVector way = at(points, std::size_t(i)) - at(points, std::size_t(j));
                EXPECT_GE((pieces.at(v) - at(points, std::size_t(j))) * way / way.length(), 0.625 * way.length() - 1e-5);
            }
    run("setAttr s.distance 0");
    EXPECT_NEAR(Pieces(result()).volume(), 64, 64e-4);
}

TEST_F(Shatter, SurfaceModeCutsTheSkinOnly)
{
    run("polySphere -ch 0 -sx 20 -sy 14 -n m");
    shatter("m", gridPoints(20, 0.5, 2));
    run("setAttr s.shatterMode 1");
    const Pieces pieces(result());
    const double whole = Pieces(plug("mShape.outMesh").asMObject()).area();
    EXPECT_NEAR(pieces.area(), whole, 1e-4 * whole);
    EXPECT_FALSE(pieces.allClosed());
}

TEST_F(Shatter, PointsInAPlaneAndOnCurves)
{
    run("polyCube -ch 0 -w 4 -h 2 -d 4 -n m");
    const std::vector<double> flat{-1, 0.5, -1, 1, 0.5, -1, -1, 0.5, 1, 1, 0.5, 1.0};   // quarters
    shatter("m", flat);
    const auto expectQuarters = [&](const char* what) {
        const Pieces pieces(result());
        ASSERT_EQ(pieces.pieces.size(), 4u) << what;
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(pieces.pieces[i].volume, 8, 1e-4) << what;
            for (int v : pieces.pieces[i].vertices)
                EXPECT_GE(pieces.at(v).x * flat[3 * i], -1e-5) << what;
        }
    };
    expectQuarters("an array");
    run("curve -d 1 -p -2 0 -1 -p 0 0 -1 -p -2 0 1 -p 0 0 1 -n c; setAttr c.t 1 0.5 0");   // CVs count in world space
    run("connectAttr -f c.worldSpace[0] s.inPositionPP");
    expectQuarters("a curve");

    run("setAttr c.t 11 20.5 5; group -em -n g; setAttr g.t 10 20 5; connectAttr g.worldInverseMatrix s.inWorldInverseMatrix");
    expectQuarters("a curve in the space of the shape");
    run("setAttr g.s 2 2 2; setAttr c.s 2 2 2; setAttr c.t 12 21 5");
    expectQuarters("scaled with the shape");
}

TEST_F(Shatter, LengthsOfCommandsAreInTheUnitsOfTheUser)
{
    struct Case { const char* unit; double factor; };   // of the plane's place, by the rounded table
    const Case cases[] = {{"mm", 1}, {"m", 1}, {"cm", 1}, {"inch", 0.394 * 2.54}, {"foot", 0.033 * 30.48}, {"yard", 0.011 * 91.44}};
    run("polyCube -ch 0 -w 4 -h 4 -d 4 -n m");
    shatter("m", {0, 0, 0, 2, 0, 0, 1, -50, 0});
    for (const Case& c : cases) {
        run(std::string("currentUnit -linear ") + c.unit + "; setAttr s.distance 0");
        const Pieces pieces(result());
        ASSERT_EQ(pieces.pieces.size(), 2u) << c.unit;
        double most = -10;
        for (int v : pieces.pieces[0].vertices)
            most = std::max(most, pieces.at(v).x);
        EXPECT_NEAR(most, c.factor, 1e-5) << c.unit;
    }
}

TEST_F(Shatter, WhatIsPassedOnAsItIs)
{
    run("polyCube -ch 0 -n m");
    struct Case { const char* what; std::vector<double> points; };
    const Case cases[] = {
        {"two points", {0, 0, 0, 1, 1, 1}}, {"no point", {}}, {"a line", {0, 0, 0, 0.1, 0, 0, 0.2, 0, 0, 0.3, 0, 0}},
        {"one place", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
    };
    for (const Case& c : cases) {
        shatter("m", c.points);
        EXPECT_EQ(MFnMesh(result()).numPolygons(), 6) << c.what;
        run("delete s arrays");
    }
    shatter("m", kCorners);
    EXPECT_EQ(Pieces(result()).pieces.size(), 4u);
    for (const char* change : {"setAttr s.autoEvaluate 0", "setAttr s.nodeState 1", "disconnectAttr arrays.cells s.inPositionPP"}) {
        run(change);
        EXPECT_EQ(MFnMesh(result()).numPolygons(), 6) << change;
        run("setAttr s.autoEvaluate 1; setAttr s.nodeState 0");
    }
}

TEST_F(Shatter, StatusIsTold)
{
    run("polyCube -ch 0 -n m");
    shatter("m", kCorners);
    run("setAttr s.printStatus 1");
    const Warnings told(mirk::message::kInfo);
    result();
    const std::vector<std::string> expected{"s: Cooking geometry ...", "s: 4 shard(s) created in 0 seconds."};
    EXPECT_EQ(told.texts, expected);
}

TEST_F(Shatter, ColorsUVsAndHardEdges)
{
    run("polyCube -ch 0 -n m; polyColorPerVertex -rgb 1 0.5 0 m; polySoftEdge -ch 0 -a 0 m");
    shatter("m", kCorners);
    EXPECT_EQ(MFnMesh(result()).numColors(), 0);
    EXPECT_GT(MFnMesh(result()).numUVs(), 14);
    run("setAttr s.stripPointColors 0");
    MFnMesh fn(result());
    MColor  color;
    EXPECT_GT(fn.numColors(), 0);
    int hard = 0;
    for (int e = 0; e < fn.numEdges(); ++e) {
        int2 ends;
        fn.getEdgeVertices(e, ends);
        MPoint a, b;
        fn.getPoint(ends[0], a);
        fn.getPoint(ends[1], b);
        int onSides = 0;   // both ends on the same two sides: a part of an edge of the cube
        for (unsigned k = 0; k < 3; ++k)
            onSides += std::fabs(std::fabs(a[k]) - 0.5) < 1e-5 && std::fabs(a[k] - b[k]) < 1e-5;
        hard += onSides == 2;
        EXPECT_TRUE(onSides != 2 || !fn.isEdgeSmooth(e)) << e;
    }
    EXPECT_GT(hard, 12);
}

// ---- the scene afterwards ----------------------------------------------------------------------------------------

/// What a cook must leave alone.
struct SceneState
{
    std::set<std::string>    nodes;
    std::string              selected, echo, undo, sourceTargets;
    std::vector<std::string> hilite;

    bool operator==(const SceneState& o) const
    {
        return nodes == o.nodes && selected == o.selected && echo == o.echo && undo == o.undo && hilite == o.hilite && sourceTargets == o.sourceTargets;
    }
};

SceneState stateOfScene()
{
    SceneState now;
    for (const std::string& n : mirk::mel::execute("ls").asStrings())
        now.nodes.insert(n);
    now.selected = mirk::mel::execute("stringArrayToString(`ls -sl`, \" \")").asString();
    now.echo = mirk::mel::execute("commandEcho -q -st").asString();
    now.sourceTargets = mirk::mel::execute("stringArrayToString(`listConnections -p 1 -s 0 mShape`, \" \")").asString();
    for (const std::string& step : mirk::undo::names())
        now.undo += step + " ";
    MSelectionList hilite;
    MStringArray   names;
    MGlobal::getHiliteList(hilite);
    hilite.getSelectionStrings(names);
    for (unsigned i = 0; i < names.length(); ++i)
        now.hilite.push_back(names[i].asChar());
    return now;
}

class ShatterScene : public Shatter
{
protected:
    void SetUp() override
    {
        Shatter::SetUp();
        run("polyCube -ch 0 -n m; polySphere -ch 0 -n other; createNode polySoftEdge -n polyCut1");   // a name that is taken
        shatter("m", kCorners);
        MSelectionList hilite;
        hilite.add("other");
        MGlobal::setHiliteList(hilite);
        run("select -r m.vtx[1:3] other; commandEcho -st 1");
    }
    void TearDown() override
    {
        run("commandEcho -st 0");
        Shatter::TearDown();
    }
};

TEST_F(ShatterScene, IsAsBeforeWhoeverAsks)
{
    const char* const asks[] = {
        "mel getAttr -type s.outGeometry; polyEvaluate -f rShape",
        "mel polyEvaluate -v rShape",
        "py import maya.cmds as mc; mc.polyEvaluate('rShape', face=True)",
        "mel setAttr persp.tx `polyEvaluate -f rShape`",   // a command that is undoable
    };
    run("createNode transform -n r; createNode mesh -n rShape -p r; connectAttr s.outGeometry rShape.inMesh; select -r m.vtx[1:3] other");
    for (const std::string ask : asks) {
        run("setAttr s.distance 0");
        mirk::undo::flush();
        SceneState before = stateOfScene();
        if (ask.rfind("py ", 0) == 0)
            mirk::python::run(ask.substr(3));
        else
            mirk::mel::execute(ask.substr(4));
        SceneState after = stateOfScene();
        const bool recorded = ask.find("setAttr") != ask.npos;
        if (recorded)
            before.undo = after.undo;
        EXPECT_TRUE(before == after) << ask;
        EXPECT_EQ(mirk::mel::execute("polyEvaluate -s rShape").asInt(), 4) << ask;
        if (recorded) {   // what is undone is the command, without the cook
            EXPECT_TRUE(mirk::undo::undoOne());
            EXPECT_EQ(stateOfScene().nodes, before.nodes) << ask;
        }
    }
}

TEST_F(ShatterScene, AtAnotherTime)
{
    run("setKeyframe -t 1 -v 0 s.distance; setKeyframe -t 10 -v 0.25 s.distance; currentTime 1; select -r m.vtx[1:3] other");
    EXPECT_NEAR(Pieces(result()).volume(), 1, 1e-4);
    const SceneState before = stateOfScene();
    {
        const MDGContextGuard guard(MDGContext(MTime(10, MTime::uiUnit())));
        const double          volume = Pieces(result()).volume();
        EXPECT_GT(volume, 0.1);
        EXPECT_LT(volume, 0.6);
    }
    EXPECT_TRUE(stateOfScene() == before);
    EXPECT_NEAR(Pieces(result()).volume(), 1, 1e-4);
}

TEST_F(ShatterScene, NamesThatAreNotUnique)
{
    run("group -n a m; duplicate -n b a; setAttr \"b|m.tx\" 3; delete s");
    run("createNode shatter -n s; connectAttr \"b|m|mShape.worldMesh[0]\" s.inGeometry; connectAttr arrays.cells s.inPositionPP;"
        "setAttr s.autoEvaluate 1; setAttr s.printStatus 0; connectAttr \"b|m|mShape.worldInverseMatrix[0]\" s.inWorldInverseMatrix");
    run("setAttr arrays.cells -type vectorArray 4 2.5 -0.5 -0.5 3.5 -0.5 -0.5 2.5 0.5 -0.5 2.5 -0.5 0.5");   // where b is
    const Pieces pieces(result());
    EXPECT_EQ(pieces.pieces.size(), 4u);
    EXPECT_NEAR(pieces.volume(), 1, 1e-4);
}

TEST_F(ShatterScene, EvaluatedAgainGivesTheSame)
{
    const auto all = [&] {
        run("setAttr s.distance 0");
        MPointArray points;
        MFnMesh(result()).getPoints(points);
        std::vector<double> values;
        for (unsigned i = 0; i < points.length(); ++i)
            values.insert(values.end(), {points[i].x, points[i].y, points[i].z});
        return values;
    };
    const std::vector<double> first = all();
    EXPECT_GT(first.size(), 60u);
    EXPECT_EQ(all(), first);
}

/// A row in place of a command's own, which fails at the n-th call or does something else first.
class Failing
{
public:
    Failing(const char* name, int at, void (*then)() = [] { throw mirk::command::Error("made to fail"); }) : row_(*mirk::command::find(name)), own_(mirk::command::find(name))
    {
        left = at;
        does = then;
        handler = own_->handler;
        row_.handler = [](mirk::command::Call& call) {
            if (left > 0 && --left == 0)
                does();
            return handler(call);
        };
        mirk::command::add(row_);
    }
    ~Failing() { mirk::command::add(*own_); }
    static bool happened() { return left == 0; }

    static inline int                  left = 0;
    static inline void (*does)() = nullptr;
    static inline mirk::command::Handler handler = nullptr;

private:
    mirk::command::Command        row_;
    const mirk::command::Command* own_;
};

TEST_F(ShatterScene, IsAsBeforeAfterAnInterrupt)
{
    run("createNode transform -n r; createNode mesh -n rShape -p r; connectAttr s.outGeometry rShape.inMesh; select -r m.vtx[1:3] other");
    struct Case { const char* command; int at; bool stopped; };
    const Case cases[] = {{"setAttr", 1, true}, {"setAttr", 30, true}, {"connectAttr", 20, true}, {"connectAttr", 36, false}};   // the last: it meets the clean-up
    for (const Case& c : cases) {
        run("setAttr s.distance 0");
        mirk::undo::flush();
        const SceneState before = stateOfScene();
        const Warnings   errors(mirk::message::kError);
        int              faces = 0;
        {
            const Failing failing(c.command, c.at, mirk::mel::interrupt);
            faces = mirk::mel::execute("polyEvaluate -f rShape").asInt();
        }
        EXPECT_TRUE(stateOfScene() == before) << c.command << c.at;
        EXPECT_EQ(faces == 6, c.stopped) << c.command << c.at;
    }
}

TEST_F(ShatterScene, IsAsBeforeAfterEveryCommandThatFails)
{
    for (const char* command : {"createNode", "connectAttr", "setAttr", "listRelatives"})
        for (int at = 1; at < 400; at += at < 12 ? 1 : 13) {
            run("setAttr s.distance 0");
            mirk::undo::flush();
            const SceneState before = stateOfScene();
            const Warnings   errors(mirk::message::kError);
            int              faces = 0;
            bool             happened = false;
            {
                const Failing failing(command, at);
                faces = MFnMesh(result()).numPolygons();
                happened = Failing::happened();
            }
            EXPECT_TRUE(stateOfScene() == before) << command << at;
            if (!happened)
                break;
            EXPECT_EQ(faces, 6) << command << at;
            ASSERT_FALSE(errors.texts.empty()) << command << at;
            EXPECT_EQ(errors.texts.back().rfind("s: Cannot shatter the geometry, which is passed on as it is: '" + std::string(command), 0), 0u)
                << errors.texts.back();
        }
    run("setAttr s.distance 0");
    EXPECT_EQ(Pieces(result()).pieces.size(), 4u);
}

/// The source goes while its shards are cut.
TEST_F(ShatterScene, SurvivesTheEndOfItsSource)
{
    const std::set<std::string> before = nodes();
    {
        const Warnings errors(mirk::message::kError);
        const Failing  failing("setAttr", 40, [] { mirk::mel::execute("delete m"); });
        EXPECT_EQ(MFnMesh(result()).numPolygons(), 6);
        EXPECT_FALSE(errors.texts.empty());
    }
    std::set<std::string> after = nodes();
    after.insert({"m", "mShape"});
    EXPECT_EQ(after, before);
}

} // namespace
