// Scripts that are checked line by line, and laws that hold for every line.
//
// A script is `.mel` or `.py`. A line may end with a remark (`//` in MEL, `#` in Python) that says what is expected:
//   expect: text          the value of the line, as `print` shows it in MEL (elements with a space between), as `repr` in Python
//   expect error: text    the line fails with a message that holds the text
//   expect warning: text  a warning is told that holds the text
// A line `scene: title` as a remark of its own begins a new scene. "{folder}" in a line is a folder of the test's own.
// Beside its expectation each line obeys: what fails changes nothing, what changes the scene is undone and redone
// exactly, and the scene that a part ends with is saved and read back equal.
#pragma once
#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>

#include "host_fixture.h"

namespace mirk::test {

class LineScript : public Host
{
protected:
    /// Runs one file of the tests, by its path from the tests' folder.
    void runLines(const std::string& name);
    /// Word by word, numbers with the noise of a rotation by a quarter turn left out.
    static bool sameText(const std::string& a, const std::string& b);

private:
    struct Line { std::string text, kind, expected, where; };

    /// What a file of the scene would say, without elements that somebody touched and that hold zero, and the selection.
    static std::string sceneState()
    {
        static const std::regex touched("\n\tsetAttr \"\\.[A-Za-z]+\\[\\d+\\]\"( -type \"\\w+\")?( 0)+;");
        std::string out = std::regex_replace(io::sceneText("x.ma", false), touched, "") + "selected:";
        for (const std::string& s : strings("ls -sl -l"))
            out += " " + s;
        return out;
    }
    /// Nodes may be written in another order than they were made in.
    static std::vector<std::string> sortedLines(const std::string& text)
    {
        std::istringstream       in(text);
        std::vector<std::string> out;
        for (std::string line; std::getline(in, line);)
            out.push_back(line);
        std::sort(out.begin(), out.end());
        return out;
    }
    /// The first lines in which two texts differ.
    static std::string difference(const std::string& before, const std::string& after)
    {
        std::istringstream a(before), b(after);
        std::string        x, y;
        while (std::getline(a, x) && std::getline(b, y))
            if (x != y)
                return "-" + x + "\n+" + y;
        return "one is longer: " + (a ? "-" + x : std::string()) + (std::getline(b, y) ? "+" + y : std::string());
    }

    std::string value(const Line& line)
    {
        if (!python_)
        {
            std::string out = mirk::mel::printed(mirk::mel::execute(line.text));
            std::replace(out.begin(), out.end(), '\n', ' ');
            return out.erase(out.find_last_not_of(' ') + 1);
        }
        if (line.kind == "expect")
            return python::run("repr(" + line.text + ")").asString();
        python::run(line.text);
        return {};
    }
    void run(const Line& line);
    void checkUndo(const Line& line, const std::string& before, const std::string& after);
    void checkFile(const std::string& where);

    bool python_ = false;
};

inline bool LineScript::sameText(const std::string& a, const std::string& b)
{
    std::istringstream x(a), y(b);
    std::string        s, t;
    while (x >> s)
    {
        if (!(y >> t))
            return false;
        char *     endS, *endT;
        const double p = std::strtod(s.c_str(), &endS), q = std::strtod(t.c_str(), &endT);
        if (s != t && (*endS || *endT || !(std::abs(p - q) < 1e-6 * std::max(1.0, std::abs(q)))))
            return false;
    }
    return !(y >> t);
}

inline void LineScript::run(const Line& line)
{
    const std::string before = sceneState();
    std::string       got, error;
    messages.clear();
    undo::openChunk("line");
    try
    {
        got = value(line);
    }
    catch (const mirk::mel::ScriptError& e)
    {
        error = e.message.empty() ? "?" : e.message;
    }
    catch (const std::exception& e)
    {
        error = e.what();
    }
    undo::closeChunk();
    const bool shouldFail = line.kind == "expect error";
    if (shouldFail ? error.empty() || error.find(line.expected) == std::string::npos : !error.empty())
        ADD_FAILURE() << line.where << (error.empty() ? "\n  gave: " + got : "\n  failed: " + error);
    if (line.kind == "expect" && error.empty() && !sameText(got, line.expected))
        ADD_FAILURE() << line.where << "\n  gave: " << got;
    if (line.kind == "expect warning" && said(message::kWarning).find(line.expected) == std::string::npos)
        ADD_FAILURE() << line.where << "\n  told: " << said(message::kWarning);
    const std::string after = sceneState();
    if (after == before)
        return;
    if (!error.empty() && shouldFail)
        ADD_FAILURE() << line.where << " failed and changed the scene:\n" << difference(before, after);
    else if (error.empty() && line.text.find("file -") == std::string::npos && line.text.find("mc.file(") != 0)
        checkUndo(line, before, after);
}

inline void LineScript::checkUndo(const Line& line, const std::string& before, const std::string& after)
{
    undo::undoOne();
    const std::string undone = sceneState();
    if (undone != before)
        ADD_FAILURE() << line.where << "\n  is not undone:\n" << difference(before, undone);
    undo::redoOne();
    const std::string redone = sceneState();
    if (redone != after)
        ADD_FAILURE() << line.where << "\n  is not redone:\n" << difference(after, redone);
}

inline void LineScript::checkFile(const std::string& where)
{
    const std::string text = io::sceneText("x.ma", false);
    try
    {
        io::openScene(write("roundTrip.ma", text));
        const std::string again = io::sceneText("x.ma", false);
        if (sortedLines(again) != sortedLines(text))
            ADD_FAILURE() << where << "\n  comes back otherwise:\n" << difference(text, again);
    }
    catch (const std::exception& e)
    {
        ADD_FAILURE() << where << ": the scene cannot be read back: " << e.what();
    }
}

inline void LineScript::runLines(const std::string& name)
{
    const std::string path = std::string(MIRK_TEST_DIR) + "/" + name;
    python_ = name.ends_with(".py");
    const std::string remark = python_ ? "# " : "// ";
    std::ifstream     in(path);
    ASSERT_TRUE(in) << path;
    std::string title = name;
    int         number = 0;
    if (python_)
        python::run("import maya.cmds as mc\nimport maya.mel as mm");
    for (std::string text; std::getline(in, text);)
    {
        ++number;
        Line line{text, "", "", name + ":" + std::to_string(number) + ": " + text};
        for (const char* kind : {"expect error", "expect warning", "expect", "scene"})
            if (const size_t at = text.find(remark + kind + ":"); at != std::string::npos)
            {
                line.kind = kind;
                line.text = text.substr(0, at);
                const size_t from = text.find_first_not_of(' ', at + (remark + kind + ":").size());
                line.expected = from == std::string::npos ? "" : text.substr(from);
                break;
            }
        line.text.erase(line.text.find_last_not_of(' ') + 1);
        for (std::string* s : {&line.text, &line.expected})
            for (size_t at; (at = s->find("{folder}")) != std::string::npos;)
                s->replace(at, 8, file("").substr(0, file("").size() - 1));
        if (line.kind == "scene")
        {
            checkFile(title);
            title = name + ":" + std::to_string(number) + ": " + line.expected;
            newScene();
            io::forgetFileData();
            undo::flush();
            mel("currentUnit -l cm -a deg -t film");
        }
        else if (!line.text.empty() && line.text.compare(0, remark.size(), remark) != 0)
            run(line);
    }
    checkFile(title);
    mel("currentUnit -l cm -a deg -t film");
}

}  // namespace mirk::test
