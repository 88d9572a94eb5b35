// Polygon objects: colours, normals, edges, UVs and their sets; counts and connectivity.
#include <map>

#include <maya/MAngle.h>

#include "command/cmd_util.h"
#include "command/poly_history.h"
#include "command/shape_edit.h"
#include "data/component.h"
#include "graph/evaluate.h"
#include "nodes/poly_edit.h"

namespace mirk::command {

using namespace nodes;

namespace {

constexpr uint8_t kBoth = kCreate | kQuery;
constexpr uint8_t kAll = kCreate | kQuery | kEdit;

using Target = PolyTarget;

std::vector<Target> targets(const Call& call) { return polyTargets(call); }

/// As a node if the shape has history or `history` asks for it, whose name is returned; else in the stored mesh.
std::string apply(const Target& target, const PolyEdit& edit, const PolyParameters& p, bool history = false, const std::string& name = {})
{
    if (!history && !hasHistory(*target.shape))
    {
        editMesh(*target.shape, [&](MeshBody& mesh) { edit.apply(mesh, target.components.get(), p); });
        return {};
    }
    return nodeName(insertModifier(target, edit.type, name, [&](Node& node) {
        for (size_t i = 0; i < edit.numbers.size(); ++i)
            edit::setNumber(*node.cell(node.findAttribute(edit.numbers[i].longName)), p.number[i]);
        for (size_t i = 0; i < edit.texts.size(); ++i)
            edit::setData(*node.cell(node.findAttribute(edit.texts[i].longName)), make<StringData>(p.text[i]));
    }));
}

Value applyToAll(const Call& call, const PolyEdit& edit, const PolyParameters& p)
{
    Strings made;
    for (const Target& t : targets(call))
        if (std::string name = apply(t, edit, p, call.boolean("constructionHistory"), call.str("name")); !name.empty())
            made.push_back(name);
    return made.empty() ? Value() : Value(made);
}

constexpr Flag kSoftEdge[] = {{"a", "angle", "a", kAll}, {"ch", "constructionHistory", "b", kAll}, {"n", "name", "s"}, {"nds", "nodeState", "i"}, {"ws", "worldSpace", "b"}, {"cch", "caching", "b"}};

Value softEdge(Call& call)
{
    PolyParameters p;
    p.number[kAngle] = MAngle(call.num("angle", 30), call.has("angle") ? MAngle::uiUnit() : MAngle::kDegrees).as(MAngle::kRadians);
    return applyToAll(call, softEdgeEdit(), p);
}

constexpr Flag kColorPerVertex[] = {
    {"r", "colorR", "f", kBoth}, {"g", "colorG", "f", kBoth}, {"b", "colorB", "f", kBoth}, {"a", "alpha", "f", kBoth}, {"rgb", "colorRGB", "fff", kBoth},
    {"cdo", "colorDisplayOption", "", kBoth}, {"cla", "clamp", "b"}, {"rel", "relative"}, {"rem", "remove"}, {"nun", "notUndoable"}, {"ch", "constructionHistory", "b"},
    {"n", "name", "s"}, {"nds", "nodeState", "i"}, {"cch", "caching", "b"},
};

Value queryColors(Call& call)
{
    std::vector<double> out;
    for (const Target& t : targets(call))
    {
        const Ref<MeshData> mesh = readMesh(*t.shape);
        const MeshBody&     body = *mesh->body;
        const int           set = body.colorSets().current;
        if (set < 0)
            fail("'" + nodeName(*t.shape) + "' has no colour set");
        const auto add = [&](const MColor& c) {
            const float channel[] = {c.r, c.g, c.b, c.a};
            const char* flags[] = {"colorR", "colorG", "colorB", "alpha"};
            for (int k = 0; k < 4; ++k)
                if (call.has(flags[k]) || (k < 3 && call.has("colorRGB")))
                    out.push_back(channel[k]);
        };
        const ColorSet& colors = body.colorSets().sets[size_t(set)];
        if (!t.components)
            for (int v = 0; v < body.vertexCount(); ++v)
                add(colors.ofVertices(body.topology())[size_t(v)]);
        else
            for (const auto& c : t.components->list)
                for (int i : elementsOf(body, *c))
                    if (c->apiType() == MFn::kMeshVertComponent)
                        add(colors.ofVertices(body.topology())[size_t(i)]);
                    else if (c->apiType() == MFn::kMeshPolygonComponent)
                        for (int corner = body.topology().first(i); corner < body.topology().first(i + 1); ++corner)
                            add(colors.ofCorner(body.topology(), corner));
    }
    return Value(out);
}

Value colorPerVertex(Call& call)
{
    if (call.isQuery())
        return queryColors(call);
    PolyParameters p;
    int            given = 0;
    const char*    flags[] = {"colorR", "colorG", "colorB", "alpha"};
    p.number[kColorA] = 1;
    for (int k = 0; k < 4; ++k)
        if (call.has(flags[k]))
        {
            p.number[k] = call.num(flags[k]);
            given |= 1 << k;
        }
    if (const auto* use = call.use("colorRGB"))
        for (int k = 0; k < 3; ++k)
        {
            p.number[k] = use->args[size_t(k)].asFloat();
            given |= 1 << k;
        }
    const bool remove = call.has("remove");
    p.number[kChannels] = given == 7 && !call.has("relative") ? 15 : given;
    p.number[kRelativeColor] = call.has("relative");
    p.number[kRemoveColor] = remove;
    Value out;
    if (given || remove)
        out = applyToAll(call, colorEdit(), p);
    else if (!call.has("colorDisplayOption"))
        fail("polyColorPerVertex: a colour has to be given");
    if (call.has("colorDisplayOption"))
        for (const Target& t : targets(call))
            edit::setNumber(onePlug(nodeName(*t.shape) + ".displayColors"), 1);
    return out;
}

constexpr Flag kNormalPerVertex[] = {
    {"x", "normalX", "f", kBoth}, {"y", "normalY", "f", kBoth}, {"z", "normalZ", "f", kBoth}, {"xyz", "normalXYZ", "fff", kBoth}, {"fn", "freezeNormal", "b", kBoth},
    {"ufn", "unFreezeNormal", "b"}, {"al", "allLocked", "", kQuery}, {"rel", "relative"}, {"d", "deformable"}, {"ch", "constructionHistory", "b"}, {"n", "name", "s"},
    {"nds", "nodeState", "i"}, {"cch", "caching", "b"},
};

Value queryNormals(Call& call)
{
    std::vector<double> out;
    Ints                locked;
    for (const Target& t : targets(call))
    {
        const Ref<MeshData> mesh = readMesh(*t.shape);
        const MeshBody&     body = *mesh->body;
        const Topology&     topology = body.topology();
        const auto vertex = [&](int v) {
            for (int corner : topology.vertexCorners()[v])
            {
                const auto& n = body.cornerNormals().at(corner);
                const char* flags[] = {"normalX", "normalY", "normalZ"};
                for (int k = 0; k < 3; ++k)
                    if (call.has(flags[k]) || call.has("normalXYZ"))
                        out.push_back(n.v[k]);
                locked.push_back(body.normalLocked(corner));
            }
        };
        if (!t.components)
            for (int v = 0; v < body.vertexCount(); ++v)
                vertex(v);
        else
            for (int v : pointIndices(*t.shape, *t.components->list.front()))
                vertex(v);
    }
    if (call.has("allLocked"))
        return call.truth = true, Value(std::all_of(locked.begin(), locked.end(), [](int l) { return l != 0; }));
    return call.has("freezeNormal") ? Value(locked) : Value(out);
}

Value normalPerVertex(Call& call)
{
    if (call.isQuery())
        return queryNormals(call);
    PolyParameters p;
    const char*    flags[] = {"normalX", "normalY", "normalZ"};
    bool           any = false;
    for (int k = 0; k < 3; ++k)
    {
        any |= call.has(flags[k]);
        p.number[kNormalX + k] = call.num(flags[k]);
    }
    if (const auto* use = call.use("normalXYZ"))
    {
        any = true;
        for (int k = 0; k < 3; ++k)
            p.number[kNormalX + k] = use->args[size_t(k)].asFloat();
    }
    p.number[kNormalMode] = any ? 0 : call.boolean("unFreezeNormal") ? 2 : 1;
    p.number[kRelativeNormal] = call.has("relative");
    if (!any && !call.has("freezeNormal") && !call.has("unFreezeNormal"))
        fail("polyNormalPerVertex: a normal has to be given");
    return applyToAll(call, normalEdit(), p);
}

constexpr Flag kEditUV[] = {
    {"u", "uValue", "f", kBoth}, {"v", "vValue", "f", kBoth}, {"r", "relative", "b"}, {"pu", "pivotU", "f"}, {"pv", "pivotV", "f"}, {"su", "scaleU", "f"}, {"sv", "scaleV", "f"},
    {"a", "angle", "f"}, {"s", "scale", "b"}, {"rot", "rotation", "b"}, {"uvs", "uvSetName", "s", kBoth}, {"ch", "constructionHistory", "b"},
};

Value editUV(Call& call)
{
    if (call.isQuery())
    {
        std::vector<double> out;
        for (const Target& t : targets(call))
        {
            const Ref<MeshData> mesh = readMesh(*t.shape);
            const UVSet&        set = mesh->body->uvSets().sets[size_t(mesh->body->uvSets().current)];
            const auto add = [&](int i) {
                if (!call.has("vValue") || call.has("uValue"))
                    out.push_back((*set.uvs)[size_t(i)].u);
                if (!call.has("uValue") || call.has("vValue"))
                    out.push_back((*set.uvs)[size_t(i)].v);
            };
            for (size_t c = 0; t.components && c < t.components->list.size(); ++c)
                if (t.components->list[c]->apiType() == MFn::kMeshMapComponent)
                    for (int i : elementsOf(*mesh->body, *t.components->list[c]))
                        add(i);
            for (size_t i = 0; !t.components && i < set.uvs->size(); ++i)
                add(int(i));
        }
        return Value(out);
    }
    PolyParameters p;
    p.number[kU] = call.num("uValue");
    p.number[kV] = call.num("vValue");
    p.number[kRelativeUV] = call.boolean("relative", true);
    p.number[kPivotU] = call.num("pivotU");
    p.number[kPivotV] = call.num("pivotV");
    p.number[kScaleU] = call.num("scaleU", 1);
    p.number[kScaleV] = call.num("scaleV", 1);
    p.number[kAngleUV] = MAngle(call.num("angle"), MAngle::kDegrees).as(MAngle::kRadians);
    p.text[0] = call.str("uvSetName");
    return applyToAll(call, uvEdit(), p);
}

constexpr Flag kColorSet[] = {
    {"cr", "create"}, {"d", "delete"}, {"rn", "rename"}, {"cp", "copy"}, {"cs", "colorSet", "s", kBoth}, {"nc", "newColorSet", "s"}, {"ccs", "currentColorSet", "", kBoth},
    {"acs", "allColorSets", "", kBoth}, {"rpt", "representation", "s", kBoth}, {"cla", "clamped", "b", kBoth}, {"uns", "unshared", "b"}, {"spi", "sharedInstances", "b"},
};
constexpr Flag kUVSetFlags[] = {
    {"cr", "create"}, {"d", "delete"}, {"rn", "rename"}, {"cp", "copy"}, {"uvs", "uvSet", "s", kBoth}, {"nuv", "newUVSet", "s"}, {"cuv", "currentUVSet", "", kBoth},
    {"auv", "allUVSets", "", kBoth}, {"ch", "constructionHistory", "b"}, {"uns", "unshared", "b"}, {"luv", "currentLastUVSet", "b"},
};

template <class Sets>
Value setNames(const Call& call, const Sets& sets, const char* all)
{
    Strings out;
    if (call.has(all))
        for (const auto& s : sets.sets)
            out.push_back(s.name);
    else if (sets.current >= 0)
        out.push_back(sets.sets[size_t(sets.current)].name);
    return out.empty() ? Value() : Value(out);
}

/// Names that have to be there or must not, checked before anything changes.
void checkSet(bool wantedThere, int found, const std::string& kind, const std::string& name, const Node& shape)
{
    if (wantedThere && found < 0)
        fail("There is no " + kind + " set '" + name + "' on '" + nodeName(shape) + "'");
    if (!wantedThere && found >= 0)
        fail("There is a " + kind + " set '" + name + "' on '" + nodeName(shape) + "' already");
}

Value colorSet(Call& call)
{
    const std::vector<Target> all = targets(call);
    const MeshBody& first = *readMesh(*all[0].shape)->body;
    if (call.isQuery())
    {
        if (call.has("allColorSets") || call.has("currentColorSet"))
            return setNames(call, first.colorSets(), "allColorSets");
        const int at = call.has("colorSet") && !call.str("colorSet").empty() ? first.findColorSet(call.str("colorSet")) : first.colorSets().current;
        checkSet(true, at, "colour", call.str("colorSet"), *all[0].shape);
        const ColorSet& s = first.colorSets().sets[size_t(at)];
        if (call.has("clamped"))
            return call.truth = true, Value(s.clamped);
        return Value(s.representation == 1 ? "A" : s.representation == 3 ? "RGB" : "RGBA");
    }
    PolyParameters p;
    p.text[0] = call.str("colorSet");
    p.text[1] = call.str("newColorSet");
    p.number[kSetClamped] = call.boolean("clamped");
    const std::string rpt = call.str("representation", "RGBA");
    if (rpt != "A" && rpt != "RGB" && rpt != "RGBA")
        fail("polyColorSet: unknown representation '" + rpt + "'");
    p.number[kSetRepresentation] = rpt == "A" ? 1 : rpt == "RGB" ? 3 : 4;
    p.number[kSetOperation] = call.has("create") ? kCreateColorSet : call.has("delete") ? kDeleteColorSet : call.has("rename") ? kRenameColorSet
                              : call.has("copy") ? kCopyColorSet : kCurrentColorSet;
    Strings made;
    for (const Target& t : all)
    {
        const MeshBody& body = *readMesh(*t.shape)->body;
        if (!p.text[0].empty() && !call.has("create"))
            checkSet(true, body.findColorSet(p.text[0]), "colour", p.text[0], *t.shape);
        const size_t before = body.colorSets().sets.size();
        apply(t, setEdit(), p);
        const ColorSets& after = readMesh(*t.shape)->body->colorSets();
        for (size_t i = before; i < after.sets.size(); ++i)
            made.push_back(after.sets[i].name);
    }
    return made.empty() ? Value() : Value(made);
}

Value uvSet(Call& call)
{
    const std::vector<Target> all = targets(call);
    if (call.isQuery())
        return setNames(call, readMesh(*all[0].shape)->body->uvSets(), "allUVSets");
    PolyParameters p;
    p.text[0] = call.str("uvSet");
    p.text[1] = call.str("newUVSet");
    p.number[kSetOperation] = call.has("create") ? kCreateUVSet : call.has("delete") ? kDeleteUVSet : call.has("rename") ? kRenameUVSet
                              : call.has("copy") ? kCopyUVSet : kCurrentUVSet;
    Strings made;
    for (const Target& t : all)
    {
        const MeshBody& body = *readMesh(*t.shape)->body;
        if (!p.text[0].empty())
            checkSet(!call.has("create"), body.findUVSet(p.text[0]), "UV", p.text[0], *t.shape);
        if (call.has("delete") && (p.text[0].empty() ? body.uvSets().current : body.findUVSet(p.text[0])) == 0)
            fail("The first UV set of '" + nodeName(*t.shape) + "' cannot be deleted");
        const size_t before = body.uvSets().sets.size();
        apply(t, setEdit(), p);
        const UVSets& after = readMesh(*t.shape)->body->uvSets();
        for (size_t i = before; i < after.sets.size(); ++i)
            made.push_back(after.sets[i].name);
    }
    return made.empty() ? Value() : Value(made);
}

constexpr Flag kEvaluate[] = {
    {"v", "vertex"}, {"e", "edge"}, {"f", "face"}, {"uv", "uvcoord"}, {"t", "triangle"}, {"s", "shell"}, {"a", "area"}, {"wa", "worldArea"}, {"b", "boundingBox"},
    {"vc", "vertexComponent"}, {"ec", "edgeComponent"}, {"fc", "faceComponent"}, {"uvc", "uvComponent"}, {"uvs", "uvSetName", "s"}, {"ae", "accurateEvaluation"}, {"fmt", "format"},
    {"uve", "uvSets"},
};

double areaOf(const MeshBody& mesh, const double (*m)[4])
{
    double sum = 0;
    const Buffer<int>& triangles = mesh.triangles();
    const auto point = [&](int corner, double out[3]) {
        const float* p = mesh.points() + 3 * mesh.topology().connects()[size_t(corner)];
        for (int k = 0; k < 3; ++k)
            out[k] = m ? p[0] * m[0][k] + p[1] * m[1][k] + p[2] * m[2][k] : double(p[k]);
    };
    for (size_t i = 0; i + 2 < triangles.size(); i += 3)
    {
        double a[3], b[3], c[3];
        point(triangles[i], a), point(triangles[i + 1], b), point(triangles[i + 2], c);
        const double u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]}, v[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const double x = u[1] * v[2] - u[2] * v[1], y = u[2] * v[0] - u[0] * v[2], z = u[0] * v[1] - u[1] * v[0];
        sum += 0.5 * std::sqrt(x * x + y * y + z * z);
    }
    return sum;
}

Value evaluate(Call& call)
{
    const std::vector<Target> all = targets(call);
    const auto components = [&](MFn::Type type) {
        int n = 0;
        for (const Target& t : all)
            if (t.components)
            {
                const Ref<MeshData> mesh = readMesh(*t.shape);
                for (const auto& c : t.components->list)
                    if (c->apiType() == type)
                        n += int(elementsOf(*mesh->body, *c).size());
            }
        return n;
    };
    int vertices = 0, edges = 0, faces = 0, uvs = 0, triangles = 0, shells = 0;
    double area = 0, worldArea = 0, box[6] = {};
    for (const Target& t : all)
    {
        const Ref<MeshData> mesh = readMesh(*t.shape);
        const MeshBody&     body = *mesh->body;
        vertices += body.vertexCount(), edges += body.edgeCount(), faces += body.faceCount();
        const int set = call.has("uvSetName") ? body.findUVSet(call.str("uvSetName")) : body.uvSets().current;
        checkSet(true, set, "UV", call.str("uvSetName"), *t.shape);
        uvs += int(body.uvSets().sets[size_t(set)].uvs->size());
        triangles += body.cornerCount() - 2 * body.faceCount();
        if (call.has("shell") || call.uses.empty())
            shells += body.topology().shells().count();
        if (call.has("area") || call.has("worldArea"))
        {
            double m[4][4];
            dag::inclusiveMatrix(dag::firstPath(*t.shape), m);
            area += areaOf(body, nullptr), worldArea += areaOf(body, m);
        }
        float b[6];
        body.bounds(b);
        std::copy(b, b + 6, box);
    }
    const struct { const char* flag; int value; } counts[] = {
        {"vertex", vertices}, {"edge", edges}, {"face", faces}, {"uvcoord", uvs}, {"triangle", triangles}, {"shell", shells}};
    Ints out;
    for (const auto& c : counts)
        if (call.has(c.flag))
            out.push_back(c.value), call.keys.push_back(c.flag);
    if (out.size() == 1)
        return Value(out[0]);
    if (!out.empty())
        return Value(out);
    const struct { const char* flag; MFn::Type type; } selected[] = {
        {"vertexComponent", MFn::kMeshVertComponent}, {"edgeComponent", MFn::kMeshEdgeComponent}, {"faceComponent", MFn::kMeshPolygonComponent}, {"uvComponent", MFn::kMeshMapComponent}};
    for (const auto& s : selected)
        if (call.has(s.flag))
            return Value(components(s.type));
    if (call.has("area"))
        return Value(area);
    if (call.has("worldArea"))
        return Value(worldArea);
    if (call.has("boundingBox"))
        return Value(std::vector<double>{box[0], box[3], box[1], box[4], box[2], box[5]});
    for (const auto& c : counts)
        call.keys.push_back(c.flag);
    return Value(Ints{vertices, edges, faces, uvs, triangles, shells});
}

constexpr Flag kInfo[] = {
    {"fv", "faceToVertex"}, {"fe", "faceToEdge"}, {"ev", "edgeToVertex"}, {"ef", "edgeToFace"}, {"ve", "vertexToEdge"}, {"vf", "vertexToFace"}, {"fn", "faceNormals"},
    {"nme", "nonManifoldEdges"}, {"nmv", "nonManifoldVertices"}, {"lf", "laminaFaces"},
};

/// "VERTEX      0:      1      2 \n": the layout scripts take apart.
template <class Range>
std::string line(const char* kind, int index, const Range& values)
{
    char text[64];
    std::snprintf(text, sizeof text, "%s %6d:", kind, index);
    std::string out = text;
    for (int v : values)
    {
        std::snprintf(text, sizeof text, " %6d", v);
        out += text;
    }
    return out + " \n";
}

void infoOf(const Call& call, const Target& t, Strings& out)
{
    const Ref<MeshData> mesh = readMesh(*t.shape);
    const MeshBody&     body = *mesh->body;
    const Topology&     topology = body.topology();
    const auto each = [&](MFn::Type type, int count, const std::function<void(int)>& visit) {
        if (!t.components)
            for (int i = 0; i < count; ++i)
                visit(i);
        for (size_t c = 0; t.components && c < t.components->list.size(); ++c)
            if (t.components->list[c]->apiType() == type)
                for (int i : elementsOf(body, *t.components->list[c]))
                    visit(i);
    };
    const auto facesOf = [&](std::span<const int> cornerList) {
        std::vector<int> faces;
        for (int c : cornerList)
            faces.push_back(topology.cornerFaces()[size_t(c)]);
        return faces;
    };
    if (call.has("faceToVertex"))
        each(MFn::kMeshPolygonComponent, body.faceCount(), [&](int f) { out.push_back(line("FACE ", f, topology.face(f))); });
    if (call.has("faceToEdge"))
        each(MFn::kMeshPolygonComponent, body.faceCount(), [&](int f) {
            std::vector<int> edges;
            for (int c = topology.first(f); c < topology.first(f + 1); ++c)
                edges.push_back(topology.edges().ofCorner[size_t(c)]);
            out.push_back(line("FACE ", f, edges));
        });
    if (call.has("edgeToVertex"))
        each(MFn::kMeshEdgeComponent, body.edgeCount(), [&](int e) {
            const int ends[] = {topology.edges().edges[size_t(e)].a, topology.edges().edges[size_t(e)].b};
            std::string text = line("EDGE ", e, std::span<const int>(ends));
            text.insert(text.size() - 1, body.edgeSmooth(e) ? " Smooth" : " Hard");
            out.push_back(text);
        });
    if (call.has("edgeToFace"))
        each(MFn::kMeshEdgeComponent, body.edgeCount(), [&](int e) { out.push_back(line("EDGE ", e, facesOf(topology.edgeCorners()[e]))); });
    if (call.has("vertexToEdge"))
        each(MFn::kMeshVertComponent, body.vertexCount(), [&](int v) { out.push_back(line("VERTEX ", v, topology.vertexEdges()[v])); });
    if (call.has("vertexToFace"))
        each(MFn::kMeshVertComponent, body.vertexCount(), [&](int v) { out.push_back(line("VERTEX ", v, facesOf(topology.vertexCorners()[v]))); });
    if (call.has("faceNormals"))
        each(MFn::kMeshPolygonComponent, body.faceCount(), [&](int f) {
            const auto& n = body.faceNormals()[size_t(f)];
            char text[128];
            std::snprintf(text, sizeof text, "FACE_NORMAL %6d: %f %f %f\n", f, double(n.v[0]), double(n.v[1]), double(n.v[2]));
            out.push_back(text);
        });
    if (call.has("nonManifoldEdges"))
        for (int e = 0; e < body.edgeCount(); ++e)
            if (topology.edgeCorners()[e].size() > 2)
                out.push_back(nodeName(*t.shape) + ".e[" + std::to_string(e) + "]");
}

Value info(Call& call)
{
    if (call.uses.empty())
        fail("polyInfo: a flag that says what to ask has to be given");
    Strings out;
    for (const Target& t : targets(call))
        infoOf(call, t, out);
    return out.empty() ? Value() : Value(out);
}

const Command kCommands[] = {
    {"polySoftEdge", kSoftEdge, softEdge},
    {"polyColorPerVertex", kColorPerVertex, colorPerVertex},
    {"polyNormalPerVertex", kNormalPerVertex, normalPerVertex},
    {"polyEditUV", kEditUV, editUV},
    {"polyColorSet", kColorSet, colorSet},
    {"polyUVSet", kUVSetFlags, uvSet},
    {"polyEvaluate", kEvaluate, evaluate, false},
    {"polyInfo", kInfo, info, false},
};

}  // namespace

void registerMeshEditCommands() { add(kCommands); }

}  // namespace mirk::command
