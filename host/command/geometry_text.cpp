// Geometry as argument lists and back.
#include "command/geometry_text.h"

#include <charconv>
#include <cmath>

#include <maya/MPoint.h>

#include "mesh/mesh.h"
#include "nurbs/nurbs_data.h"

namespace mirk::command {

namespace {

template <class T>
std::string shortest(T value)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    char text[48];
    const auto r = std::to_chars(text, text + sizeof text, value);
    return std::string(text, r.ptr);
}

struct EdgeList
{
    std::vector<int>  a, b;
    std::vector<bool> smooth;
};

EdgeList readEdges(Arguments& args, int vertexCount)
{
    EdgeList  e;
    const int count = args.integer();
    for (int i = 0; i < count; ++i)
    {
        e.a.push_back(args.integer());
        e.b.push_back(args.integer());
        if (e.a.back() < 0 || e.b.back() < 0 || e.a.back() >= vertexCount || e.b.back() >= vertexCount)
            fail("Edge " + std::to_string(i) + " names a vertex that does not exist");
        if (args.nextIs("smooth") || args.nextIs("hard"))
            e.smooth.push_back(args.text() == "smooth");
        else
            e.smooth.push_back(args.boolean());
    }
    return e;
}

/// Vertices of a face from its edges, which run head to tail in either direction; negative ids are reversed edges.
std::vector<int> walkFace(const EdgeList& edges, const std::vector<int>& ids, int face)
{
    const auto id = [](int e) { return e < 0 ? -e - 1 : e; };
    for (int e : ids)
        if (size_t(id(e)) >= edges.a.size())
            fail("Face " + std::to_string(face) + " names an edge that does not exist");
    std::vector<int> out;
    for (size_t i = 0; i < ids.size(); ++i)
    {
        const int  e = id(ids[i]), next = id(ids[(i + 1) % ids.size()]);
        const bool shared = edges.b[e] == edges.a[next] || edges.b[e] == edges.b[next];
        const bool reversed = ids[i] < 0 || !shared;
        out.push_back(reversed ? edges.b[e] : edges.a[e]);
    }
    return out;
}

struct MeshParts
{
    Ref<Buffer<float>> points = make<Buffer<float>>();
    EdgeList           edges;
    std::vector<int>   counts, connects, uvIds;
    std::vector<F2>    uvs;
    std::vector<F3>    normals;
    bool               anyUv = false;
};

void readFace(MeshParts& p, Arguments& args)
{
    const int size = args.integer();
    if (size < 3)
        fail("Face " + std::to_string(p.counts.size()) + " has less than three edges");
    std::vector<int> ids;
    for (int i = 0; i < size; ++i)
        ids.push_back(args.integer());
    const std::vector<int> vertices = walkFace(p.edges, ids, int(p.counts.size()));
    p.counts.push_back(size);
    p.connects.insert(p.connects.end(), vertices.begin(), vertices.end());
    p.uvIds.resize(p.connects.size(), -1);
    while (args.nextIs("l"))
        fail("Face " + std::to_string(p.counts.size() - 1) + " has a hole, which meshes here cannot have");
    if (args.nextIs("lt"))
    {
        args.text();
        const int count = args.integer();
        for (int i = 0; i < count; ++i)
        {
            const int uv = args.integer();
            if (i < size)
                p.uvIds[p.connects.size() - size_t(size) + size_t(i)] = uv;
        }
        p.anyUv = true;
    }
}

void setEdges(MeshBody& mesh, const EdgeList& edges)
{
    for (size_t i = 0; i < edges.a.size(); ++i)
        if (!edges.smooth[i])
            if (const int e = mesh.topology().edgeBetween(edges.a[i], edges.b[i]); e >= 0)
                mesh.setEdgeSmooth(e, false);
}

}  // namespace

std::string floatText(float value) { return shortest(value); }
std::string doubleText(double value) { return shortest(value); }

