#include "io/ma_mesh.h"

#include <cmath>
#include <map>

#include "command/geometry_text.h"
#include "command/shape_edit.h"
#include "mesh/mesh.h"

namespace mirk::io {

using command::Arguments;
using command::fail;

namespace {

constexpr float kUnlocked = 1e20f;   // a normal that is not set by hand, as files write it

/// What has come for one shape so far.
struct Parts
{
    struct Edge { int a, b; bool smooth; };
    struct Uvs { std::string name; std::vector<float> points; std::vector<int> ids; };
    struct Colors { std::string name; int representation = 4; bool clamped = false; std::vector<float> values; std::vector<int> ids; };

    Ref<Node>           shape;
    std::vector<float>  points, normals;
    std::vector<Edge>   edges;
    std::vector<int>    counts, connects;
    std::map<int, Uvs>    uvSets;
    std::map<int, Colors> colorSets;
    std::string         currentUv, currentColor;
};

std::vector<Parts>& pending()
{
    static std::vector<Parts> all;
    return all;
}

Parts& partsOf(Node& shape)
{
    auto& all = pending();
    for (Parts& p : all)
        if (p.shape.get() == &shape)
            return p;
    all.emplace_back().shape = Ref<Node>(&shape);
    return all.back();
}

/// "name[a:b]" or "name[a]": the range; false for other text.
bool readRange(const std::string& text, std::string& name, int& first, int& last)
{
    const size_t open = text.find('[');
    name = text.substr(0, open);
    first = 0, last = -1;
    if (open == std::string::npos)
        return true;
    int n = 0;
    if (std::sscanf(text.c_str() + open, "[%d:%d]%n", &first, &last, &n) != 2 || !n)
    {
        n = 0;
        if (std::sscanf(text.c_str() + open, "[%d]%n", &first, &n) != 1 || !n)
            return false;
        last = first;
    }
    return first >= 0 && last >= first && open + size_t(n) == text.size();
}

void readFloats(std::vector<float>& to, int first, int last, size_t width, Arguments& args)
{
    if (size_t(last - first + 1) * width > args.left())
        fail("Error reading data: " + std::to_string(size_t(last - first + 1) * width) + " numbers expected, " + std::to_string(args.left()) + " given");
    if (to.size() < (size_t(last) + 1) * width)
        to.resize((size_t(last) + 1) * width);
    for (size_t i = size_t(first) * width; i < (size_t(last) + 1) * width; ++i)
        to[i] = float(args.number());
}

void readEdges(Parts& p, int first, int last, Arguments& args)
{
    if (size_t(last) + 1 > p.edges.size() + args.left())
        fail("Error reading data: edges are missing");
    p.edges.resize(std::max(p.edges.size(), size_t(last) + 1));
    for (int i = first; i <= last; ++i)
    {
        const int a = args.integer(), b = args.integer();
        p.edges[size_t(i)] = {a, b, args.integer() != 0};
    }
}

/// "polyFaces": f edges, then what belongs to the corners of that face: mu UVs of a set, mc and fc colours of a set.
void readFaces(Parts& p, Arguments& args)
{
    size_t from = 0, size = 0;
    const auto ids = [&](std::vector<int>& to) {
        const int count = args.integer();
        if (to.size() < p.connects.size())
            to.resize(p.connects.size(), -1);
        for (int i = 0; i < count; ++i)
        {
            const int id = args.integer();
            if (size_t(i) < size)
                to[from + size_t(i)] = id;
        }
    };
    while (!args.done())
    {
        const std::string part = args.text();
        if (part == "f")
        {
            const int count = args.integer();
            if (count < 0 || size_t(count) > args.left())
                fail("Error reading data: the edges of a face are missing");
            from = p.connects.size();
            size = size_t(count);
            for (int i = 0; i < count; ++i)
            {
                const int e = args.integer(), id = e < 0 ? -e - 1 : e;
                if (size_t(id) >= p.edges.size())
                    fail("Error reading data: a face names edge " + std::to_string(id) + ", which does not exist");
                p.connects.push_back(e < 0 ? p.edges[size_t(id)].b : p.edges[size_t(id)].a);
            }
            p.counts.push_back(count);
        }
        else if (part == "mu")
            ids(p.uvSets[args.integer()].ids);
        else if (part == "mc")
            ids(p.colorSets[args.integer()].ids);
        else if (part == "fc")
            ids(p.colorSets[0].ids);
        else if (part == "h")
            fail("A face has a hole, which meshes here cannot have");
        else
            fail("Error reading data: '" + part + "' is no part of a face");
    }
}

bool readSet(Parts& p, const std::string& path, Arguments& args)
{
    const size_t      dot = path.find('.');
    std::string       set, part;
    int               index = 0, unused = 0, first = 0, last = 0;
    if (dot == std::string::npos || !readRange(path.substr(0, dot), set, index, unused) || !readRange(path.substr(dot + 1), part, first, last))
        return false;
    if (set == "uvst" || set == "uvSet")
    {
        Parts::Uvs& s = p.uvSets[index];
        if (part == "uvsn" || part == "uvSetName")
            s.name = args.text();
        else if (part == "uvsp" || part == "uvSetPoints")
            readFloats(s.points, first, last, 2, args);
        else
            return false;
        return true;
    }
    Parts::Colors& s = p.colorSets[index];
    if (part == "clsn" || part == "colorName")
        s.name = args.text();
    else if (part == "clsp" || part == "colorSetPoints")
        readFloats(s.values, first, last, 4, args);
    else if (part == "rprt" || part == "representation")
        s.representation = args.integer();
    else if (part == "clam" || part == "clamped")
        s.clamped = args.boolean();
    else
        return false;
    return true;
}

void addUvSets(MeshBody& body, const Parts& p)
{
    bool first = true;
    for (const auto& [index, s] : p.uvSets)
    {
        if (!first)
            body.writeUVSets().sets.emplace_back();
        const int at = first ? 0 : int(body.uvSets().sets.size()) - 1;
        first = false;
        UVSet& set = body.writeUVSet(at);
        set.name = s.name.empty() ? (at ? "uvSet" + std::to_string(at) : "map1") : s.name;
        set.uvs = make<Buffer<F2>>(reinterpret_cast<const F2*>(s.points.data()), s.points.size() / 2);
        std::vector<int> ids = s.ids;
        ids.resize(p.connects.size(), -1);
        if (!s.ids.empty() && !body.assignUVs(at, make<Buffer<int>>(ids.data(), ids.size())))
            fail("a face names a UV of set '" + body.uvSets().sets[size_t(at)].name + "' that does not exist");
    }
    if (const int current = body.findUVSet(p.currentUv); current >= 0)
        body.writeUVSets().current = current;
}

void addColorSets(MeshBody& body, const Parts& p)
{
    for (const auto& [index, s] : p.colorSets)
    {
        const int at = body.addColorSet(s.name);
        ColorSet& set = body.writeColorSet(at);
        set.representation = s.representation;
        set.clamped = s.clamped;
        auto table = make<Buffer<MColor>>();
        for (size_t i = 0; i + 4 <= s.values.size(); i += 4)
            table->push(MColor(s.values[i], s.values[i + 1], s.values[i + 2], s.values[i + 3]));
        body.setColorTable(at, table);
        std::vector<int> ids = s.ids;
        ids.resize(p.connects.size(), -1);
        if (!body.assignColors(at, make<Buffer<int>>(ids.data(), ids.size())))
            fail("a face names a colour of set '" + s.name + "' that does not exist");
    }
    if (const int current = body.findColorSet(p.currentColor); current >= 0)
        body.writeColorSets().current = current;
}

void build(const Parts& p)
{
    std::string why;
    auto topology = Topology::create(int(p.points.size() / 3), p.counts.data(), p.counts.size(), p.connects.data(), p.connects.size(), &why);
    if (!topology)
        fail(why);
    auto data = make<MeshData>();
    MeshBody& body = *data->body;
    body.reset(make<Buffer<float>>(p.points.data(), p.points.size() / 3 * 3), topology);
    for (const Parts::Edge& e : p.edges)
        if (!e.smooth)
            if (const int edge = topology->edgeBetween(e.a, e.b); edge >= 0)
                body.setEdgeSmooth(edge, false);
    addUvSets(body, p);
    addColorSets(body, p);
    for (int c = 0; c < topology->cornerCount() && size_t(c) * 3 + 2 < p.normals.size(); ++c)
        if (p.normals[size_t(c) * 3] != kUnlocked)
        {
            const F3 n{{p.normals[size_t(c) * 3], p.normals[size_t(c) * 3 + 1], p.normals[size_t(c) * 3 + 2]}};
            body.lockCornerNormals(&n, &c, 1);
        }
    if (!command::hasHistory(*p.shape))
        command::setGeometry(*p.shape, data);
}

void appendChunks(std::string& out, const std::string& name, const std::string& type, size_t count, size_t perLine,
                  const std::function<void(std::string&, size_t)>& element)
{
    constexpr size_t kChunk = 500;   // long statements are slow to read and to look at
    for (size_t from = 0; from < count; from += kChunk)
    {
        const size_t to = std::min(count, from + kChunk);
        out += "\tsetAttr";
        if (from == 0)
            out += " -s " + std::to_string(count);
        out += " \"." + name + "[" + std::to_string(from) + (to - from > 1 ? ":" + std::to_string(to - 1) : "") + "]\"" + type;
        for (size_t i = from; i < to; ++i)
        {
            if (i > from && (i - from) % perLine == 0)
                out += "\n\t\t";
            else
                out += ' ';
            element(out, i);
        }
        out += ";\n";
    }
}

std::string quoted(const std::string& s)
{
    std::string out = "\"";
    for (char c : s)
        out += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return out + "\"";
}

}  // namespace

bool setMeshAttribute(const std::string& plug, Arguments& args)
{
    const size_t dot = plug.find('.');
    if (dot == std::string::npos || args.done())
        return false;
    const std::string path = plug.substr(dot + 1), root = path.substr(0, path.find_first_of("[."));
    constexpr const char* kRoots[] = {"vt", "vrts", "ed", "edge", "fc", "face", "n", "normals", "uvst", "uvSet", "clst", "colorSet",
                                      "cuvs", "currentUVSet", "ccls", "currentColorSet", "dcc", "cvd", "cd", "cdg"};
    if (std::none_of(std::begin(kRoots), std::end(kRoots), [&](const char* r) { return root == r; }))
        return false;
    const bool indexed = path.find('[') != std::string::npos;
    std::string nodeText = plug.substr(0, dot);
    Node* node = nullptr;
    if (nodeText.empty())
        node = selection::get().empty() ? nullptr : command::nodeOf(selection::get().front());
    else
        node = &command::oneNode(nodeText);
    if (!node || !dynamic_cast<MeshSource*>(node))
        return false;
    Parts&      p = partsOf(*node);
    std::string name;
    int         first = 0, last = -1;
    if (root == "uvst" || root == "uvSet" || root == "clst" || root == "colorSet")
        return readSet(p, path, args);
    if (root == "cuvs" || root == "currentUVSet")
        return p.currentUv = args.text(), true;
    if (root == "ccls" || root == "currentColorSet")
        return p.currentColor = args.text(), true;
    if (root == "cvd" || root == "cd" || root == "cdg")   // creases, which do not show on polygons
    {
        while (!args.done())
            args.next();
        return true;
    }
    if (root == "dcc" || !indexed || !readRange(path, name, first, last))
        return false;
    if (root == "vt" || root == "vrts")
        readFloats(p.points, first, last, 3, args);
    else if (root == "n" || root == "normals")
        readFloats(p.normals, first, last, 3, args);
    else if (root == "ed" || root == "edge")
        readEdges(p, first, last, args);
    else
        readFaces(p, args);
    return true;
}

void finishMeshes(bool drop)
{
    std::vector<Parts> all;
    std::swap(all, pending());
    if (drop)
        return;
    for (const Parts& p : all)
        if (p.shape->inScene && !(p.points.empty() && p.counts.empty()))
            try
            {
                build(p);
            }
            catch (const command::Error& e)
            {
                fail("Mesh '" + p.shape->name + "': " + e.what());
            }
}

std::string meshStatements(const MeshBody& mesh)
{
    using command::floatText;
    const Topology&  t = mesh.topology();
    const EdgeTable& edges = t.edges();
    const UVSets&    uvs = mesh.uvSets();
    const ColorSets& colors = mesh.colorSets();
    std::string      out;
    for (size_t s = 0; s < uvs.sets.size(); ++s)
    {
        const std::string set = "uvst[" + std::to_string(s) + "]";
        out += "\tsetAttr \"." + set + ".uvsn\" -type \"string\" " + quoted(uvs.sets[s].name) + ";\n";
        const Buffer<F2>& table = *uvs.sets[s].uvs;
        appendChunks(out, set + ".uvsp", " -type \"float2\"", table.size(), 8,
                     [&](std::string& o, size_t i) { o += floatText(table[i].u) + " " + floatText(table[i].v); });
    }
    out += "\tsetAttr \".cuvs\" -type \"string\" " + quoted(uvs.sets[size_t(uvs.current)].name) + ";\n";
    if (colors.current >= 0)
        out += "\tsetAttr \".ccls\" -type \"string\" " + quoted(colors.sets[size_t(colors.current)].name) + ";\n";
    for (size_t s = 0; s < colors.sets.size(); ++s)
    {
        const ColorSet&   c = colors.sets[s];
        const std::string set = "clst[" + std::to_string(s) + "]";
        out += "\tsetAttr \"." + set + ".clsn\" -type \"string\" " + quoted(c.name) + ";\n";
        if (c.representation != 4)
            out += "\tsetAttr \"." + set + ".rprt\" " + std::to_string(c.representation) + ";\n";
        if (c.clamped)
            out += "\tsetAttr \"." + set + ".clam\" yes;\n";
        const Buffer<MColor>& table = *c.table;
        appendChunks(out, set + ".clsp", "", table.size(), 4, [&](std::string& o, size_t i) {
            o += floatText(table[i].r) + " " + floatText(table[i].g) + " " + floatText(table[i].b) + " " + floatText(table[i].a);
        });
    }
    appendChunks(out, "vt", "", size_t(mesh.vertexCount()), 4, [&](std::string& o, size_t i) {
        const float* p = mesh.points() + i * 3;
        o += floatText(p[0]) + " " + floatText(p[1]) + " " + floatText(p[2]);
    });
    appendChunks(out, "ed", "", size_t(edges.count()), 12, [&](std::string& o, size_t i) {
        o += std::to_string(edges.edges[i].a) + " " + std::to_string(edges.edges[i].b) + (mesh.edgeSmooth(int(i)) ? " 1" : " 0");
    });
    bool anyLocked = false;
    for (int i = 0; i < t.cornerCount() && mesh.locked(); ++i)
        anyLocked |= mesh.normalLocked(i);
    if (anyLocked)
        appendChunks(out, "n", " -type \"float3\"", size_t(t.cornerCount()), 4, [&](std::string& o, size_t i) {
            const F3 n = mesh.normalLocked(int(i)) ? mesh.cornerNormals().at(int(i)) : F3{{kUnlocked, kUnlocked, kUnlocked}};
            o += floatText(n.v[0]) + " " + floatText(n.v[1]) + " " + floatText(n.v[2]);
        });
    appendChunks(out, "fc", " -type \"polyFaces\"", size_t(t.faceCount()), 1, [&](std::string& o, size_t f) {
        const int begin = t.first(int(f)), end = t.first(int(f) + 1), size = end - begin;
        o += "f " + std::to_string(size);
        for (int c = begin; c < end; ++c)
        {
            const int e = edges.ofCorner[size_t(c)];
            o += " " + std::to_string(edges.edges[size_t(e)].a == t.connects()[size_t(c)] ? e : -e - 1);
        }
        for (size_t s = 0; s < uvs.sets.size(); ++s)
            if (uvs.sets[s].ids)
            {
                o += " mu " + std::to_string(s) + " " + std::to_string(size);
                for (int c = begin; c < end; ++c)
                    o += " " + std::to_string(uvs.sets[s].id(c));
            }
        for (size_t s = 0; s < colors.sets.size(); ++s)
        {
            o += " mc " + std::to_string(s) + " " + std::to_string(size);
            for (int c = begin; c < end; ++c)
                o += " " + std::to_string(colors.sets[s].id(t, c));
        }
    });
    return out;
}

}  // namespace mirk::io
