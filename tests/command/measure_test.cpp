// Questions about what is named or selected, and frozen transforms. A cube of edge 2 has its corners at -1 and 1.
#include "support/host_fixture.h"

using mirk::test::Host;

namespace {

class Measure : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("polyCube -w 2 -h 2 -d 2; move 1 2 3 pCube1");
    }
    static std::string joined(const std::string& query)
    {
        return mel("stringArrayToString(`" + query + "`, \" \")").asString();
    }
    static std::vector<double> values(const std::string& query)
    {
        const Value         v = mel(query);
        std::vector<double> out;
        for (const double x : numbersIn(v))
            out.push_back(std::round(x * 1e9) / 1e9 + 0.0);
        return out;
    }
    using V = std::vector<double>;
};

TEST_F(Measure, ComponentsAsOthersOfTheirMesh)
{
    const struct { const char *from, *flags, *result; } cases[] = {
        {"pCube1.f[0:1]", "-ff -tv", "pCube1.vtx[0:5]"},
        {"pCube1.vtx[0]", "-tf", "pCube1.f[0] pCube1.f[3] pCube1.f[5]"},
        {"pCube1.vtx[0]", "-te", "pCube1.e[0] pCube1.e[3] pCube1.e[11]"},   // to vertices 1, 2 and 6
        {"pCube1.e[0]", "-tv", "pCube1.vtx[0:1]"},
        {"pCube1.f[0]", "-te -internal", ""},                 // each edge has another face outside
        {"pCube1.f[0]", "-fv -tv", ""},                       // no vertex is given
        {"pCube1.f[*]", "-te -internal", "pCube1.e[0:11]"},
        {"pCube1", "-tv", "pCube1.vtx[0:7]"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(joined("polyListComponentConversion " + std::string(c.flags) + " " + c.from), c.result)
            << c.from << " " << c.flags;
    }
    // all vertices but one: the faces that are whole are those without it
    EXPECT_EQ(joined("polyListComponentConversion -fv -tf -internal pCube1.vtx[1:7]"), "pCube1.f[1:2] pCube1.f[4]");
    EXPECT_NE(melError("polyListComponentConversion -tv persp").find("persp"), std::string::npos);
}

TEST_F(Measure, PlacesAndBoxes)
{
    EXPECT_EQ(values("exactWorldBoundingBox pCube1"), (V{0, 1, 2, 2, 3, 4}));
    EXPECT_EQ(values("pointPosition pCube1.vtx[0]"), (V{0, 1, 4}));
    EXPECT_EQ(values("pointPosition -local pCube1.vtx[0]"), (V{-1, -1, 1}));
    EXPECT_NE(melError("pointPosition pCube1.vtx[0:1]").find("more than one"), std::string::npos);
    mel("curve -d 1 -p 0 0 0 -p 3 0 0 -p 3 4 0 -n c");
    EXPECT_EQ(values("arclen c"), (V{7}));
    EXPECT_EQ(joined("ls -type curveInfo"), "");   // nothing is left behind
    EXPECT_NE(melError("arclen pCube1").find("no curve"), std::string::npos);
}

TEST_F(Measure, FilterExpandByKind)
{
    mel("circle -n ring; select -r pCube1.vtx[0:2] pCube1.f[3] ring");
    EXPECT_EQ(joined("filterExpand -sm 31"), "pCube1.vtx[0] pCube1.vtx[1] pCube1.vtx[2]");
    EXPECT_EQ(joined("filterExpand -ex 0 -sm 31 -sm 34"), "pCube1.vtx[0:2] pCube1.f[3]");
    EXPECT_EQ(joined("filterExpand -sm 9"), "ring");
    EXPECT_EQ(joined("filterExpand -sm 12 pCube1 ring"), "pCube1");
}

TEST_F(Measure, VisibilityAndLocators)
{
    mel("group -n g pCube1; hide g pCube1");
    EXPECT_EQ(num("getAttr g.visibility") + num("getAttr pCube1.visibility"), 0);
    mel("showHidden -above pCube1");
    EXPECT_EQ(num("getAttr g.visibility") + num("getAttr pCube1.visibility"), 2);
    EXPECT_EQ(joined("spaceLocator -p 1 2 3 -n here"), "here");
    EXPECT_EQ(values("getAttr hereShape.localPosition"), (V{1, 2, 3}));
    mel("undo");
    EXPECT_EQ(num("objExists here"), 0);
}

TEST_F(Measure, FrozenTransformsKeepWorldPlaces)
{
    mel("rotate 0 90 0 pCube1; scale 2 1 1 pCube1; group -n g pCube1; setAttr g.translateY 5; setAttr g.scale 1 1 2;"
        "polyCube -n low; parent -r low pCube1");
    const V before = values("exactWorldBoundingBox g"), corner = values("pointPosition pCube1.vtx[3]"), child = values("pointPosition low.vtx[2]");
    mel("makeIdentity -apply true -translate true -rotate true -scale true g");
    for (const char* node : {"g", "pCube1", "low"})
        EXPECT_EQ(values("xform -q -os -m " + std::string(node)), (V{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})) << node;
    EXPECT_EQ(values("exactWorldBoundingBox g"), before);
    EXPECT_EQ(values("pointPosition pCube1.vtx[3]"), corner);
    EXPECT_EQ(values("pointPosition low.vtx[2]"), child);
    mel("undo");
    EXPECT_EQ(num("getAttr g.translateY"), 5);
    EXPECT_EQ(values("pointPosition pCube1.vtx[3]"), corner);
    mel("makeIdentity g");   // without -apply the places change
    EXPECT_EQ(num("getAttr g.translateY"), 0);
}

}  // namespace
