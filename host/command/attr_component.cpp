// Components as text and back.
#include <cstdio>

#include "command/attr_value.h"
#include "data/component.h"

namespace mirk::command {

namespace {

struct Kind { const char* name; MFn::Type type; };
constexpr Kind kKinds[] = {
    {"vtx", MFn::kMeshVertComponent}, {"e", MFn::kMeshEdgeComponent}, {"f", MFn::kMeshPolygonComponent},
    {"map", MFn::kMeshMapComponent}, {"vtxFace", MFn::kMeshVtxFaceComponent}, {"cv", MFn::kCurveCVComponent},
    {"pt", MFn::kLatticeComponent},
};

const char* kindName(MFn::Type type)
{
    if (type == MFn::kSurfaceCVComponent)
        return "cv";
    for (const Kind& k : kKinds)
        if (k.type == type)
            return k.name;
    return "";
}

std::string run(int a, int b) { return a == b ? "[" + std::to_string(a) + "]" : "[" + std::to_string(a) + ":" + std::to_string(b) + "]"; }

}  // namespace

Strings componentTexts(const Component& c, bool flat)
{
    const std::string name = kindName(c.apiType());
    const int         d = c.dimensions();
    std::string       all;
    for (int i = 0; i < d; ++i)
        all += "[*]";
    if (c.complete && c.indices.empty() && (!flat || !elementCount(c)))
        return {name + all};
    const std::vector<int> e = allElements(c);
    Strings                out;
    for (size_t i = 0; i < e.size();)
    {
        size_t j = i + d;   // the last index runs
        while (!flat && j < e.size() && e[j + d - 1] == e[j - 1] + 1 && std::equal(e.begin() + j, e.begin() + j + d - 1, e.begin() + i))
            j += d;
        std::string text = name;
        for (int k = 0; k < d - 1; ++k)
            text += run(e[i + k], e[i + k]);
        out.push_back(text + run(e[i + d - 1], e[j - 1]));
        i = j;
    }
    return out;
}

Ref<Component> componentFromText(const std::string& text)
{
    const size_t open = text.find('[');
    if (open == std::string::npos)
        return {};
    const std::string name = text.substr(0, open);
    const size_t      dims = size_t(std::count(text.begin(), text.end(), '['));
    MFn::Type         type = MFn::kInvalid;
    for (const Kind& k : kKinds)
        if (name == k.name)
            type = k.type;
    if (type == MFn::kCurveCVComponent && dims == 2)
        type = MFn::kSurfaceCVComponent;
    Ref<Component> c = makeComponent(type);
    if (!c || size_t(c->dimensions()) != dims)
        return {};
    int    first[3] = {0, 0, 0}, last[3] = {0, 0, 0};
    size_t at = open, stars = 0;
    for (size_t i = 0; i < dims; ++i)
    {
        int n = 0;
        const char* p = text.c_str() + at;
        if (std::sscanf(p, "[%d:%d]%n", &first[i], &last[i], &n) == 2 && n)
            ;
        else if (n = 0, std::sscanf(p, "[%d]%n", &first[i], &n) == 1 && n)
            last[i] = first[i];
        else if (text.compare(at, 3, "[*]") == 0)
            n = 3, ++stars;
        else
            return {};
        if (first[i] < 0 || last[i] < first[i] || last[i] - first[i] > 50'000'000)
            return {};
        at += size_t(n);
    }
    if (stars)
    {
        c->complete = stars == dims;
        return c->complete ? c : Ref<Component>();   // a star beside a number needs the geometry's size
    }
    std::vector<int> elements;
    for (int u = first[0]; u <= last[0]; ++u)
        for (int v = first[1]; v <= last[1]; ++v)
            for (int w = first[2]; w <= last[2]; ++w)
                for (size_t k = 0; k < dims; ++k)
                    elements.push_back(k == 0 ? u : k == 1 ? v : w);
    addElements(*c, elements.data(), elements.size() / dims);
    return c;
}

}  // namespace mirk::command
