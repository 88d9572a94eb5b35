// Scripts that wait: deferred text, script jobs, and the built-in functions of MEL from Python.
#include "api/script.h"
#include "command/script_jobs.h"
#include "support/host_fixture.h"

namespace mirk::test {
namespace {

class ScriptJob : public Host
{
protected:
    void SetUp() override
    {
        Host::SetUp();
        mel("global string $jobLog[]; clear $jobLog; global proc jobNote(string $s) { global string $jobLog[]; $jobLog[size($jobLog)] = $s; }");
    }
    void TearDown() override
    {
        mel("scriptJob -killAll -force");
        Host::TearDown();
    }
    static int make(const std::string& flags) { return mel("scriptJob " + flags).asInt(); }
    /// What was noted since the last call, once the host has been idle.
    static std::string idle()
    {
        script::runIdle();
        command::runScriptJobs();
        return str("string $jobText = stringArrayToString($jobLog, \" \"); clear $jobLog; $jobText;");
    }
};

TEST_F(ScriptJob, EachKindRunsWhenItIsDue)
{
    mel("createNode transform -n a; createNode transform -n b");
    idle();
    make("-event \"NewSceneOpened\" \"jobNote new\"");
    make("-event timeChanged \"jobNote time\"");
    make("-event SelectionChanged \"jobNote selection\"");
    make("-event Undo \"jobNote undo\"");
    make("-attributeChange a.tx \"jobNote (\\\"tx\\\" + `getAttr a.tx`)\"");
    make("-nodeDeleted b \"jobNote gone\"");
    make("-runOnce 1 -idleEvent \"jobNote once\"");
    struct Case { const char *does, *noted; };
    const Case cases[] = {
        {"", "once"},
        {"", ""},
        {"setAttr a.ty 2", ""},
        {"setAttr a.tx 2", "tx2"},
        {"setAttr a.tx 2", ""},
        {"currentTime 7", "time"},
        {"select a", "selection"},
        {"undo", "selection undo"},
        {"delete b", "gone"},
        {"createNode transform -n b; delete b", ""},   // a job on a node runs once
        {"file -force -new", ""},
    };
    for (const Case& c : cases)
    {
        mel(c.does);
        const std::string noted = idle();
        for (const std::string& word : strings("stringToStringArray(\"" + std::string(c.noted) + "\", \" \")"))
            EXPECT_NE(noted.find(word), std::string::npos) << c.does << ": " << noted;
        const bool mayNote = *c.noted || std::string(c.does) == "file -force -new";
        EXPECT_TRUE(mayNote || noted.empty()) << c.does << ": " << noted;
    }
    mel("file -force -new");
    EXPECT_NE(idle().find("new"), std::string::npos);
}

TEST_F(ScriptJob, ListsKillsAndRefuses)
{
    const int a = make("-event SceneOpened \"print 1\""), b = make("-protected -idleEvent \"error \\\"bad job\\\"\"");
    EXPECT_EQ(strings("scriptJob -listJobs"), (std::vector<std::string>{std::to_string(a) + ": -event \"SceneOpened\" \"print 1\"",
                                                                         std::to_string(b) + ": -idleEvent \"error \"bad job\"\" -protected"}));
    idle();
    EXPECT_NE(said(message::kError).find("bad job"), std::string::npos);
    EXPECT_NE(melError("scriptJob -kill " + std::to_string(b)).find("protected"), std::string::npos);
    mel("scriptJob -kill " + std::to_string(a) + "; scriptJob -force -kill " + std::to_string(b));
    EXPECT_EQ(num("scriptJob -exists " + std::to_string(a)), 0);
    EXPECT_NE(melError("scriptJob -event nonsense \"print 1\"").find("nonsense"), std::string::npos);
    EXPECT_NE(melError("scriptJob -attributeChange nobody.tx \"print 1\"").find("nobody"), std::string::npos);
    EXPECT_NE(melError("scriptJob -runOnce 1").find("-event"), std::string::npos);
    EXPECT_TRUE(strings("scriptJob -listJobs").empty());
}

TEST_F(ScriptJob, DeferredTextRunsInOrderWhenIdle)
{
    mel("evalDeferred \"jobNote 1; evalDeferred \\\"jobNote 3\\\"\"; evalDeferred -lowestPriority \"jobNote 2\"; jobNote 0;");
    EXPECT_EQ(idle(), "0 1 2 3");
}

TEST_F(ScriptJob, BuiltInFunctionsFromPython)
{
    py("import maya.cmds as mc");
    EXPECT_EQ(py("mc.substring('hello', 2, 4)").asString(), "ell");
    EXPECT_EQ(py("mc.mag((3.0, 4.0, 0.0))").asFloat(), 5);              // three numbers are a vector where one is asked for
    EXPECT_EQ(py("mc.sort([3, 1, 2])").asInts(), (command::Ints{1, 2, 3}));
    EXPECT_EQ(py("mc.stringArrayToString(['a\"b', 'c\\\\'], '-')").asString(), "a\"b-c\\");
    EXPECT_EQ(py("mc.max(2, 3.5)").asFloat(), 3.5);
    EXPECT_EQ(py("[type(x).__name__ for x in (mc.max(2, 3), mc.max(2.0, 3.0))]").asStrings(), (std::vector<std::string>{"int", "float"}));
    EXPECT_TRUE(py("'tokenize' in dir(mc) and 'abs' not in mc.__all__").asBool());
    EXPECT_NE(melError("python \"mc.substring('x')\"").find("Wrong number of arguments"), std::string::npos);
}

}  // namespace
}  // namespace mirk::test
