// The application as a plug-in sees it: scripts and their results, messages, undo, time and ranges.
#include "../support/host_fixture.h"

#include <maya/MAnimControl.h>
#include <maya/MCommandResult.h>
#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>

namespace {

class Global : public mirk::test::Host
{
protected:
    static std::string text(const MString& s) { return s.asChar(); }
};

}  // namespace

TEST_F(Global, ResultsOfEveryTypeFromBothLanguages)
{
    int          i = 0;
    double       d = 0;
    MString      s;
    MIntArray    is;
    MDoubleArray ds;
    MStringArray ss;
    EXPECT_TRUE(MGlobal::executeCommand("int $globalTest = 3 + 4", i));
    EXPECT_EQ(i, 7);
    EXPECT_TRUE(MGlobal::executeCommand("float $globalTestF = 1.5", d));
    EXPECT_EQ(d, 1.5);
    EXPECT_TRUE(MGlobal::executeCommand("string $globalTestS = \"a b\"", s));
    EXPECT_EQ(text(s), "a b");
    EXPECT_TRUE(MGlobal::executeCommand("int $globalTestIs[] = {1, 2, 3}", is));
    EXPECT_EQ(is.length(), 3u);
    EXPECT_TRUE(MGlobal::executeCommand("float $globalTestFs[] = {0.5, 0.25}", ds));
    ASSERT_EQ(ds.length(), 2u);
    EXPECT_EQ(ds[1], 0.25);
    EXPECT_TRUE(MGlobal::executeCommand("string $globalTestSs[] = {\"x\", \"y\"}", ss));
    ASSERT_EQ(ss.length(), 2u);
    EXPECT_EQ(text(ss[1]), "y");
    MStatus status;
    EXPECT_EQ(text(MGlobal::executeCommandStringResult("size(\"four\")", false, false, &status)), "4");
    EXPECT_TRUE(status);

    EXPECT_TRUE(MGlobal::executePythonCommand("3 + 4", i));
    EXPECT_EQ(i, 7);
    EXPECT_TRUE(MGlobal::executePythonCommand("[1, 2, 3, 4]", is));
    EXPECT_EQ(is.length(), 4u);
    EXPECT_TRUE(MGlobal::executePythonCommand("['p', 'q']", ss));
    EXPECT_EQ(text(ss[0]), "p");
    EXPECT_TRUE(MGlobal::executePythonCommand("0.5", d));
    EXPECT_EQ(d, 0.5);
    EXPECT_EQ(text(MGlobal::executePythonCommandStringResult("'a' + 'b'")), "ab");
    EXPECT_TRUE(MGlobal::executePythonCommand("globalTest = 5\nglobalTest += 1"));
    EXPECT_TRUE(MGlobal::executePythonCommand("globalTest", i));
    EXPECT_EQ(i, 6);

    i = 99;
    EXPECT_FALSE(MGlobal::executeCommand("noSuchCommand 1", i));
    EXPECT_EQ(i, 99);
    EXPECT_FALSE(MGlobal::executeCommand("int $broken = ", false));
    EXPECT_FALSE(MGlobal::executePythonCommand("1 / 0"));
    EXPECT_FALSE(MGlobal::executePythonCommand("def broken("));
}

TEST_F(Global, ResultsKeepTheirType)
{
    struct Case { const char* command; MCommandResult::Type type; };
    const Case cases[] = {
        {"int $gi = 1", MCommandResult::kInt},
        {"float $gf = 1", MCommandResult::kDouble},
        {"string $gs = \"1\"", MCommandResult::kString},
        {"int $gia[] = {1}", MCommandResult::kIntArray},
        {"float $gfa[] = {1}", MCommandResult::kDoubleArray},
        {"string $gsa[] = {\"1\"}", MCommandResult::kStringArray},
        {"vector $gv = <<1, 2, 3>>", MCommandResult::kVector},
    };
    for (const Case& c : cases) {
        MCommandResult result;
        EXPECT_TRUE(MGlobal::executeCommand(c.command, result)) << c.command;
        EXPECT_EQ(result.resultType(), c.type) << c.command;
    }
    MCommandResult result;
    EXPECT_TRUE(MGlobal::executeCommand("int $gib[] = {4, 5}", result));
    MIntArray    is;
    MStringArray ss;
    EXPECT_TRUE(result.getResult(is));
    ASSERT_EQ(is.length(), 2u);
    EXPECT_EQ(is[1], 5);
}

TEST_F(Global, UndoOnlyWhereItWasAskedFor)
{
    EXPECT_TRUE(MGlobal::executeCommand("createNode transform -n kept", false, true));
    EXPECT_TRUE(MGlobal::executeCommand("createNode transform -n secret", false, false));
    mel("undo;");
    EXPECT_EQ(num("objExists kept"), 0);
    EXPECT_EQ(num("objExists secret"), 1);
    mel("redo;");
    EXPECT_EQ(num("objExists kept"), 1);
    // an error half way: what was done before it stands, and is one step
    EXPECT_FALSE(MGlobal::executeCommand("createNode transform -n early; noSuchCommand; createNode transform -n late;", false, true));
    EXPECT_EQ(num("objExists early"), 1);
    EXPECT_EQ(num("objExists late"), 0);
}

