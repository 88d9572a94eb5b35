// Files by number, and the process's surroundings. Binary values are in the byte order of the machine.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>

#include <unistd.h>

#include "command/shell_access.h"
#include "mel/native.h"

extern char** environ;

namespace mirk::mel {

namespace {

using command::Error;

struct OpenFile { std::FILE* stream; bool pipe; };

/// Open files by number, from 1.
std::map<int32_t, OpenFile>& openFiles()
{
    static std::map<int32_t, OpenFile> files;
    return files;
}

int32_t keep(std::FILE* stream, bool pipe)
{
    if (!stream)
        return 0;
    int32_t id = 1;
    while (openFiles().count(id))
        ++id;
    openFiles()[id] = {stream, pipe};
    return id;
}

std::FILE* streamOf(int32_t id)
{
    const auto it = openFiles().find(id);
    if (it == openFiles().end())
        throw Error("There is no open file of number " + std::to_string(id) + ".");
    return it->second.stream;
}

int32_t openFile(const std::string& name, const std::string& mode)
{
    for (const char* known : {"r", "w", "a", "r+", "w+", "a+", "rb", "wb", "ab"})
        if (mode == known)
            return keep(std::fopen(name.c_str(), mode.c_str()), false);
    throw Error("fopen: \"" + mode + "\" is no mode; it is one of r, w, a, r+, w+, a+.");
}

int32_t openPipe(const std::string& text, const std::string& mode)
{
    command::checkShell("popen");
    if (mode != "r" && mode != "w")
        throw Error("popen: \"" + mode + "\" is no mode; it is r or w.");
    return keep(popen(text.c_str(), mode.c_str()), true);
}

int32_t closeFile(int32_t id, bool pipe)
{
    std::FILE* stream = streamOf(id);
    if (openFiles()[id].pipe != pipe)
        throw Error(pipe ? "pclose: the file was opened with fopen." : "fclose: the file was opened with popen.");
    openFiles().erase(id);
    return pipe ? pclose(stream) : std::fclose(stream);
}

void fileText(int32_t id, const std::string& text)
{
    std::FILE* stream = streamOf(id);
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size())
        throw Error("fprint: the text could not be written to file " + std::to_string(id) + ".");
}

/// With its line end; "" at the end of the file.
std::string line(int32_t id)
{
    std::FILE*  stream = streamOf(id);
    std::string out;
    for (int c; (c = std::fgetc(stream)) != EOF;)
    {
        out += char(c);
        if (c == '\n')
            break;
    }
    return out;
}

std::string fileWord(int32_t id, const std::string& separators)
{
    std::FILE*  stream = streamOf(id);
    std::string out;
    for (int c; (c = std::fgetc(stream)) != EOF;)
    {
        if (separators.find(char(c)) == std::string::npos)
            out += char(c);
        else if (!out.empty())
            break;
    }
    return out;
}

/// Up to a NUL or the end.
std::string binaryText(int32_t id)
{
    std::FILE*  stream = streamOf(id);
    std::string out;
    for (int c; (c = std::fgetc(stream)) != EOF && c != 0;)
        out += char(c);
    return out;
}

template <class T>
T binary(int32_t id)
{
    T value{};
    if (std::fread(&value, sizeof value, 1, streamOf(id)) != 1)
        return T{};
    return value;
}

void writeBinary(int32_t id, const void* data, size_t size)
{
    if (std::fwrite(data, 1, size, streamOf(id)) != size)
        throw Error("fwrite: the value could not be written to file " + std::to_string(id) + ".");
}

int32_t atEnd(int32_t id)
{
    std::FILE* stream = streamOf(id);
    const int  c = std::fgetc(stream);   // the end is known before a read has failed
    if (c != EOF)
        std::ungetc(c, stream);
    return c == EOF;
}

std::string shellOutput(const std::string& text)
{
    command::checkShell("system");
    std::FILE* stream = popen(text.c_str(), "r");
    if (!stream)
        throw Error("system: the command could not be started.");
    std::string out;
    char        block[4096];
    for (size_t n; (n = std::fread(block, 1, sizeof block, stream)) > 0;)
        out.append(block, n);
    pclose(stream);
    return out;
}

void startProcess(const std::string& text)
{
    command::checkShell("exec");
    std::fflush(nullptr);
    if (std::FILE* stream = popen((text + " &").c_str(), "w"))
        pclose(stream);
}

int32_t changeFolder(const std::string& path)
{
    std::error_code error;
    std::filesystem::current_path(path, error);
    return error ? -1 : 0;
}

void setEnvironment(const std::string& name, const std::string& value)
{
    if (name.empty() || name.find('=') != std::string::npos || setenv(name.c_str(), value.c_str(), 1) != 0)
        throw Error("putenv: \"" + name + "\" is no name of a variable.");
}

std::vector<std::string> environmentNames()
{
    std::vector<std::string> names;
    for (char** e = environ; e && *e; ++e)
        names.emplace_back(*e, std::strcspn(*e, "="));
    return names;
}

#define FN(name, params, result, expr) {name, params, result, [](NativeCall& c) { c.give(expr); }}
#define DO(name, params, expr) {name, params, 0, [](NativeCall& c) { expr; }}

const Native kRows[] = {
    FN("fopen", "s", 'i', openFile(c.s(0), "w+")),
    FN("fopen", "ss", 'i', openFile(c.s(0), c.s(1))),
    FN("fclose", "i", 'i', closeFile(c.i(0), false)),
    FN("popen", "ss", 'i', openPipe(c.s(0), c.s(1))),
    FN("pclose", "i", 'i', closeFile(c.i(0), true)),
    DO("fprint", "ix", fileText(c.i(0), c.x(1).asString())),
    FN("fgetline", "i", 's', line(c.i(0))),
    FN("fgetword", "i", 's', fileWord(c.i(0), " \t\r\n")),
    FN("fgetword", "is", 's', fileWord(c.i(0), c.s(1))),
    FN("fread", "ii", 'i', binary<int32_t>(c.i(0))),
    FN("fread", "if", 'f', binary<double>(c.i(0))),
    FN("fread", "is", 's', binaryText(c.i(0))),
    FN("fread", "iv", 'v', binary<Vec3>(c.i(0))),
    {"fwrite", "ii", 0, [](NativeCall& c) { const int32_t v = c.i(1); writeBinary(c.i(0), &v, sizeof v); }},
    {"fwrite", "if", 0, [](NativeCall& c) { const double v = c.f(1); writeBinary(c.i(0), &v, sizeof v); }},
    {"fwrite", "is", 0, [](NativeCall& c) { writeBinary(c.i(0), c.s(1).c_str(), c.s(1).size() + 1); }},
    {"fwrite", "iv", 0, [](NativeCall& c) { const Vec3 v = c.v(1); writeBinary(c.i(0), &v, sizeof v); }},
    DO("fflush", "i", std::fflush(streamOf(c.i(0)))),
    DO("frewind", "i", std::rewind(streamOf(c.i(0)))),
    FN("feof", "i", 'i', atEnd(c.i(0))),

    FN("system", "s", 's', shellOutput(c.s(0))),
    DO("exec", "s", startProcess(c.s(0))),
    FN("pwd", "", 's', std::filesystem::current_path().string()),
    FN("chdir", "s", 'i', changeFolder(c.s(0))),
    DO("putenv", "ss", setEnvironment(c.s(0), c.s(1))),
    FN("env", "", 'S', environmentNames()),
};

}  // namespace

std::span<const Native> fileNatives() { return kRows; }

}  // namespace mirk::mel
