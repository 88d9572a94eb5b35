// A running host for tests: started once, a new scene for each test, scripts in both languages, messages captured.
#pragma once
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <unistd.h>

#include "command/cmd_util.h"
#include "command/message.h"
#include "command/registry.h"
#include "command/startup.h"
#include "graph/undo.h"
#include "io/scene_file.h"
#include "mel/interpreter.h"
#include "nodes/builtin.h"
#include "python/python.h"

namespace mirk::test {

class Host : public ::testing::Test
{
public:
    using Value = command::Value;

    /// Runs MEL; an error fails the test and gives an empty value.
    static Value mel(const std::string& text)
    {
        try
        {
            return mirk::mel::execute(text);
        }
        catch (const std::exception& e)
        {
            ADD_FAILURE() << text << "\n" << e.what();
            return {};
        }
    }
    static Value py(const std::string& text)
    {
        try
        {
            return python::run(text);
        }
        catch (const std::exception& e)
        {
            ADD_FAILURE() << text << "\n" << e.what();
            return {};
        }
    }
    /// The error's message; "" and a failed test if there is none.
    static std::string melError(const std::string& text)
    {
        try
        {
            mirk::mel::execute(text);
        }
        catch (const mirk::mel::ScriptError& e)
        {
            return e.message;
        }
        catch (const std::exception& e)
        {
            return e.what();
        }
        ADD_FAILURE() << text << "\nwas expected to fail";
        return {};
    }

    static std::string              str(const std::string& text) { return mel(text).asString(); }
    static double                   num(const std::string& text) { return mel(text).asFloat(); }
    static std::vector<std::string> strings(const std::string& text) { return mel(text).asStrings(); }
    static std::vector<double>      nums(const std::string& text)
    {
        const command::Floats f = mel(text).asFloats();
        const auto&           b = std::as_const(*f);
        return {b.begin(), b.end()};
    }

    /// A file name in a folder that goes with the test.
    std::string file(const std::string& name) { return (folder_ / name).string(); }
    std::string write(const std::string& name, const std::string& text)
    {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }
    static std::string read(const std::string& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    struct Message { message::Kind kind; std::string text; };
    /// All since the test began or `messages.clear()`; print and results included.
    std::vector<Message> messages;
    /// Texts of one kind, joined.
    std::string said(message::Kind kind) const
    {
        std::string out;
        for (const Message& m : messages)
            if (m.kind == kind)
                out += m.text;
        return out;
    }

protected:
    void SetUp() override
    {
        startHost();
        message::setConsole(false);
        newScene();
        io::forgetFileData();
        undo::setEnabled(true);
        static int count = 0;
        folder_ = std::filesystem::temp_directory_path() / ("mirk-test-" + std::to_string(getpid()) + "-" + std::to_string(++count));
        std::filesystem::create_directories(folder_);
        sink_ = message::addSink([this](message::Kind kind, const std::string& text) { messages.push_back({kind, text}); });
    }
    void TearDown() override
    {
        message::removeSink(sink_);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

private:
    std::filesystem::path folder_;
    int                   sink_ = 0;
};

}  // namespace mirk::test
