// Commands on files and folders, and the date.
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>

#include "command/cmd_util.h"

namespace mirk::command {

namespace fs = std::filesystem;

namespace {

std::string onlyPath(const Call& call)
{
    const Strings names = call.names();
    if (names.size() != 1)
        fail(std::string(call.command->name) + ": one path has to be given");
    return names[0];
}

constexpr Flag kFiletest[] = {
    {"r", "readable"}, {"w", "writable"}, {"x", "executable"}, {"R", "realReadable"}, {"W", "realWritable"}, {"X", "realExecutable"},
    {"f", "file"}, {"d", "directory"}, {"h", "symbolicLink"}, {"L", "link"}, {"c", "character"}, {"b", "block"}, {"p", "pipe"},
    {"s", "size"}, {"e", "exist"}, {"u", "setuid"}, {"g", "setgid"}, {"k", "sticky"},
};

Value filetest(Call& call)
{
    const std::string path = onlyPath(call);
    if (call.uses.size() != 1)
        fail("filetest: one flag that says what to test has to be given");
    const char  what = call.uses[0].flag->shortName[0];
    struct stat s{};
    if ((what == 'h' || what == 'L' ? lstat(path.c_str(), &s) : stat(path.c_str(), &s)) != 0)
        return Value(false);
    const auto may = [&](int mode) { return access(path.c_str(), mode) == 0; };
    switch (what)
    {
    case 'r': case 'R': return Value(may(R_OK));
    case 'w': case 'W': return Value(may(W_OK));
    case 'x': case 'X': return Value(may(X_OK));
    case 'f': return Value(bool(S_ISREG(s.st_mode)));
    case 'd': return Value(bool(S_ISDIR(s.st_mode)));
    case 'h': case 'L': return Value(bool(S_ISLNK(s.st_mode)));
    case 'c': return Value(bool(S_ISCHR(s.st_mode)));
    case 'b': return Value(bool(S_ISBLK(s.st_mode)));
    case 'p': return Value(bool(S_ISFIFO(s.st_mode)));
    case 's': return Value(s.st_size > 0);
    case 'u': return Value((s.st_mode & S_ISUID) != 0);
    case 'g': return Value((s.st_mode & S_ISGID) != 0);
    case 'k': return Value((s.st_mode & S_ISVTX) != 0);
    default:  return Value(true);
    }
}

constexpr Flag kGetFileList[] = {{"fld", "folder", "s"}, {"fs", "filespec", "s"}};

Value getFileList(Call& call)
{
    const std::string folder = call.str("folder", "."), pattern = call.str("filespec", "*");
    Strings           out;
    std::error_code   error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        if (std::string name = it->path().filename().string(); matches(name, pattern))
            out.push_back(std::move(name));
    std::sort(out.begin(), out.end());
    return out;
}

constexpr Flag kSysFile[] = {{"cp", "copy", "s"}, {"del", "delete"}, {"md", "makeDir"}, {"mov", "move", "s"}, {"red", "removeEmptyDir"}, {"ren", "rename", "s"}};

Value sysFile(Call& call)
{
    const std::string path = onlyPath(call);
    if (call.uses.size() != 1)
        fail("sysFile: one flag that says what to do has to be given");
    std::error_code   error;
    const std::string what = call.uses[0].flag->longName;
    bool              done = true;
    if (what == "makeDir")
        fs::create_directories(path, error);
    else if (what == "removeEmptyDir")
        done = fs::is_directory(path, error) && fs::remove(path, error);
    else if (what == "delete")
        done = !fs::is_directory(path, error) && fs::remove(path, error);
    else if (what == "copy")
        fs::copy_file(path, call.str("copy"), fs::copy_options::overwrite_existing, error);
    else
        fs::rename(path, call.str(what), error);
    call.truth = true;
    return Value(done && !error);
}

constexpr Flag kDate[] = {{"d", "date"}, {"t", "time"}, {"sd", "shortDate"}, {"st", "shortTime"}, {"f", "format", "s"}};

/// YYYY YY MM DD hh mm ss of a format become numbers; what is in double quotes stays.
std::string dated(const std::string& format)
{
    constexpr struct { const char *word, *code; } words[] = {
        {"YYYY", "%Y"}, {"YY", "%y"}, {"MM", "%m"}, {"DD", "%d"}, {"hh", "%H"}, {"mm", "%M"}, {"ss", "%S"}};
    const std::time_t now = std::time(nullptr);
    const std::tm     local = *std::localtime(&now);
    std::string       out;
    bool              quoted = false;
    for (size_t i = 0; i < format.size();)
    {
        const auto* found = std::find_if(std::begin(words), std::end(words), [&](const auto& w) { return !quoted && format.compare(i, std::char_traits<char>::length(w.word), w.word) == 0; });
        if (found != std::end(words))
        {
            char text[16];
            std::strftime(text, sizeof text, found->code, &local);
            out += text;
            i += std::char_traits<char>::length(found->word);
            continue;
        }
        quoted = quoted != (format[i] == '"');
        if (format[i] != '"')
            out += format[i];
        ++i;
    }
    return out;
}

Value date(Call& call)
{
    if (call.has("format"))
        return dated(call.str("format"));
    if (call.has("shortDate"))
        return dated("MM/DD");
    if (call.has("shortTime"))
        return dated("hh:mm");
    return dated(call.has("date") ? "YYYY/MM/DD" : call.has("time") ? "hh:mm:ss" : "YYYY/MM/DD hh:mm:ss");
}

const Command kCommands[] = {
    {"filetest", kFiletest, filetest, false},
    {"getFileList", kGetFileList, getFileList, false, false},
    {"sysFile", kSysFile, sysFile, false},
    {"date", kDate, date, false, false},
};

const bool g_added = (add(kCommands), true);

}  // namespace

}  // namespace mirk::command
