// UV sets and colour sets of meshes.
#include "mesh/mesh.h"

#include <climits>

namespace mirk {

namespace {

template <class Sets>
int findNamed(const Sets& sets, std::string_view name)
{
    for (size_t i = 0; i < sets.size(); ++i)
        if (sets[i].name == name)
            return int(i);
    return -1;
}

bool idsFit(const Buffer<int>& ids, size_t corners, size_t table)
{
    if (ids.size() != corners)
        return false;
    const unsigned   most = unsigned(table < INT_MAX ? table : INT_MAX);
    const int*       id = ids.data();
    constexpr size_t run = 1024;   // compared without branches; -1 stands at 0
    size_t           i = 0;
    for (; i + run <= corners; i += run) {
        unsigned outside = 0;
        for (size_t k = 0; k < run; ++k)
            outside |= unsigned(id[i + k]) + 1 > most;
        if (outside)
            return false;
    }
    for (; i < corners; ++i)
        if (unsigned(id[i]) + 1 > most)
            return false;
    return true;
}

bool coversAll(const int* ids, size_t count, int n)
{
    if (count != size_t(n))
        return false;
    constexpr int run = 1024;   // compared without branches
    int i = 0;
    for (; i + run <= n; i += run) {
        int differs = 0;
        for (int k = 0; k < run; ++k)
            differs |= ids[i + k] ^ (i + k);
        if (differs)
            return false;
    }
    for (; i < n; ++i)
        if (ids[i] != i)
            return false;
    return true;
}

}  // namespace

const Lists& UVSet::ofVertex(const Topology& t) const
{
    return derived->ofVertex.get([&] {
        auto lists = make<Lists>();
        lists->first.resize(size_t(t.vertexCount()) + 1);
        lists->first[0] = 0;
        Buffer<int> lastVertex(uvs->size(), -1);
        for (int v = 0; v < t.vertexCount(); ++v) {
            if (ids)
                for (int c : t.vertexCorners()[v])
                    if (const int id = (*ids)[c]; id >= 0 && lastVertex[id] != v) {
                        lists->items.push(id);
                        lastVertex[id] = v;
                    }
            lists->first[size_t(v) + 1] = int(lists->items.size());
        }
        return lists;
    });
}

int MeshBody::findUVSet(std::string_view name) const { return findNamed(uvSets_->sets, name); }

UVSets& MeshBody::writeUVSets()
{
    dropTangents();
    return detach(uvSets_);
}

UVSet& MeshBody::writeUVSet(int set)
{
    UVSet& s = writeUVSets().sets[size_t(set)];
    if (!s.derived->unique() || s.derived->ofVertex.built())
        s.derived = make<UVSet::Tables>();
    return s;
}

bool MeshBody::assignUVs(int set, Ref<Buffer<int>> ids)
{
    if (ids && !idsFit(*ids, size_t(cornerCount()), uvSets_->sets[size_t(set)].uvs->size()))
        return false;
    writeUVSet(set).ids = std::move(ids);
    return true;
}

const Buffer<MColor>& ColorSet::ofVertices(const Topology& t) const
{
    if (layout == kPerVertex)
        return *table;
    return derived->ofVertex.get([&] {
        const size_t n = size_t(t.vertexCount());
        auto means = make<Buffer<MColor>>(n, MColor(0, 0, 0, 0));
        Buffer<int> counts(n, 0);
        for (int c = 0; c < t.cornerCount(); ++c)
            if (const int i = id(t, c); i >= 0) {
                const int v = t.connects()[c];
                (*means)[v] += (*table)[i];
                ++counts[v];
            }
        for (size_t v = 0; v < n; ++v)
            (*means)[v] = counts[v] ? (*means)[v] / float(counts[v]) : unsetColor;
        return means;
    });
}

int MeshBody::findColorSet(std::string_view name) const { return findNamed(colorSets_->sets, name); }

ColorSet& MeshBody::writeColorSet(int set)
{
    ColorSet& s = detach(colorSets_).sets[size_t(set)];
    if (!s.derived->unique() || s.derived->ofVertex.built())
        s.derived = make<ColorSet::Tables>();
    return s;
}

int MeshBody::addColorSet(std::string name)
{
    if (name.empty())
        name = "colorSet1";
    std::string unique = name;
    if (findColorSet(unique) >= 0) {
        while (!name.empty() && name.back() >= '0' && name.back() <= '9')
            name.pop_back();
        for (int i = 1; findColorSet(unique = name + std::to_string(i)) >= 0;)
            ++i;
    }
    ColorSets& all = writeColorSets();
    all.sets.emplace_back().name = std::move(unique);
    if (all.current < 0)
        all.current = int(all.sets.size()) - 1;
    return int(all.sets.size()) - 1;
}

void MeshBody::setVertexColors(int set, const MColor* colors, const int* vertices, size_t count)
{
    ColorSet& s = writeColorSet(set);
    const bool all = coversAll(vertices, count, vertexCount());
    const bool unassigned = s.layout == ColorSet::kIndexed && !s.ids;
    if (all || unassigned) {
        s.layout = ColorSet::kPerVertex;
        s.ids = nullptr;
        s.table = all ? make<Buffer<MColor>>(colors, count)   // none of the old ones stays
                      : make<Buffer<MColor>>(size_t(vertexCount()), unsetColor);
    }
    if (all)
        return;
    if (s.layout == ColorSet::kPerVertex) {
        Buffer<MColor>& table = detach(s.table);
        for (size_t i = 0; i < count; ++i)
            table[vertices[i]] = colors[i];
        return;
    }
    toCornerColors(s);
    Buffer<MColor>& table = detach(s.table);
    const Lists& corners = topology_->vertexCorners();
    for (size_t i = 0; i < count; ++i)
        for (int c : corners[vertices[i]])
            table[c] = colors[i];
}

void MeshBody::setFaceColors(int set, const MColor* colors, const int* faces, size_t count)
{
    ColorSet& s = writeColorSet(set);
    toCornerColors(s);
    Buffer<MColor>& table = detach(s.table);
    for (size_t i = 0; i < count; ++i)
        std::fill(table.data() + topology_->first(faces[i]), table.data() + topology_->first(faces[i] + 1), colors[i]);
}

void MeshBody::setCornerColors(int set, const MColor* colors, const int* corners, size_t count)
{
    ColorSet& s = writeColorSet(set);
    toCornerColors(s);
    Buffer<MColor>& table = detach(s.table);
    for (size_t i = 0; i < count; ++i)
        table[corners[i]] = colors[i];
}

void MeshBody::toCornerColors(ColorSet& s)
{
    if (s.layout == ColorSet::kPerCorner)
        return;
    auto table = make<Buffer<MColor>>(size_t(cornerCount()));
    for (int c = 0; c < cornerCount(); ++c)
        (*table)[c] = s.ofCorner(*topology_, c);
    s.table = std::move(table);
    s.ids = nullptr;
    s.layout = ColorSet::kPerCorner;
}

bool MeshBody::setColorTable(int set, Ref<Buffer<MColor>> table)
{
    if (!table || table->size() < colorSets_->sets[size_t(set)].table->size())
        return false;
    ColorSet& s = writeColorSet(set);
    if (s.layout != ColorSet::kIndexed) {   // the entries keep their corners
        auto ids = make<Buffer<int>>(size_t(cornerCount()));
        for (int c = 0; c < cornerCount(); ++c)
            (*ids)[c] = s.layout == ColorSet::kPerVertex ? topology_->connects()[c] : c;
        s.ids = std::move(ids);
        s.layout = ColorSet::kIndexed;
    }
    s.table = std::move(table);
    return true;
}

bool MeshBody::assignColors(int set, Ref<Buffer<int>> ids)
{
    if (ids && !idsFit(*ids, size_t(cornerCount()), colorSets_->sets[size_t(set)].table->size()))
        return false;
    ColorSet& s = writeColorSet(set);
    s.layout = ColorSet::kIndexed;
    s.ids = std::move(ids);
    return true;
}

}  // namespace mirk
