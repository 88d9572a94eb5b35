// Runs the scripts of this folder. Lines carry what is expected of them: `// expect: text` is the next line that is
// printed, `// expect error: text` a part of the error that ends the script or is caught by the line.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

#include "command/registry.h"
#include "command/startup.h"
#include "mel/interpreter.h"

namespace mirk::mel {
namespace {

std::string g_printed, g_errors;

void capturePrint(std::string_view s) { g_printed += s; }
void captureMessage(Severity severity, std::string_view s)
{
    if (severity == Severity::kError)
        g_errors.append(s).append("\n");
    else
        g_printed.append(s).append("\n");
}

/// Commands that the scripts call.
command::Value give(command::Call& c) { return c.args.empty() ? command::Value() : c.args[0]; }
command::Value fail(command::Call& c) { throw command::Error("melTestFail failed"); }
command::Value floats(command::Call& c) { return make<Buffer<double>>(size_t(c.args.at(0).asInt()), 1.5); }
command::Value join(command::Call& c)
{
    std::string out;
    for (const command::Value& v : c.args)
        out += "[" + v.asString() + "]";
    for (const auto& u : c.uses)
        out += std::string("<") + u.flag->longName + "=" + u.args[0].asString() + ">";
    return out;
}
command::Value run(command::Call& c) { return execute(c.args.at(0).asString()); }
constexpr command::Flag kJoinFlags[] = {{"s", "size", "f"}, {"n", "name", "s"}};
const command::Command  kCommands[] = {
    {"melTestGive", {}, give}, {"melTestFail", {}, fail}, {"melTestFloats", {}, floats}, {"melTestJoin", kJoinFlags, join}, {"melTestRun", {}, run}};

struct Mel : ::testing::Test
{
    void SetUp() override
    {
        startHost();
        command::add(kCommands);
        before_ = setSinks({capturePrint, captureMessage});
        g_printed.clear();
        g_errors.clear();
    }
    void TearDown() override { setSinks(before_); }