Ref<Data> meshFromArguments(Arguments& args)
{
    MeshParts p;
    while (!args.done())
    {
        const std::string part = args.text();
        if (part == "v")
            for (double d : args.counted(3))
                p.points->push(float(d));
        else if (part == "vn")
        {
            const std::vector<double> n = args.counted(3);
            for (size_t i = 0; i < n.size(); i += 3)
                p.normals.push_back({{float(n[i]), float(n[i + 1]), float(n[i + 2])}});
        }
        else if (part == "vt")
        {
            const std::vector<double> n = args.counted(2);
            for (size_t i = 0; i < n.size(); i += 2)
                p.uvs.push_back({float(n[i]), float(n[i + 1])});
        }
        else if (part == "e")
            p.edges = readEdges(args, int(p.points->size() / 3));
        else if (part == "face")
            readFace(p, args);
        else if (!part.empty())
            fail("Error reading mesh data: '" + part + "' is no part of a mesh");
    }
    std::string why;
    const int   vertexCount = int(p.points->size() / 3);
    auto topology = Topology::create(vertexCount, p.counts.data(), p.counts.size(), p.connects.data(), p.connects.size(), &why);
    if (!topology)
        fail("Error reading mesh data: " + why);
    auto data = make<MeshData>();
    data->body->reset(p.points, topology);
    setEdges(*data->body, p.edges);
    if (!p.uvs.empty())
    {
        data->body->writeUVSet(0).uvs = make<Buffer<F2>>(p.uvs.data(), p.uvs.size());
        if (p.anyUv && !data->body->assignUVs(0, make<Buffer<int>>(p.uvIds.data(), p.uvIds.size())))
            fail("Error reading mesh data: a face names a UV that does not exist");
    }
    return data;
}

std::string meshText(const MeshBody& mesh)
{
    const Topology& t = mesh.topology();
    std::string     out = "\"v\" " + std::to_string(mesh.vertexCount());
    for (int i = 0; i < mesh.vertexCount() * 3; ++i)
        out += " " + floatText(mesh.points()[i]);
    const UVSet& uv = mesh.uvSets().sets[0];
    if (!uv.uvs->empty())
    {
        out += "\n\t\t\"vt\" " + std::to_string(uv.uvs->size());
        for (const F2& f : std::as_const(*uv.uvs))
            out += " " + floatText(f.u) + " " + floatText(f.v);
    }
    const EdgeTable& edges = t.edges();
    out += "\n\t\t\"e\" " + std::to_string(edges.count());
    for (int e = 0; e < edges.count(); ++e)
        out += " " + std::to_string(edges.edges[e].a) + " " + std::to_string(edges.edges[e].b) + (mesh.edgeSmooth(e) ? " \"smooth\"" : " \"hard\"");
    for (int f = 0; f < t.faceCount(); ++f)
    {
        out += "\n\t\t\"face\" " + std::to_string(t.faceSize(f));
        for (int c = t.first(f); c < t.first(f + 1); ++c)
        {
            const int e = edges.ofCorner[c];
            out += " " + std::to_string(edges.edges[e].a == t.connects()[c] ? e : -e - 1);
        }
        if (uv.ids)
        {
            out += " \"lt\" " + std::to_string(t.faceSize(f));
            for (int c = t.first(f); c < t.first(f + 1); ++c)
                out += " " + std::to_string(uv.id(c));
        }
    }
    return out;
}

