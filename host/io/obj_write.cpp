#include <charconv>
#include <fstream>

#include "io/obj.h"

namespace mirk {

namespace {

/// Text that grows by numbers.
class Text
{
public:
    explicit Text(size_t expected) { text_.reserve(expected); }
    template <class N>
    Text& number(N n)
    {
        char digits[40];
        const auto r = std::to_chars(digits, digits + sizeof digits, n);
        text_.append(digits, r.ptr);
        return *this;
    }
    Text& put(std::string_view s) { text_ += s; return *this; }
    std::string take() { return std::move(text_); }

private:
    std::string text_;
};

void writePoints(Text& out, const MeshBody& body)
{
    const ColorSets& sets = body.colorSets();
    const Buffer<MColor>* colors = sets.current < 0 ? nullptr : &sets.sets[size_t(sets.current)].ofVertices(body.topology());
    const float* p = body.points();
    for (int i = 0; i < body.vertexCount(); ++i, p += 3) {
        out.put("v ").number(p[0]).put(" ").number(p[1]).put(" ").number(p[2]);
        if (colors)
            out.put(" ").number((*colors)[i].r).put(" ").number((*colors)[i].g).put(" ").number((*colors)[i].b);
        out.put("\n");
    }
}

}  // namespace

std::string objText(const std::vector<NamedMesh>& meshes)
{
    size_t expected = 64;
    for (const NamedMesh& m : meshes)
        expected += size_t(m.body->vertexCount()) * 64 + size_t(m.body->cornerCount()) * 12;
    Text out(expected);
    int points = 1, uvs = 1;   // ids run through the whole file
    for (const NamedMesh& m : meshes) {
        if (!m.name.empty())
            out.put("o ").put(m.name).put("\n");
        else if (meshes.size() > 1)
            out.put("o mesh").number(&m - meshes.data() + 1).put("\n");
        const MeshBody& body = *m.body;
        const Topology& t = body.topology();
        const UVSet& set = body.uvSets().sets[size_t(body.uvSets().current)];
        writePoints(out, body);
        for (const F2& uv : *set.uvs)
            out.put("vt ").number(uv.u).put(" ").number(uv.v).put("\n");
        for (int f = 0; f < t.faceCount(); ++f) {
            out.put("f");
            for (int c = t.first(f); c < t.first(f + 1); ++c) {
                out.put(" ").number(t.connects()[c] + points);
                if (const int id = set.id(c); id >= 0)
                    out.put("/").number(id + uvs);
            }
            out.put("\n");
        }
        points += body.vertexCount();
        uvs += int(set.uvs->size());
    }
    return out.take();
}

bool writeObj(const std::string& file, const std::vector<NamedMesh>& meshes, std::string& error)
{
    const std::string text = objText(meshes);
    std::ofstream out(file, std::ios::binary);
    if (out.write(text.data(), std::streamsize(text.size())) && out.flush())
        return true;
    error = "Cannot write file: " + file;
    return false;
}

}  // namespace mirk
