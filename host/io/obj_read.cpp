#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <streambuf>

#include "io/obj.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#define TINYOBJLOADER_IMPLEMENTATION
#include <tiny_obj_loader.h>
#pragma GCC diagnostic pop

namespace mirk {

namespace {

/// Reads text in place.
struct TextStream : std::streambuf
{
    explicit TextStream(const std::string& text)
    {
        char* p = const_cast<char*>(text.data());
        setg(p, p, p + text.size());
    }
};

/// The faces of one object or group.
struct Part
{
    std::string      name;
    std::vector<int> counts, points, uvs;   // ids from 0; a UV of -1 is none
    std::vector<int> faces;                 // the place of each face in the file
};

struct Content
{
    std::vector<float> points;   // x, y, z
    std::vector<F2>    uvs;
    std::vector<Part>  parts;
    std::map<std::pair<std::string, std::string>, size_t> partOf;   // by object and group
    std::string        object, group;
    Part*              current = nullptr;
    int                faces = 0;             // face lines met
    int                badFace = -1;          // the first face line that is wrong
    int                badLine = 0;           // the first line that cannot be read
    std::string        wrong;

    int pointCount() const { return int(points.size() / 3); }

    Part& part()
    {
        if (!current) {
            const auto [found, isNew] = partOf.try_emplace({object, group}, parts.size());
            if (isNew)
                parts.emplace_back().name = group.empty() || group == "default" ? object : group;
            current = &parts[found->second];
        }
        return *current;
    }
    void refuse(std::string why)
    {
        if (badFace < 0) {
            badFace = faces;
            wrong = std::move(why);
        }
    }
    void face(const tinyobj::index_t* indices, int n)
    {
        if (n < 3)
            refuse("a face has " + std::to_string(n) + " vertices");
        Part& p = part();
        p.counts.push_back(n);
        p.faces.push_back(faces);
        for (int i = 0; i < n; ++i) {
            const int v = indices[i].vertex_index, t = indices[i].texcoord_index;
            if (v == 0)
                refuse("a face names no point");
            p.points.push_back(v < 0 ? pointCount() + v : v - 1);
            p.uvs.push_back(t < 0 ? int(uvs.size()) + t : t - 1);
            if (p.points.back() < 0 && v != 0)
                refuse("a face names point " + std::to_string(v) + " of " + std::to_string(pointCount()));
            if (t < 0 && p.uvs.back() < 0)
                refuse("a face names UV " + std::to_string(t) + " of " + std::to_string(uvs.size()));
        }
        ++faces;
    }
};

Content& contentOf(void* user) { return *static_cast<Content*>(user); }

void load(const std::string& text, Content& content)
{
    tinyobj::callback_t callback;
    callback.vertex_cb = [](void* user, float x, float y, float z, float) {
        auto& points = contentOf(user).points;
        points.insert(points.end(), {x, y, z});
    };
    callback.texcoord_cb = [](void* user, float u, float v, float) { contentOf(user).uvs.push_back({u, v}); };
    callback.index_cb = [](void* user, tinyobj::index_t* indices, int n) { contentOf(user).face(indices, n); };
    callback.group_cb = [](void* user, const char** names, int n) {
        Content& c = contentOf(user);
        c.group.clear();
        for (int i = 0; i < n; ++i)
            c.group += (i ? " " : "") + std::string(names[i]);
        c.current = nullptr;
    };
    callback.object_cb = [](void* user, const char* name) {
        Content& c = contentOf(user);
        c.object = name;
        c.object.erase(c.object.find_last_not_of(" \t\r") + 1);
        c.group.clear();
        c.current = nullptr;
    };
    TextStream buffer(text);
    std::istream in(&buffer);
    tinyobj::LoadObjWithCallback(in, callback, &content);
}

/// Calls with each line's number and what stands behind its keyword, for lines of one keyword.
template <class F>
void eachLine(const std::string& text, std::string_view keyword, F&& use)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    int number = 1;
    for (size_t at = 0; at < text.size(); ++number) {
        size_t end = text.find_first_of("\r\n", at);
        end = end == std::string::npos ? text.size() : end;
        std::string_view line(text.data() + at, end - at);
        at = end + (end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n' ? 2 : 1);
        while (!line.empty() && blank(line.front()))
            line.remove_prefix(1);
        if (line.size() > keyword.size() && line.substr(0, keyword.size()) == keyword && blank(line[keyword.size()]))
            if (!use(number, line.substr(keyword.size() + 1)))
                return;
    }
}

/// Where a face line stands, by its place among them. Lines without indices do not count.
int lineOfFace(const std::string& text, int face)
{
    int line = 0, seen = 0;
    eachLine(text, "f", [&](int number, std::string_view rest) {
        if (rest.find_first_not_of(" \t") == std::string_view::npos)
            return true;
        line = number;
        return seen++ < face;
    });
    return line;
}

/// Numbers of a line, at most `most`.
int numbers(std::string_view rest, float* out, int most)
{
    int n = 0;
    const char *p = rest.data(), *end = p + rest.size();
    while (n < most) {
        while (p < end && (*p == ' ' || *p == '\t' || *p == '+'))
            ++p;
        const auto r = std::from_chars(p, end, out[n]);
        if (r.ec == std::errc::invalid_argument)
            break;
        if (r.ec != std::errc())
            out[n] = std::strtof(p, nullptr);   // infinite, or next to nothing
        p = r.ptr;
        ++n;
    }
    return n;
}

/// True if a corner of a face reads as indices: 1, 1/2, 1//3, 1/2/3, each within 32 bits.
bool isCorner(std::string_view word)
{
    int parts = 0;
    for (const char *p = word.data(), *end = p + word.size();; ++p) {
        int        id = 0;
        const auto r = std::from_chars(p, end, id);
        if (r.ec != std::errc() && (parts == 0 || r.ec == std::errc::result_out_of_range))
            return false;
        p = r.ptr;
        if (++parts > 3 || (p < end && *p != '/'))
            return false;
        if (p >= end)
            return true;
    }
}

/// Refuses the first line that the reader would take for zeros.
void checkText(const std::string& text, Content& content)
{
    constexpr const char* kBlanks = " \t";
    const auto refuse = [&](int number, std::string why) {
        if (content.badLine == 0 || number < content.badLine) {
            content.badLine = number;
            content.wrong = std::move(why);
        }
        return false;
    };
    for (const auto& [keyword, least] : {std::pair{"v", 3}, std::pair{"vt", 1}})
        eachLine(text, keyword, [&, keyword = keyword, least = least](int number, std::string_view rest) {
            float n[3];
            if (numbers(rest, n, least) < least || !std::all_of(n, n + least, [](float f) { return std::isfinite(f); }))
                return refuse(number, std::string("a line of '") + keyword + "' needs " + std::to_string(least)
                                          + (least == 1 ? " finite number" : " finite numbers"));
            return true;
        });
    eachLine(text, "f", [&](int number, std::string_view rest) {
        while (true) {
            rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
            if (rest.empty())
                return true;
            const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
            if (!isCorner(word))
                return refuse(number, "'" + std::string(word.substr(0, 40)) + "' is no corner of a face");
            rest.remove_prefix(word.size());
        }
    });
}

/// Colours behind the positions, one a point; empty if the first point has none.
std::vector<MColor> readColors(const std::string& text, size_t pointCount)
{
    std::vector<MColor> colors;
    eachLine(text, "v", [&](int, std::string_view rest) {
        float n[6];
        const bool has = numbers(rest, n, 6) == 6;
        if (!has && colors.empty())
            return false;
        const bool unset = !has || (n[3] == -1 && n[4] == -1 && n[5] == -1);
        colors.push_back(unset ? unsetColor : MColor(n[3], n[4], n[5], 1));
        return true;
    });
    if (!colors.empty())
        colors.resize(pointCount, unsetColor);
    return colors;
}

/// Refuses the first face that names what the whole file does not have: points may stand behind the faces.
void checkIds(Content& content)
{
    const auto check = [&](const Part& part, const std::vector<int>& ids, int count, const char* what) {
        for (size_t f = 0, i = 0; f < part.counts.size(); ++f)
            for (const size_t end = i + size_t(part.counts[f]); i < end; ++i)
                if (ids[i] >= count && (content.badFace < 0 || part.faces[f] < content.badFace)) {
                    content.badFace = part.faces[f];
                    content.wrong = std::string("a face names ") + what + " " + std::to_string(ids[i] + 1) + " of "
                                    + std::to_string(count);
                }
    };
    for (const Part& part : content.parts) {
        check(part, part.points, content.pointCount(), "point");
        check(part, part.uvs, int(content.uvs.size()), "UV");
    }
}

/// Gives the used ids new numbers in their order; returns the old ids. -1 stays.
std::vector<int> compact(std::vector<int>& ids, size_t count)
{
    std::vector<int> fresh(count, -1), old;
    for (int id : ids)
        if (id >= 0)
            fresh[size_t(id)] = 0;
    for (size_t i = 0; i < count; ++i)
        if (fresh[i] == 0) {
            fresh[i] = int(old.size());
            old.push_back(int(i));
        }
    for (int& id : ids)
        id = id < 0 ? -1 : fresh[size_t(id)];
    return old;
}

std::vector<int> everything(size_t n)
{
    std::vector<int> ids(n);
    for (size_t i = 0; i < n; ++i)
        ids[i] = int(i);
    return ids;
}

Ref<MeshBody> build(const Content& content, const std::vector<MColor>& colors, Part& part, bool all)
{
    const std::vector<int> points = all ? everything(size_t(content.pointCount())) : compact(part.points, size_t(content.pointCount()));
    const std::vector<int> uvs = all ? everything(content.uvs.size()) : compact(part.uvs, content.uvs.size());
    auto xyz = make<Buffer<float>>(points.size() * 3);
    for (size_t i = 0; i < points.size(); ++i)
        std::copy_n(content.points.data() + 3 * points[i], 3, xyz->data() + 3 * i);
    auto body = make<MeshBody>();
    if (!body->reset(std::move(xyz), Topology::create(int(points.size()), part.counts.data(), part.counts.size(),
                                                      part.points.data(), part.points.size())))
        return {};
    if (!uvs.empty()) {
        auto table = make<Buffer<F2>>(uvs.size());
        for (size_t i = 0; i < uvs.size(); ++i)
            (*table)[i] = content.uvs[size_t(uvs[i])];
        body->writeUVSet(0).uvs = std::move(table);
        body->assignUVs(0, make<Buffer<int>>(part.uvs.data(), part.uvs.size()));
    }
    if (!colors.empty()) {
        std::vector<MColor> own;
        for (int p : points)
            own.push_back(colors[size_t(p)]);
        body->setVertexColors(body->addColorSet(""), own.data(), everything(own.size()).data(), own.size());
    }
    return body;
}

}  // namespace

bool parseObj(const std::string& text, const std::string& file, std::vector<NamedMesh>& meshes, std::string& error)
{
    Content content;
    checkText(text, content);
    if (content.badLine > 0) {
        error = file + ":" + std::to_string(content.badLine) + ": " + content.wrong;
        return false;
    }
    load(text, content);
    checkIds(content);
    if (content.badFace >= 0) {
        error = file + ":" + std::to_string(lineOfFace(text, content.badFace)) + ": " + content.wrong;
        return false;
    }
    const std::vector<MColor> colors = readColors(text, size_t(content.pointCount()));
    if (content.parts.empty() && content.pointCount())
        content.part();
    std::vector<NamedMesh> result;
    for (Part& part : content.parts)
        result.push_back({part.name, build(content, colors, part, content.parts.size() == 1)});
    meshes = std::move(result);
    return true;
}

bool readObj(const std::string& file, std::vector<NamedMesh>& meshes, std::string& error)
{
    std::error_code code;
    const auto size = std::filesystem::file_size(file, code);   // fails for what is no file
    std::ifstream in(file, std::ios::binary);
    std::string text(code ? 0 : size, '\0');
    if (code || !in.read(text.data(), std::streamsize(text.size()))) {
        error = "Cannot read file: " + file;
        return false;
    }
    std::vector<NamedMesh> found;
    if (!parseObj(text, file, found, error))
        return false;
    if (found.empty()) {
        error = file + ": there are no points in it";
        return false;
    }
    meshes = std::move(found);
    return true;
}

}  // namespace mirk