namespace {

/// x y z [w] of CVs as files hold them: not multiplied by the weight.
std::vector<MPoint> readCvs(Arguments& args, bool rational)
{
    const size_t              width = rational ? 4 : 3;
    const std::vector<double> n = args.counted(width);
    std::vector<MPoint>           cvs(n.size() / width);
    for (size_t i = 0; i < cvs.size(); ++i)
    {
        const double w = rational ? n[i * 4 + 3] : 1;
        cvs[i] = MPoint(n[i * width] * w, n[i * width + 1] * w, n[i * width + 2] * w, w);
    }
    return cvs;
}

std::string cvTexts(const Buffer<MPoint>& cvs, bool rational)
{
    std::string out = std::to_string(cvs.size());
    for (const MPoint& c : cvs)
    {
        out += "\n\t\t";
        out += doubleText(c.x / c.w) + " " + doubleText(c.y / c.w) + " " + doubleText(c.z / c.w);
        if (rational)
            out += " " + doubleText(c.w);
    }
    return out;
}

std::string knotTexts(const Buffer<double>& knots)
{
    std::string out = std::to_string(knots.size());
    for (double k : knots)
        out += " " + doubleText(k);
    return out;
}

NurbsForm formFrom(int number)
{
    if (number < 0 || number > 2)
        fail("Invalid form: " + std::to_string(number));
    return NurbsForm(number + 1);   // files count from 0
}

}  // namespace

Ref<Data> curveFromArguments(Arguments& args)
{
    const int  degree = args.integer();
    args.integer();   // spans, which follow from the rest
    const NurbsForm form = formFrom(args.integer());
    const bool rational = args.boolean();
    const int  dimension = args.integer();
    const std::vector<double> knots = args.counted(1);
    std::vector<MPoint> cvs;
    if (dimension == 2)
    {
        const std::vector<double> n = args.counted(rational ? 3 : 2);
        for (size_t i = 0, w = rational ? 3 : 2; i < n.size(); i += w)
            {
            const double weight = rational ? n[i + 2] : 1;
            cvs.emplace_back(n[i] * weight, n[i + 1] * weight, 0, weight);
        }
    }
    else
        cvs = readCvs(args, rational);
    auto data = make<CurveData>();
    const std::string why = buildCurve(*data->body, cvs.data(), cvs.size(), knots.data(), knots.size(), degree, form, dimension == 2, rational);
    if (!why.empty())
        fail("Error reading curve data: " + why);
    return data;
}

std::string curveText(const CurveBody& c)
{
    std::string out = std::to_string(c.degree) + " " + std::to_string(c.cvCount() - c.degree) + " " + std::to_string(int(c.form) - 1) +
                      (c.rational ? " yes 3\n\t\t" : " no 3\n\t\t");
    return out + knotTexts(*c.knots) + "\n\t\t" + cvTexts(*c.cvs, c.rational);
}

Ref<Data> surfaceFromArguments(Arguments& args)
{
    const int       degreeU = args.integer(), degreeV = args.integer();
    const NurbsForm formU = formFrom(args.integer()), formV = formFrom(args.integer());
    const bool      rational = args.boolean();
    const std::vector<double> knotsU = args.counted(1), knotsV = args.counted(1);
    if (args.nextIs("TRIM"))
        fail("Trimmed surfaces cannot be read");
    if (args.nextIs("NOTRIM") || args.nextIs("NO TRIM"))
        args.text();
    const std::vector<MPoint> cvs = readCvs(args, rational);
    auto data = make<SurfaceData>();
    const std::string why = buildSurface(*data->body, cvs.data(), cvs.size(), knotsU.data(), knotsU.size(), knotsV.data(), knotsV.size(),
                                         degreeU, degreeV, formU, formV, rational);
    if (!why.empty())
        fail("Error reading surface data: " + why);
    return data;
}

std::string surfaceText(const SurfaceBody& s)
{
    std::string out = std::to_string(s.degreeU) + " " + std::to_string(s.degreeV) + " " + std::to_string(int(s.formU) - 1) + " " +
                      std::to_string(int(s.formV) - 1) + (s.rational ? " yes\n\t\t" : " no\n\t\t");
    return out + knotTexts(*s.knotsU) + "\n\t\t" + knotTexts(*s.knotsV) + "\n\t\t" + cvTexts(*s.cvs, s.rational);
}

}  // namespace mirk::command
