// Counts of the polygon primitives against the formulas of their grids, over many subdivisions, and edits of their history.
#include <array>
#include <cmath>

#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class PrimitiveCounts : public Host
{
protected:
    struct Counts { int points, edges, faces; };

    static Counts of(const std::string& object)
    {
        const auto count = [&](const char* flag) { return int(num(std::string("polyEvaluate ") + flag + " " + object)); };
        return {count("-v"), count("-e"), count("-f")};
    }
    static void expect(const std::string& make, Counts c)
    {
        mel(make + " -n it");
        const Counts now = of("it");
        EXPECT_EQ(now.points, c.points) << make;
        EXPECT_EQ(now.edges, c.edges) << make;
        EXPECT_EQ(now.faces, c.faces) << make;
        mel("delete it; delete `ls -type polyPrimitive`");
    }
    static std::string divisions(int a, int b, int c = -1)
    {
        return " -sx " + std::to_string(a) + " -sy " + std::to_string(b) + (c < 0 ? "" : " -sz " + std::to_string(c));
    }
};

TEST_F(PrimitiveCounts, Grids)
{
    for (const auto& [a, b, c] : {std::array{1, 1, 1}, {2, 1, 1}, {1, 3, 1}, {1, 1, 4}, {3, 4, 5}, {7, 2, 3}})
    {
        const int faces = 2 * (a * b + b * c + c * a);   // all of four corners: E = 2 F, and V - E + F = 2
        expect("polyCube" + divisions(a, b, c), {faces + 2, 2 * faces, faces});
        expect("polyPlane" + divisions(a, b), {(a + 1) * (b + 1), a * (b + 1) + b * (a + 1), a * b});
    }
    for (const auto& [a, b] : {std::array{3, 3}, {4, 3}, {5, 9}, {20, 20}})
    {
        expect("polySphere" + divisions(a, b), {a * (b - 1) + 2, a * (2 * b - 1), a * b});
        expect("polyTorus" + divisions(a, b), {a * b, 2 * a * b, a * b});
    }
}

TEST_F(PrimitiveCounts, Caps)
{
    // rings of a points: b of them up the side, c in a cap that ends in a middle point; without c a cap is one face
    for (const auto& [a, b, c] : {std::array{3, 1, 0}, {6, 1, 1}, {6, 2, 1}, {5, 3, 4}, {20, 1, 0}, {4, 7, 2}})
    {
        const int cylinderPoints = a * (b + 1) + (c ? 2 * (a * (c - 1) + 1) : 0), cylinderFaces = a * b + (c ? 2 * a * c : 2);
        expect("polyCylinder" + divisions(a, b, c), {cylinderPoints, cylinderPoints + cylinderFaces - 2, cylinderFaces});
        const int conePoints = a * b + 1 + (c ? a * (c - 1) + 1 : 0), coneFaces = a * b + (c ? a * c : 1);
        expect("polyCone" + divisions(a, b, c), {conePoints, conePoints + coneFaces - 2, coneFaces});
    }
}

TEST_F(PrimitiveCounts, SizesByFormula)
{
    const double kPi = 3.14159265358979323846;
    struct Case { const char* make; double area, tolerance; };
    const Case cases[] = {
        {"polyCube -w 2 -h 3 -d 4", 2 * (2 * 3 + 3 * 4 + 4 * 2), 1e-5},
        {"polyPlane -w 2 -h 5 -sx 3 -sy 4", 10, 1e-5},
        {"polySphere -r 2 -sx 60 -sy 60", 4 * kPi * 4, 0.2},
        {"polyCylinder -r 1 -h 3 -sx 6", 6 * 3 + 2 * 1.5 * std::sqrt(3.0), 1e-5},            // sides of a hexagon are as long as its radius
        {"polyCone -r 1 -h 2 -sx 4", 4 * 0.5 * std::sqrt(2.0) * std::sqrt(4 + 0.5) + 2, 1e-5},   // a pyramid over a square of side sqrt 2
        {"polyTorus -r 3 -sr 1 -sx 80 -sy 80", 4 * kPi * kPi * 3, 0.5},
    };
    for (const Case& c : cases)
    {
        mel(std::string(c.make) + " -n it");
        EXPECT_NEAR(num("polyEvaluate -area it"), c.area, c.tolerance) << c.make;
        mel("delete it");
    }
}

TEST_F(PrimitiveCounts, HistoryIsEditedUnderOtherEdits)
{
    mel("polyCube -n box; polySoftEdge -a 180 box; polyColorPerVertex -rgb 1 0 0 box.vtx[0]; polyNormalPerVertex -xyz 0 1 0 box.vtx[0]; select box");
    mel("polyCube -e -sx 2 -w 4 box");
    EXPECT_EQ(of("box").points, 12);
    EXPECT_EQ(nums("exactWorldBoundingBox box"), (std::vector<double>{-2, -0.5, -0.5, 2, 0.5, 0.5}));
    EXPECT_EQ(nums("polyColorPerVertex -q -rgb box.vtx[0]"), (std::vector<double>{1, 0, 0}));
    mel("undo");
    EXPECT_EQ(of("box").points, 8);
    mel("redo; setAttr polyCube1.subdivisionsWidth 5");
    EXPECT_EQ(of("box").points, 24);
    mel("connectAttr time1.outTime polyCube1.subdivisionsHeight; currentTime 3");
    EXPECT_EQ(of("box").faces, 2 * (5 * 3 + 3 + 5)) << "driven by time";
    mel("delete -ch box; currentTime 9");
    EXPECT_EQ(of("box").faces, 46) << "nothing drives it any more";
    EXPECT_NE(melError("polyCube -q -w box"), "");
}

TEST_F(PrimitiveCounts, SurfacesAndCurvesBySpans)
{
    for (const int spans : {4, 8, 13})
        for (const int degree : {1, 3})
        {
            const std::string s = std::to_string(spans);
            mel("circle -n c -ch 1 -s " + s + " -d " + std::to_string(degree));
            EXPECT_EQ(num("getAttr c.spans"), spans);
            EXPECT_EQ(num("getAttr c.degree"), degree);
            EXPECT_EQ(num("size(`ls -fl \"c.cv[*]\"`)"), spans) << "a closed curve has as many CVs as spans";
            mel("delete c; nurbsPlane -n p -u " + s + " -v 2 -d " + std::to_string(degree));
            EXPECT_EQ(num("size(`ls -fl \"p.cv[*][*]\"`)"), (spans + degree) * (2 + degree));
            mel("delete p");
        }
}

}  // namespace
}  // namespace mirk::test
