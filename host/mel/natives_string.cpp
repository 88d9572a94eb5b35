// Text.
#include <regex>

#include "command/value_text.h"
#include "mel/native.h"

namespace mirk::mel {

namespace {

using command::Error;

/// Characters first..last, both counted from 1; what lies outside is left out.
std::string slice(const std::string& s, int64_t first, int64_t last)
{
    first = std::max<int64_t>(first, 1);
    last = std::min<int64_t>(last, int64_t(s.size()));
    return first > last ? std::string() : s.substr(size_t(first - 1), size_t(last - first + 1));
}

std::string mapped(std::string s, int (*f)(int))
{
    for (char& c : s)
        c = char(f(static_cast<unsigned char>(c)));
    return s;
}

std::string stripped(const std::string& s)
{
    const size_t first = s.find_first_not_of(" \t\r\n");
    return first == std::string::npos ? std::string() : s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

std::string replacedAll(const std::string& s, const std::string& what, const std::string& by)
{
    if (what.empty())
        return s;
    std::string out;
    size_t      from = 0;
    for (size_t at; (at = s.find(what, from)) != std::string::npos; from = at + what.size())
        out.append(s, from, at - from).append(by);
    return out.append(s, from);
}

/// Patterns know . * + ^ $ [ ] ( ) and backslash; braces and bars are plain characters.
std::regex pattern(const std::string& text)
{
    std::string p;
    bool        set = false;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size() && !set)
        {
            p += c;
            p += text[++i];
            continue;
        }
        if (!set && (c == '{' || c == '}' || c == '|' || c == '?'))
            p += '\\';
        if (set && c == '\\')
            p += '\\';
        set = c == '[' || (set && c != ']');
        p += c;
    }
    try
    {
        return std::regex(p);
    }
    catch (const std::regex_error&)
    {
        throw Error("The regular expression \"" + text + "\" is not valid.");
    }
}

// the library's matcher recurses with the length of the text
void checkLength(const std::string& s)
{
    if (s.size() > 10000)
        throw Error("The text is too long for a regular expression.");
}

bool search(const std::string& s, std::smatch& m, const std::string& p)
{
    checkLength(s);
    return std::regex_search(s, m, pattern(p));
}

std::string matched(const std::string& p, const std::string& s)
{
    std::smatch m;
    return search(s, m, p) ? m.str(0) : std::string();
}

std::string substituted(const std::string& p, const std::string& s, const std::string& by)
{
    std::smatch m;
    if (!search(s, m, p))
        return s;
    return s.substr(0, size_t(m.position(0))) + by + s.substr(size_t(m.position(0) + m.length(0)));
}

/// Shell patterns: * ? [set].
bool globMatch(const char* s, const char* p)
{
    const char *star = nullptr, *mark = nullptr;
    for (;;)
    {
        if (*p == '*')
        {
            star = ++p;
            mark = s;
            continue;
        }
        bool        one = *s && (*p == '?' || *p == *s);
        const char* next = p + 1;
        if (*p == '[' && *s)
        {
            const char* q = p + 1;
            const bool  negated = *q == '!' || *q == '^';
            bool        in = false;
            for (q += negated; *q && *q != ']'; ++q)
                if (q[1] == '-' && q[2] && q[2] != ']')
                {
                    in |= *s >= q[0] && *s <= q[2];
                    q += 2;
                }
                else
                    in |= *q == *s;
            one = *q && in != negated;
            next = q + (*q != 0);
        }
        if (!*s && !*p)
            return true;
        if (one && *p)
        {
            ++s;
            p = next;
        }
        else if (star && *mark)
        {
            p = star;
            s = ++mark;
        }
        else
            return false;
    }
}

std::vector<std::string> split(const std::string& s, const std::string& separators)
{
    std::vector<std::string> out;
    for (size_t at = 0; (at = s.find_first_not_of(separators, at)) != std::string::npos;)
    {
        const size_t end = std::min(s.find_first_of(separators, at), s.size());
        out.push_back(s.substr(at, end - at));
        at = end;
    }
    return out;
}

void assign(StringArray& a, std::vector<std::string> parts)
{
    a.clear();
    for (std::string& p : parts)
        a.push(std::move(p));
}

/// "^1s and ^2s" with the texts put in.
std::string formatted(const std::string& f, const std::vector<std::string>& args)
{
    std::string out;
    for (size_t i = 0; i < f.size(); ++i)
    {
        if (f[i] != '^' || i + 1 >= f.size())
        {
            out += f[i];
            continue;
        }
        size_t n = 0, k = i + 1;
        for (; k < f.size() && f[k] >= '0' && f[k] <= '9' && n < 1000; ++k)
            n = n * 10 + size_t(f[k] - '0');
        if (k > i + 1 && k < f.size() && f[k] == 's')
        {
            if (n >= 1 && n <= args.size())
                out += args[n - 1];
            i = k;
        }
        else if (f[i + 1] == '^')
            out += f[++i];
        else
            out += '^';
    }
    return out;
}

std::string baseName(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path.substr(path.rfind('/') + 1);
}

std::string folder(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string extension(const std::string& path)
{
    const std::string name = baseName(path);
    const size_t      dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string withoutExtension(const std::string& name)
{
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || name.find('/', dot) != std::string::npos ? name : name.substr(0, dot);
}

bool validNameChar(char c, bool first) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_' || (!first && std::isdigit(static_cast<unsigned char>(c))); }

std::string validName(std::string s)
{
    for (size_t i = 0; i < s.size(); ++i)
        if (!validNameChar(s[i], i == 0))
            s[i] = '_';
    return s;
}

#define FN(name, params, result, expr) {name, params, result, [](NativeCall& c) { c.give(expr); }}

const Native kRows[] = {
    FN("substring", "sii", 's', slice(c.s(0), c.i(1), c.i(2))),
    FN("startString", "si", 's', slice(c.s(0), 1, c.i(1))),
    FN("endString", "si", 's', slice(c.s(0), int64_t(c.s(0).size()) - c.i(1) + 1, int64_t(c.s(0).size()))),
    FN("toupper", "s", 's', mapped(c.s(0), std::toupper)),
    FN("tolower", "s", 's', mapped(c.s(0), std::tolower)),
    FN("strip", "s", 's', stripped(c.s(0))),
    FN("startsWith", "ss", 'i', int32_t(c.s(0).starts_with(c.s(1)))),
    FN("endsWith", "ss", 'i', int32_t(c.s(0).ends_with(c.s(1)))),
    FN("strcmp", "ss", 'i', int32_t(c.s(0).compare(c.s(1)) < 0 ? -1 : c.s(0) != c.s(1))),
    FN("match", "ss", 's', matched(c.s(0), c.s(1))),
    FN("gmatch", "ss", 'i', int32_t(globMatch(c.s(0).c_str(), c.s(1).c_str()))),
    FN("substitute", "sss", 's', substituted(c.s(0), c.s(1), c.s(2))),
    FN("substituteAllString", "sss", 's', replacedAll(c.s(0), c.s(1), c.s(2))),
    FN("encodeString", "s", 's', replacedAll(replacedAll(replacedAll(replacedAll(c.s(0), "\\", "\\\\"), "\"", "\\\""), "\n", "\\n"), "\t", "\\t")),
    FN("fileBaseName", "s", 's', baseName(c.s(0))),
    FN("basename", "ss", 's', c.s(1).size() < baseName(c.s(0)).size() && baseName(c.s(0)).ends_with(c.s(1))
                                  ? baseName(c.s(0)).substr(0, baseName(c.s(0)).size() - c.s(1).size()) : baseName(c.s(0))),
    FN("basenameEx", "s", 's', withoutExtension(baseName(c.s(0)))),
    FN("dirname", "s", 's', folder(c.s(0))),
    FN("fileExtension", "s", 's', extension(c.s(0))),
    FN("formValidObjectName", "s", 's', validName(c.s(0))),
    FN("isValidObjectName", "s", 'i', int32_t(!c.s(0).empty() && validName(c.s(0)) == c.s(0))),
    FN("isValidString", "ss", 'i', int32_t(matched(c.s(1), c.s(0)) == c.s(0))),
    FN("capitalizeString", "s", 's', c.s(0).empty() ? std::string() : mapped(c.s(0).substr(0, 1), std::toupper) + c.s(0).substr(1)),
    FN("toNativePath", "s", 's', replacedAll(c.s(0), "\\", "/")),
    FN("fromNativePath", "s", 's', replacedAll(c.s(0), "\\", "/")),

    {"tokenize", "sS", 'i', [](NativeCall& c) { assign(c.strings(1), split(c.s(0), " \t\r\n")); c.give(int32_t(c.strings(1).size())); }},
    {"tokenize", "ssS", 'i', [](NativeCall& c) { assign(c.strings(2), split(c.s(0), c.s(1))); c.give(int32_t(c.strings(2).size())); }},
    FN("stringToStringArray", "ss", 'S', split(c.s(0), c.s(1))),
    {"tokenizeList", "sS", 'i', [](NativeCall& c) { assign(c.strings(1), split(c.s(0), " \t\r\n,")); c.give(int32_t(c.strings(1).size())); }},

    // format("^1s", a) or format -stringArg a "^1s"
    {"format", "x*", 's', [](NativeCall& c) {
         std::vector<std::string> args;
         std::string              pattern;
         bool                     found = false;
         for (int k = 0; k < c.count(); ++k)
         {
             const bool flag = c.x(k).kind() == Value::kString && (c.x(k).get<std::string>() == "-stringArg" || c.x(k).get<std::string>() == "-s");
             if (!flag && !found)
             {
                 pattern = c.x(k).asString();
                 found = true;
             }
             else if (!flag || ++k < c.count())
                 for (std::string& s : c.x(k).asStrings())
                     args.push_back(std::move(s));
         }
         c.give(formatted(pattern, args));
     }},
};

}  // namespace

std::span<const Native> stringNatives() { return kRows; }

}  // namespace mirk::mel
