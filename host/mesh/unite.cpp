#include "mesh/unite.h"

#include <algorithm>
#include <climits>
#include <unordered_map>

#include "mesh/space.h"

namespace mirk {

namespace {

struct Placed
{
    const MeshBody* mesh;
    SpaceMatrix     space;
    int             vertex, corner;   ///< first ones in the whole
};

using Parts = std::vector<Placed>;

bool isIdentity(const double (&m)[4][4])
{
    for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 4; ++k)
            if (m[i][k] != (i == k))
                return false;
    return true;
}

Parts placed(std::span<const UnitePart> given, size_t& vertices, size_t& corners, size_t& faces)
{
    Parts parts;
    parts.reserve(given.size());
    for (const UnitePart& g : given) {
        if (g.mesh->vertexCount() == 0)
            continue;
        parts.push_back({g.mesh, isIdentity(g.matrix) ? SpaceMatrix() : SpaceMatrix(g.matrix), int(vertices), int(corners)});
        vertices += size_t(g.mesh->vertexCount());
        corners += size_t(g.mesh->cornerCount());
        faces += size_t(g.mesh->faceCount());
        if (vertices > INT_MAX / 3 || corners > INT_MAX - 1 || faces > INT_MAX - 1)
            return {};
    }
    return parts;
}

bool surface(const Parts& parts, size_t vertices, size_t corners, size_t faces, MeshBody& to, std::string* why)
{
    auto        points = make<Buffer<float>>(vertices * 3);
    Buffer<int> counts(faces), connects(corners);
    float*      point = points->data();
    int *       count = counts.data(), *connect = connects.data();
    for (const Placed& p : parts) {
        const Topology& t = p.mesh->topology();
        if (!p.space.active())
            point = std::copy_n(p.mesh->points(), 3 * size_t(t.vertexCount()), point);
        else
            for (int v = 0; v < t.vertexCount(); ++v, point += 3)
                p.space.pointOut(p.mesh->points() + 3 * size_t(v), point);
        for (int f = 0; f < t.faceCount(); ++f)
            *count++ = t.faceSize(f);
        for (int v : t.connects())
            *connect++ = v + p.vertex;
    }
    Ref<Topology> topology = Topology::create(int(vertices), counts.data(), faces, connects.data(), corners, why);
    return topology && to.reset(std::move(points), std::move(topology));
}

/// Sets of all parts by the sets of the whole that they go to.
template <class Set>
struct Joined
{
    struct Source { const Placed* part; const Set* set; };
    std::string         name;
    std::vector<Source> sources;   ///< in the order of parts
};

template <class Set>
class Joiner
{
public:
    explicit Joiner(bool byName) : byName_(byName) {}

    int add(const Placed& part, const Set& set)
    {
        auto it = places_.find(set.name);
        if (it == places_.end() || !byName_) {
            std::string name = set.name;
            for (int& i = counters_[set.name]; places_.count(name);)
                name = set.name + std::to_string(++i);
            it = places_.emplace(name, int(joined.size())).first;
            joined.push_back({name, {}});
        }
        joined[size_t(it->second)].sources.push_back({&part, &set});
        return it->second;
    }