TEST_F(Global, MessagesOfEachKind)
{
    messages.clear();
    MGlobal::displayInfo("for your information");
    MGlobal::displayWarning("have a care");
    MGlobal::displayError("all is lost");
    EXPECT_NE(said(mirk::message::Kind::kWarning).find("have a care"), std::string::npos);
    EXPECT_NE(said(mirk::message::Kind::kError).find("all is lost"), std::string::npos);
    EXPECT_EQ(said(mirk::message::Kind::kError).find("have a care"), std::string::npos);
    bool info = false;
    for (const Message& m : messages)
        info = info || (m.text.find("for your information") != std::string::npos && m.kind != mirk::message::Kind::kError && m.kind != mirk::message::Kind::kWarning);
    EXPECT_TRUE(info);
    messages.clear();
    MGlobal::executeCommand("createNode transform -n quiet", false);
    EXPECT_EQ(messages.size(), 0u) << "not shown unless asked for";
    MGlobal::executeCommand("createNode transform -n loud", true);
    std::string all;
    for (const Message& m : messages)
        all += m.text;
    EXPECT_NE(all.find("loud"), std::string::npos);
}

TEST_F(Global, FilesAndNames)
{
    const std::string script = write("sourced.mel", "createNode transform -n fromFile;");
    EXPECT_TRUE(MGlobal::sourceFile(script.c_str()));
    EXPECT_EQ(num("objExists fromFile"), 1);
    EXPECT_FALSE(MGlobal::sourceFile("/nowhere/nothing.mel"));
    mel("createNode transform -n f1; createNode transform -n f2; createNode transform -n g1;");
    MSelectionList list;
    EXPECT_TRUE(MGlobal::getSelectionListByName("f?", list));
    EXPECT_EQ(list.length(), 2u);
    EXPECT_FALSE(MGlobal::getSelectionListByName("zz*", list));
    MObject gone;
    ASSERT_TRUE(list.getDependNode(0, gone));
    EXPECT_TRUE(MGlobal::deleteNode(gone));
    EXPECT_EQ(num("objExists f1"), 0);
    EXPECT_FALSE(MGlobal::deleteNode(gone)) << "it is gone already";
    mel("undo;");
    EXPECT_TRUE(MGlobal::isYAxisUp() != MGlobal::isZAxisUp());
}

TEST_F(Global, TimeAndRanges)
{
    mel("currentUnit -t film; playbackOptions -min 1 -max 24 -ast 1 -aet 48; currentTime 1;"
        "createNode transform -n t; connectAttr time1.o t.tx;");
    EXPECT_TRUE(MAnimControl::setCurrentTime(MTime(2, MTime::kSeconds)));
    EXPECT_DOUBLE_EQ(num("currentTime -q"), 48);
    EXPECT_DOUBLE_EQ(MAnimControl::currentTime().as(MTime::kFilm), 48);
    EXPECT_TRUE(MGlobal::viewFrame(12.0));
    EXPECT_DOUBLE_EQ(num("currentTime -q"), 12);
    EXPECT_TRUE(MAnimControl::setMinMaxTime(MTime(5, MTime::kFilm), MTime(10, MTime::kFilm)));
    EXPECT_DOUBLE_EQ(num("playbackOptions -q -min"), 5);
    EXPECT_DOUBLE_EQ(num("playbackOptions -q -max"), 10);
    EXPECT_TRUE(MAnimControl::setAnimationStartEndTime(MTime(2, MTime::kFilm), MTime(30, MTime::kFilm)));
    EXPECT_DOUBLE_EQ(num("playbackOptions -q -ast"), 2);
    EXPECT_DOUBLE_EQ(num("playbackOptions -q -aet"), 30);
    EXPECT_DOUBLE_EQ(MAnimControl::animationEndTime().as(MTime::kFilm), 30);
    EXPECT_TRUE(MAnimControl::setMaxTime(MTime(20, MTime::kFilm)));
    EXPECT_DOUBLE_EQ(MAnimControl::minTime().as(MTime::kFilm), 5);
    EXPECT_DOUBLE_EQ(MAnimControl::maxTime().as(MTime::kFilm), 20);
    // the unit of the user does not change the time itself
    mel("currentUnit -t ntsc;");
    EXPECT_DOUBLE_EQ(MAnimControl::currentTime().as(MTime::kSeconds), 0.5);
    EXPECT_DOUBLE_EQ(num("currentTime -q"), 15);
    mel("currentUnit -t film;");
    EXPECT_TRUE(MAnimControl::setPlaybackBy(2) && MAnimControl::setPlaybackSpeed(0.5));
    EXPECT_EQ(num("playbackOptions -q -by"), 2);
    EXPECT_EQ(MAnimControl::playbackSpeed(), 0.5);
    MAnimControl::setPlaybackBy(1);
    MAnimControl::setPlaybackSpeed(1);
    EXPECT_FALSE(MAnimControl::isPlaying());
}
