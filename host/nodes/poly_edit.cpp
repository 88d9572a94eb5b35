#include "nodes/poly_edit.h"

#include <cmath>
#include <set>

#include "mesh/elements.h"

namespace mirk::nodes {

namespace {

bool wholeVertices(const ComponentListData* list)
{
    for (size_t i = 0; list && i < list->list.size(); ++i)
        if (list->list[i]->apiType() != MFn::kMeshVertComponent)
            return false;
    return true;
}

std::vector<int> verticesOf(const MeshBody& mesh, const std::vector<int>& cornerList)
{
    ElementSet out(mesh.vertexCount());
    for (int c : cornerList)
        out.insert(mesh.topology().connects()[size_t(c)]);
    return out.sorted();
}

void soften(MeshBody& mesh, const ComponentListData* list, const PolyParameters& p)
{
    const Topology& t = mesh.topology();
    const double    limit = p.number[kAngle];
    const ElementSet edges = edgesNamed(mesh, list);
    for (int e = 0; e < t.edgeCount(); ++e)
    {
        if (!edges.has(e))
            continue;
        const auto sides = t.edgeCorners()[e];
        bool smooth = true;
        if (sides.size() == 2)
        {
            const auto& a = mesh.faceNormals()[size_t(t.cornerFaces()[size_t(sides[0])])];
            const auto& b = mesh.faceNormals()[size_t(t.cornerFaces()[size_t(sides[1])])];
            const double dot = double(a.v[0]) * b.v[0] + double(a.v[1]) * b.v[1] + double(a.v[2]) * b.v[2];
            const double angle = std::acos(std::clamp(dot, -1.0, 1.0));
            smooth = limit >= 3.14159 || (limit > 0 && angle <= limit + 1e-6);
        }
        mesh.setEdgeSmooth(e, smooth);
    }
}

void paint(MeshBody& mesh, const ComponentListData* list, const PolyParameters& p)
{
    if (mesh.colorSets().current < 0)
        mesh.writeColorSets().current = mesh.addColorSet("");
    const int              set = mesh.colorSets().current;
    const std::vector<int> at = cornersNamed(mesh, list).sorted();
    const ColorSet&        present = mesh.colorSets().sets[size_t(set)];
    std::vector<MColor>    colors;
    for (int c : at)
    {
        MColor now = present.ofCorner(mesh.topology(), c);
        const bool none = isUnset(now);
        if (p.number[kRemoveColor] != 0)
        {
            colors.push_back(unsetColor);
            continue;
        }
        if (none)
            now = MColor(0, 0, 0, 1);
        float* channel[] = {&now.r, &now.g, &now.b, &now.a};
        for (int k = 0; k < 4; ++k)
            if (int(p.number[kChannels]) & (1 << k))
                *channel[k] = float((p.number[kRelativeColor] != 0 ? *channel[k] : 0) + p.number[k]);
        colors.push_back(now);
    }
    const bool uniform = p.number[kRelativeColor] == 0 && wholeVertices(list) && !colors.empty() && int(p.number[kChannels]) == 15;
    if (uniform)   // one colour a vertex keeps the set small
    {
        const std::vector<int> vertices = verticesOf(mesh, at);
        const std::vector<MColor> same(vertices.size(), colors[0]);
        mesh.setVertexColors(set, same.data(), vertices.data(), vertices.size());
    }
    else
        mesh.setCornerColors(set, colors.data(), at.data(), at.size());
}

void bend(MeshBody& mesh, const ComponentListData* list, const PolyParameters& p)
{
    const std::vector<int> at = cornersNamed(mesh, list).sorted();
    const int              mode = int(p.number[kNormalMode]);
    if (mode == 2)
    {
        mesh.unlockCorners(at.data(), at.size());
        const std::vector<int> vertices = verticesOf(mesh, at);
        if (wholeVertices(list))
            mesh.unlockVertices(vertices.data(), vertices.size());
        return;
    }
    std::vector<F3> normals;
    for (int c : at)
    {
        F3 n = mesh.cornerNormals().at(c);
        if (mode == 0)
        {
            double v[3], length = 0;
            for (int k = 0; k < 3; ++k)
            {
                v[k] = p.number[kNormalX + k] + (p.number[kRelativeNormal] != 0 ? n.v[k] : 0);
                length += v[k] * v[k];
            }
            length = std::sqrt(length);
            for (int k = 0; k < 3 && length > 0; ++k)
                n.v[k] = float(v[k] / length);
        }
        normals.push_back(n);
    }
    mesh.lockCornerNormals(normals.data(), at.data(), at.size());
}

void moveUVs(MeshBody& mesh, const ComponentListData* list, const PolyParameters& p)
{
    const int set = p.text[0].empty() ? mesh.uvSets().current : mesh.findUVSet(p.text[0]);
    if (set < 0)
        return;
    const UVSet&  uv = mesh.uvSets().sets[size_t(set)];
    const int     count = int(uv.uvs->size());
    std::set<int> ids;
    for (int i = 0; !list && i < count; ++i)
        ids.insert(i);
    for (size_t i = 0; list && i < list->list.size(); ++i)
        if (list->list[i]->apiType() == MFn::kMeshMapComponent)
            for (int e : elementsOf(*list->list[i], count))
                ids.insert(e);
    if (list && ids.empty())
    {
        bool asksForUVs = false;
        for (const auto& c : list->list)
            asksForUVs |= c->apiType() == MFn::kMeshMapComponent;
        if (!asksForUVs)
            for (int c : cornersNamed(mesh, list).sorted())
                if (uv.id(c) >= 0)
                    ids.insert(uv.id(c));
    }
    auto&        table = detach(mesh.writeUVSet(set).uvs);
    const double turn = p.number[kAngleUV], cosine = std::cos(turn), sine = std::sin(turn);
    for (int i : ids)
    {
        F2&          e = table[size_t(i)];
        const double x = (e.u - p.number[kPivotU]) * p.number[kScaleU], y = (e.v - p.number[kPivotV]) * p.number[kScaleV];
        const double u = x * cosine - y * sine + p.number[kPivotU], v = x * sine + y * cosine + p.number[kPivotV];
        const bool   relative = p.number[kRelativeUV] != 0;
        e = {float((relative ? u : 0) + p.number[kU]), float((relative ? v : 0) + p.number[kV])};
    }
}

void editColorSets(MeshBody& mesh, int operation, const PolyParameters& p)
{
    const int at = p.text[0].empty() ? mesh.colorSets().current : mesh.findColorSet(p.text[0]);
    if (operation == kCreateColorSet)
    {
        const int made = mesh.addColorSet(p.text[0]);
        ColorSet& set = mesh.writeColorSet(made);
        set.representation = p.number[kSetRepresentation] > 0 ? int(p.number[kSetRepresentation]) : 4;
        set.clamped = p.number[kSetClamped] != 0;
        return;
    }
    if (at < 0)
        return;
    if (operation == kCopyColorSet)
    {
        const int to = p.text[1].empty() ? -1 : mesh.findColorSet(p.text[1]);
        const int made = to >= 0 ? to : mesh.addColorSet(p.text[1]);
        ColorSets& sets = mesh.writeColorSets();
        const std::string name = sets.sets[size_t(made)].name;
        sets.sets[size_t(made)] = sets.sets[size_t(at)];
        sets.sets[size_t(made)].name = name;
        return;
    }
    ColorSets& sets = mesh.writeColorSets();
    if (operation == kDeleteColorSet)
    {
        sets.sets.erase(sets.sets.begin() + at);
        sets.current = sets.sets.empty() ? -1 : sets.current > at || sets.current == int(sets.sets.size()) ? sets.current - 1 : sets.current;
    }
    else if (operation == kRenameColorSet)
        sets.sets[size_t(at)].name = p.text[1];
    else
        sets.current = at;
}

void editUVSets(MeshBody& mesh, int operation, const PolyParameters& p)
{
    const int at = p.text[0].empty() ? mesh.uvSets().current : mesh.findUVSet(p.text[0]);
    if (operation == kCreateUVSet)
    {
        UVSets& sets = mesh.writeUVSets();
        sets.sets.emplace_back().name = p.text[0].empty() ? "uvSet" + std::to_string(sets.sets.size()) : p.text[0];
        return;
    }
    if (at < 0)
        return;
    UVSets& sets = mesh.writeUVSets();
    if (operation == kDeleteUVSet && at > 0)   // the first one always stays
    {
        sets.sets.erase(sets.sets.begin() + at);
        sets.current = sets.current >= at ? sets.current - 1 : sets.current;
    }
    else if (operation == kRenameUVSet)
        sets.sets[size_t(at)].name = p.text[1];
    else if (operation == kCurrentUVSet)
        sets.current = at;
    else if (operation == kCopyUVSet)
    {
        int to = -1;
        for (size_t i = 0; i < sets.sets.size(); ++i)
            if (sets.sets[i].name == p.text[1])
                to = int(i);
        UVSet copy = sets.sets[size_t(at)];
        copy.name = p.text[1].empty() ? "uvSet" + std::to_string(sets.sets.size() + 1) : p.text[1];
        if (to >= 0)
            sets.sets[size_t(to)] = copy;
        else
            sets.sets.push_back(copy);
    }
}

void changeSets(MeshBody& mesh, const ComponentListData*, const PolyParameters& p)
{
    const int operation = int(p.number[kSetOperation]);
    operation < kCreateUVSet ? editColorSets(mesh, operation, p) : editUVSets(mesh, operation, p);
}

constexpr PolyEdit::Number kSoftNumbers[] = {{"angle", "a", 0.5235987755982988, true}};
constexpr PolyEdit::Number kColorNumbers[] = {{"colorR", "cr", 0}, {"colorG", "cg", 0}, {"colorB", "cb", 0}, {"colorAlpha", "ca", 1}, {"channels", "chn", 15}, {"relative", "rel", 0}, {"clearColor", "clc", 0}};
constexpr PolyEdit::Number kNormalNumbers[] = {{"normalX", "nx", 0}, {"normalY", "ny", 0}, {"normalZ", "nz", 0}, {"normalMode", "nm", 0}, {"relative", "rel", 0}};
constexpr PolyEdit::Number kUVNumbers[] = {{"uValue", "u", 0}, {"vValue", "v", 0}, {"relative", "rel", 1}, {"pivotU", "pu", 0}, {"pivotV", "pv", 0}, {"scaleU", "su", 1}, {"scaleV", "sv", 1}, {"angle", "a", 0, true}};
constexpr PolyEdit::Text   kUVTexts[] = {{"uvSetName", "uvs"}};
constexpr PolyEdit::Number kSetNumbers[] = {{"operation", "op", 0}, {"representation", "rpt", 4}, {"clamped", "cla", 0}};
constexpr PolyEdit::Text   kSetTexts[] = {{"setName", "sn"}, {"newName", "nn"}};

constexpr PolyEdit kSoft{"polySoftEdge", 0x50534544, kSoftNumbers, {}, soften};
constexpr PolyEdit kColor{"polyColorPerVertex", 0x50435056, kColorNumbers, {}, paint};
constexpr PolyEdit kNormal{"polyNormalPerVertex", 0x504E5056, kNormalNumbers, {}, bend};
constexpr PolyEdit kUVMove{"polyTweakUV", 0x50545556, kUVNumbers, kUVTexts, moveUVs};
constexpr PolyEdit kSets{"polySetEdit", 0x50534554, kSetNumbers, kSetTexts, changeSets};

}  // namespace

const PolyEdit& softEdgeEdit() { return kSoft; }
const PolyEdit& colorEdit() { return kColor; }
const PolyEdit& normalEdit() { return kNormal; }
const PolyEdit& uvEdit() { return kUVMove; }
const PolyEdit& setEdit() { return kSets; }

}  // namespace mirk::nodes
