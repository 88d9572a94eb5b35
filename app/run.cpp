#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>

#include <unistd.h>

#include <maya/MDagPath.h>

#include "app.h"
#include "command/cmd_util.h"
#include "command/message.h"
#include "command/registry.h"
#include "graph/evaluate.h"
#include "mel/interpreter.h"
#include "python/python.h"
#include "view/scene_draw.h"

namespace app {

namespace fs = std::filesystem;
using mirk::command::Error;
using mirk::command::Value;

namespace {

void command(const char* name, std::vector<Value> arguments) { mirk::command::execute(name, arguments); }

struct Frames { int first = 0, last = -1; };

Frames parseFrames(const std::string& text)
{
    Frames f;
    if (text.empty())
        return f;
    constexpr int most = 10'000'000;   // either way
    const char*   end = text.data() + text.size();
    const auto    first = std::from_chars(text.data(), end, f.first);
    const auto    last = first.ptr < end && *first.ptr == '-' ? std::from_chars(first.ptr + 1, end, f.last) : first;
    if (first.ec != std::errc() || last.ec != std::errc() || last.ptr != end || last.ptr == first.ptr || f.last < f.first
        || f.first < -most || f.last > most)
        throw Error("Invalid frame range '" + text + "': it is written as 1-24");
    return f;
}

int runFile(const std::string& path)
{
    std::error_code ignored;
    if (!fs::exists(path, ignored))
        throw Error("File not found: \"" + path + "\"");
    if (fs::is_directory(path, ignored))
        throw Error("\"" + path + "\" is a folder and no file");
    const std::string extension = fs::path(path).extension().string();
    if (extension == ".py")
        return mirk::python::runFile(path);
    if (extension == ".mel")
        mirk::mel::sourceFile(fs::absolute(path).string());
    else if (extension == ".ma")
        command("file", {"-force", "-open", path});
    else if (extension == ".obj")
        command("file", {"-import", path});
    else
        throw Error("\"" + path + "\": only .py, .mel, .ma and .obj files can be run");
    return 0;
}

/// "a.##.png" at frame 7 is "a.07.png".
std::string numbered(const std::string& name, int frame)
{
    const size_t from = name.find('#');
    if (from == std::string::npos)
        return name;
    const size_t to = std::min(name.size(), name.find_first_not_of('#', from));
    char         digits[32];
    std::snprintf(digits, sizeof digits, "%0*d", int(to - from), frame);
    return name.substr(0, from) + digits + name.substr(to);
}

void render(const RunOptions& o, const std::string& path)
{
    const std::string name = o.camera.empty() ? "persp" : o.camera;
    const mirk::Item  item = mirk::command::oneItem(name);
    mirk::view::SceneDrawOptions options;
    if (item.path.nodes.empty() || !mirk::view::cameraOf(item.path, o.width, o.height, options.camera, options.cameraPath))
        throw Error("'" + name + "' is no camera");
    options.wireOnShaded = o.wire;
    options.locators = !o.noLocators;
    options.selection = false;
    mirk::view::renderer().writeImage(path, mirk::view::renderScene(options));
}

/// Everything that is shown gets up to date.
void evaluateScene()
{
    for (mirk::Node* n : mirk::scene().nodes())
        if (mirk::command::isShape(*n))
            for (const char* out : {"worldMesh", "worldSpace", "outMesh", "local"})
                if (const mirk::Attribute* a = n->type->find(out))
                    if (mirk::Cell* cell = n->cell(a))
                        mirk::eval::pullDeep(*cell);
}

void stepFrames(const RunOptions& o, const Frames& f)
{
    const bool bar = isatty(STDERR_FILENO);
    for (int frame = f.first; frame <= f.last; ++frame)
    {
        command("currentTime", {frame});
        idle();
        evaluateScene();
        if (o.renderFile.find('#') != std::string::npos)
            render(o, numbered(o.renderFile, frame));
        if (!bar)
            continue;
        const int width = 40, done = int(int64_t(width) * (frame - f.first + 1) / (f.last - f.first + 1));
        std::fprintf(stderr, "\r[%s%s] frame %d", std::string(size_t(done), '=').c_str(), std::string(size_t(width - done), ' ').c_str(), frame);
    }
    if (bar)
        std::fprintf(stderr, "\n");
}

void writeResults(const RunOptions& o, bool stepped)
{
    if (!o.exportFile.empty())
        command("file", {"-force", "-exportAll", o.exportFile});
    if (!o.renderFile.empty() && !(stepped && o.renderFile.find('#') != std::string::npos))
        render(o, numbered(o.renderFile, 1));
    if (!o.saveFile.empty())
    {
        command("file", {"-rename", o.saveFile});
        command("file", {"-force", "-save"});
    }
}

}  // namespace

std::string resultText(const Value& value)
{
    std::string text = mirk::mel::printed(value);
    if (!value.isArray())
        return text;
    for (char& c : text)
        c = c == '\n' ? ' ' : c;
    return text.erase(text.find_last_not_of(' ') + 1);
}

int run(const RunOptions& o)
{
    const Frames frames = parseFrames(o.frames);
    start(o.interactive);
    catchInterrupts();
    for (const std::string& file : o.files)
    {
        if (const int status = runFile(file))
            return status;
        idle();
    }
    if (!o.text.empty())
        if (const Value result = mirk::mel::execute(o.text, "-e"); !result.isNone())
            mirk::message::result(resultText(result));
    idle();
    if (frames.first <= frames.last)
        stepFrames(o, frames);
    writeResults(o, frames.first <= frames.last);
    return 0;
}

}  // namespace app