    Sinks before_;   ///< the host's
};

struct Expectations { std::vector<std::string> lines, errors; };

Expectations expectations(const std::string& text)
{
    Expectations       out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        for (const auto& [mark, list] : {std::pair{"// expect: ", &out.lines}, {"// expect error: ", &out.errors}})
            if (const size_t at = line.find(mark); at != std::string::npos)
                list->push_back(line.substr(at + std::string(mark).size()));
    return out;
}

/// A script with its variables named after the file: top-level variables are shared by all that runs in a session.
std::string read(const std::filesystem::path& p)
{
    std::ostringstream out;
    out << std::ifstream(p).rdbuf();
    return std::regex_replace(out.str(), std::regex("\\$([A-Za-z_])"), "$$" + p.stem().string() + "_$1");
}

TEST_F(Mel, Scripts)
{
    const std::filesystem::path folder = std::filesystem::path(MIRK_TEST_DIR) / "mel";
    setScriptPath({(folder / "path").string()});
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        if (entry.path().extension() != ".mel")
            continue;
        ++count;
        g_printed.clear();
        g_errors.clear();
        const std::string  text = read(entry.path());
        const Expectations expected = expectations(text);
        try
        {
            execute(text, entry.path().filename().string());
        }
        catch (const ScriptError& e)
        {
            g_errors.append(e.what()).append("\n");
        }
        std::string wanted;
        for (const std::string& l : expected.lines)
            wanted += l + "\n";
        EXPECT_EQ(g_printed, wanted) << entry.path();
        std::istringstream errors(g_errors);
        size_t             k = 0;
        for (std::string line; std::getline(errors, line); ++k)
            EXPECT_TRUE(k < expected.errors.size() && line.find(expected.errors[k]) != std::string::npos) << entry.path() << ": " << line;
        EXPECT_EQ(k, expected.errors.size()) << entry.path() << "\n" << g_errors;
    }
    EXPECT_GT(count, 5);
    setScriptPath({});
}

/// The error of a text, or "ok".
std::string errorOf(const std::string& text)
{
    try
    {
        execute(text);
        return "ok";
    }
    catch (const ScriptError& e)
    {
        return e.what();
    }
}

TEST_F(Mel, NothingRunsBeforeTheTextIsSound)
{
    struct Case { const char *text, *error; };
    const Case cases[] = {
        {"print(\"x\");\n  $melBad1 = ;", "<eval>, line 2.14, at ';': Syntax error."},
        {"print(\"x\"); int $melBad2 = 1; $melBad2 = {1, 2};", "line 1.40, at '=': Cannot convert data of type int[] to type int."},
        {"print(\"x\"); print($melNever);", "at '$melNever': \"$melNever\" is an undeclared variable."},
        {"print(\"x\"); proc melBad3(int $a) {} melBad3(1, 2);", "Wrong number of arguments on call to melBad3."},
        {"print(\"x\"); { int $a; string $a; }", "Invalid redeclaration of variable \"$a\" as a different type."},
        {"print(\"x\"); vector $melBad4 = <<1, 2, 3>>; $melBad4.x = 2;", "A component of a vector cannot be assigned"},
        {"print(\"x\"); float $f = sin({1.0});", "Wrong type of argument on call to sin."},
        {"print(\"x\"); \"a\" - 1;", "Illegal operation \"-\" on data of type string."},
        {"print(\"x\"); break;", "break outside a loop"},
        {"print(\"x\"); if (1) { print(\"y\");", "a '}' is missing"},
        {"print(\"x\"); print(\"abc", "Unterminated string."},
        {"print(\"x\"); /* ", "Unterminated comment."},
        {"print(\"x\"); proc int melBad5() { return \"a\" - 1; }", "Illegal operation"},
        {"print(\"x\"); foo = 3;", "at '=': Syntax error."},
        {"print(\"x\"); catch(`melTestFail;);", "at ';': Syntax error."},
    };
    for (const Case& c : cases)
        EXPECT_NE(errorOf(c.text).find(c.error), std::string::npos) << c.text << "\n" << errorOf(c.text);
    EXPECT_EQ(g_printed, "");
    EXPECT_FALSE(whatIs("$melBad2") != "Unknown") << "a text that fails declares nothing";
}

TEST_F(Mel, ValueIsThatOfTheLastStatement)
{
    EXPECT_EQ(execute("1 + 2;").asInt(), 3);
    EXPECT_EQ(execute("int $melV1[] = {1, 2, 3}; $melV1;").asInts(), (command::Ints{1, 2, 3}));
    EXPECT_EQ(execute("float $melV2[]; $melV2 = `melTestFloats 4`").asFloats()->size(), 4u);
    EXPECT_EQ(execute("global proc float[] melV3() { float $a[]; $a[2] = 1; return $a; } melV3()").asFloats()->size(), 3u);
    EXPECT_TRUE(execute("int $melV4 = 3; if ($melV4) print(\"\");").isNone());
    EXPECT_EQ(execute("melTestGive \"text\";;").asString(), "text");
    EXPECT_TRUE(execute("").isNone());
}

TEST_F(Mel, ArraysMoveWithoutCopies)
{
    execute("float $melBig[]; $melBig = `melTestFloats 1000`;");
    const command::Value  a = execute("$melBig;"), b = execute("$melBig;");
    EXPECT_EQ(a.get<command::Floats>().get(), b.get<command::Floats>().get());
    execute("$melBig[0] = 7;");   // the copy that was handed out stays
    EXPECT_EQ(*a.asFloats()->begin(), 1.5);
    EXPECT_EQ(*execute("$melBig;").asFloats()->begin(), 7);
}

TEST_F(Mel, TopLevelVariableDeclaredAsAnotherType)
{
    execute("int $melT[]; $melT[1] = 5; int $melT[]; global proc int melTSize() { global int $melT[]; return size($melT); }");
    EXPECT_EQ(execute("melTSize();").asInt(), 2) << "declared again, it keeps its value";
    EXPECT_NE(errorOf("float $melT[]; $melT = \"x\";"), "ok");
    EXPECT_EQ(execute("melTSize();").asInt(), 2) << "the text that fails changes nothing";
    EXPECT_EQ(errorOf("float $melT[]; $melT[0] = 1.5;"), "ok");
    EXPECT_EQ(execute("$melT;").kind(), command::Value::kFloats);
    EXPECT_EQ(execute("melTSize();").asInt(), 1) << "older code reads it converted";
    EXPECT_EQ(errorOf("vector $melT[] = {<<1, 2, 3>>};"), "ok");
    EXPECT_NE(errorOf("melTSize();").find("Cannot convert data of type vector[] to type int[]"), std::string::npos);
    execute("$melDyn = `melTestFloats 2`;");
    EXPECT_EQ(execute("float $melDyn[]; size($melDyn);").asInt(), 2) << "a type found at run time, declared later";
}

TEST_F(Mel, RecursionEndsWithAnError)
{
    EXPECT_NE(errorOf("global proc int melDeep(int $n) { return melDeep($n + 1) + 1; } melDeep(0);").find("Stack overflow"), std::string::npos);
    EXPECT_NE(errorOf("global proc melDeepEval() { eval(\"melDeepEval()\"); } melDeepEval;").find("Stack overflow"), std::string::npos);
    EXPECT_NE(errorOf("global proc melDeepRun() { melTestRun(\"melDeepRun()\"); } melDeepRun;").find("Stack overflow"), std::string::npos);
    EXPECT_NE(errorOf(std::string(100000, '(')).find("Nested too deeply"), std::string::npos);
    EXPECT_NE(errorOf("$x = " + std::string(100000, '-') + "1;").find("Nested too deeply"), std::string::npos);
    std::string sum = "int $melSum = 0";
    for (int i = 0; i < 20000; ++i)
        sum += " + 1";
    EXPECT_EQ(execute(sum + "; $melSum;").asInt(), 20000);
    // more numbers than a frame has registers
    std::string list, words;
    for (int i = 0; i < 70000; ++i)
    {
        list += (i ? "," : "") + std::to_string(i);
        words += " " + std::to_string(i) + ".5";
    }
    EXPECT_EQ(execute("int $melMany[] = {" + list + "}; $melMany[69999];").asInt(), 69999);
    EXPECT_EQ(execute("melTestGive" + words).asFloat(), 0.5);
    EXPECT_EQ(errorOf("print(\"alive\");"), "ok");
}

TEST_F(Mel, InterruptStopsALoopAndIsNotCaught)
{
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            interrupt();
        }
    });
    const std::string error = errorOf("global int $melTurns = 0; catch(eval(\"while (1) $melTurns++;\")); print(\"after\");");
    done = true;
    other.join();
    EXPECT_NE(error.find("Interrupted."), std::string::npos) << error;
    EXPECT_EQ(g_printed, "");
    EXPECT_GT(execute("$melTurns;").asInt(), 0);
}

TEST_F(Mel, ErrorsInsideCommandsNameTheLine)
{
    EXPECT_EQ(errorOf("int $melE = 1;\n  melTestFail;"), "<eval>, line 2.3, at 'melTestFail': melTestFail failed");
    EXPECT_EQ(errorOf("melNoSuchThing 1 2;"), "<eval>, line 1.1, at 'melNoSuchThing': Cannot find procedure \"melNoSuchThing\".");
    EXPECT_EQ(errorOf("melTestJoin -bad 2;"), "<eval>, line 1.1, at 'melTestJoin': Invalid flag '-bad'.");
    EXPECT_EQ(errorOf("int $melZ = 0;\nprint(1 / $melZ);"), "<eval>, line 2.9, at '/': Divide by zero.");
    EXPECT_NE(errorOf("int $melNeg[] = {1}; print($melNeg[-1]);").find("negative"), std::string::npos);
    EXPECT_NE(errorOf("int $melHuge[]; $melHuge[2147483647] = 1;").find("too large"), std::string::npos);
}

}  // namespace
}  // namespace mirk::mel