    std::vector<Joined<Set>> joined;

private:
    bool                                 byName_;
    std::unordered_map<std::string, int> places_, counters_;
};

void fillUVs(const Joined<UVSet>& from, size_t corners, UVSet& to)
{
    size_t size = 0;
    bool   any = false;
    for (const auto& s : from.sources)
        size += s.set->uvs->size(), any |= bool(s.set->ids);
    auto uvs = make<Buffer<F2>>(size);
    auto ids = any ? make<Buffer<int>>(corners, -1) : Ref<Buffer<int>>();
    size_t at = 0;
    for (const auto& s : from.sources) {
        std::copy(s.set->uvs->begin(), s.set->uvs->end(), uvs->begin() + at);
        if (s.set->ids)
            for (size_t c = 0; c < s.set->ids->size(); ++c)
                if (const int id = (*s.set->ids)[c]; id >= 0)
                    (*ids)[size_t(s.part->corner) + c] = id + int(at);
        at += s.set->uvs->size();
    }
    to.name = from.name;
    to.uvs = std::move(uvs);
    to.ids = std::move(ids);
}

void uvSets(const Parts& parts, UniteUVs how, MeshBody& to)
{
    // sets apart need a table of all corners each: past this many numbers they are joined by name after all
    constexpr size_t kMostIds = size_t(1) << 28;
    size_t           used = 0;
    for (const Placed& p : parts)
        for (const UVSet& s : p.mesh->uvSets().sets)
            used += s.ids || !s.uvs->empty();
    const bool    byName = how == UniteUVs::byName || used * size_t(to.cornerCount()) > kMostIds;
    Joiner<UVSet> joiner(byName);
    int           current = -1;
    for (const Placed& p : parts)
        for (size_t i = 0; i < p.mesh->uvSets().sets.size(); ++i) {
            const UVSet& s = p.mesh->uvSets().sets[i];
            if (!byName && !s.ids && s.uvs->empty())
                continue;
            const int place = joiner.add(p, s);
            if (current < 0 && int(i) == p.mesh->uvSets().current)
                current = place;
        }
    if (joiner.joined.empty())
        return;
    UVSets& sets = to.writeUVSets();
    sets.sets.resize(joiner.joined.size());
    sets.current = std::max(current, 0);
    for (size_t i = 0; i < joiner.joined.size(); ++i)
        fillUVs(joiner.joined[i], size_t(to.cornerCount()), sets.sets[i]);
}

void fillColors(const Joined<ColorSet>& from, const MeshBody& whole, ColorSet& to)
{
    const ColorSet& first = *from.sources[0].set;
    bool            perVertex = true;
    for (const auto& s : from.sources)
        perVertex &= s.set->layout == ColorSet::kPerVertex;
    to.name = from.name;
    to.representation = first.representation;
    to.clamped = first.clamped;
    to.layout = perVertex ? ColorSet::kPerVertex : ColorSet::kPerCorner;
    auto table = make<Buffer<MColor>>(size_t(perVertex ? whole.vertexCount() : whole.cornerCount()), unsetColor);
    for (const auto& s : from.sources) {
        const Topology& t = s.part->mesh->topology();
        if (perVertex)
            std::copy(s.set->table->begin(), s.set->table->end(), table->begin() + s.part->vertex);
        else
            for (int c = 0; c < t.cornerCount(); ++c)
                (*table)[size_t(s.part->corner + c)] = s.set->ofCorner(t, c);
    }
    to.table = std::move(table);
}

void colorSets(const Parts& parts, MeshBody& to)
{
    Joiner<ColorSet> joiner(true);
    int              current = -1;
    for (const Placed& p : parts)
        for (size_t i = 0; i < p.mesh->colorSets().sets.size(); ++i) {
            const int place = joiner.add(p, p.mesh->colorSets().sets[i]);
            if (current < 0 && int(i) == p.mesh->colorSets().current)
                current = place;
        }
    if (joiner.joined.empty())
        return;
    ColorSets& sets = to.writeColorSets();
    sets.sets.resize(joiner.joined.size());
    sets.current = current;
    for (size_t i = 0; i < joiner.joined.size(); ++i)
        fillColors(joiner.joined[i], to, sets.sets[i]);
}

void hardEdges(const Parts& parts, MeshBody& to)
{
    Ref<HardCorners> flags;
    for (const Placed& p : parts) {
        if (!p.mesh->anyHard())
            continue;
        if (!flags) {
            flags = make<HardCorners>();
            flags->corners.resize(size_t(to.cornerCount()));
            std::fill(flags->corners.begin(), flags->corners.end(), uint8_t(0));
        }
        for (int c = 0; c < p.mesh->cornerCount(); ++c)
            flags->corners[size_t(p.corner + c)] = p.mesh->cornerHard(c);
    }
    if (flags)
        to.setHardCorners(std::move(flags));
}

/// Places and normals of those that are locked.
void lockedNormals(const Parts& parts, MeshBody& to)
{
    std::vector<F3>  vertexNormals, cornerNormals;
    std::vector<int> vertices, corners;
    const auto collect = [](const Placed& p, int first, const Buffer<F3>& normals, const Buffer<uint8_t>& flags,
                            std::vector<F3>& toNormals, std::vector<int>& toPlaces) {
        for (size_t i = 0; i < flags.size(); ++i)
            if (flags[i]) {
                toNormals.push_back(p.space.normalOut(normals[i]));
                toPlaces.push_back(first + int(i));
            }
    };
    for (const Placed& p : parts)
        if (const LockedNormals* l = p.mesh->locked()) {
            collect(p, p.vertex, l->vertex, l->vertexLocked, vertexNormals, vertices);
            collect(p, p.corner, l->corner, l->cornerLocked, cornerNormals, corners);
        }
    to.lockVertexNormals(vertexNormals.data(), vertices.data(), vertices.size());
    to.lockCornerNormals(cornerNormals.data(), corners.data(), corners.size());
}

}  // namespace

Ref<MeshBody> unite(std::span<const UnitePart> given, UniteUVs how, std::string* why)
{
    size_t      vertices = 0, corners = 0, faces = 0;
    const Parts parts = placed(given, vertices, corners, faces);
    auto        to = make<MeshBody>();
    if (parts.empty()) {
        if (vertices == 0)
            return to;
        if (why)
            *why = "there are too many vertices or faces";
        return {};
    }
    if (!surface(parts, vertices, corners, faces, *to, why))
        return {};
    uvSets(parts, how, *to);
    colorSets(parts, *to);
    hardEdges(parts, *to);
    lockedNormals(parts, *to);
    return to;
}

}  // namespace mirk
