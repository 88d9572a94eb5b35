#include "dag/component_text.h"

#include <algorithm>
#include <charconv>
#include <climits>

#include "data/component.h"

namespace mirk {
namespace {

struct Name { const char* text; ComponentOf of; MFn::Type type; };

const Name kNames[] = {
    {"vtx", ComponentOf::mesh, MFn::kMeshVertComponent},
    {"f", ComponentOf::mesh, MFn::kMeshPolygonComponent},
    {"e", ComponentOf::mesh, MFn::kMeshEdgeComponent},
    {"map", ComponentOf::mesh, MFn::kMeshMapComponent},
    {"vtxFace", ComponentOf::mesh, MFn::kMeshVtxFaceComponent},
    {"cv", ComponentOf::surface, MFn::kSurfaceCVComponent},
    {"cv", ComponentOf::curve, MFn::kCurveCVComponent},
    {"pt", ComponentOf::lattice, MFn::kLatticeComponent},
};

std::string headOf(const std::string& text) { return text.substr(0, text.find('[')); }

const char* nameOf(MFn::Type type)
{
    for (const Name& n : kNames)
        if (n.type == type)
            return n.text;
    return type == MFn::kMeshFaceVertComponent ? "vtxFace" : nullptr;
}

/// Indices of one bracket: first to last; `last` is INT_MAX for an open end.
struct Range { int first = 0, last = INT_MAX; bool all = true; };

bool readIndex(const char*& at, const char* end, int& value)
{
    const auto r = std::from_chars(at, end, value);
    if (r.ec != std::errc() || value < 0)
        return false;
    at = r.ptr;
    return true;
}

bool readRange(const std::string& text, Range& range)
{
    const char *at = text.data(), *end = at + text.size();
    if (text.empty() || text == "*" || text == ":")
        return true;
    range.all = false;
    if (*at != ':' && !readIndex(at, end, range.first))
        return false;
    if (at == end) {
        range.last = range.first;
        return true;
    }
    if (*at++ != ':')
        return false;
    return at == end || (readIndex(at, end, range.last) && at == end && range.last >= range.first);
}

bool readRanges(const std::string& text, std::vector<Range>& ranges)
{
    size_t at = text.find('[');
    while (at < text.size()) {
        const size_t close = text.find(']', at);
        if (text[at] != '[' || close == std::string::npos)
            return false;
        ranges.emplace_back();
        if (!readRange(text.substr(at + 1, close - at - 1), ranges.back()))
            return false;
        at = close + 1;
    }
    return true;
}

Ref<Component> refuse(const std::string& text, std::string* why)
{
    if (why)
        *why = "\"" + text + "\" is not a component.";
    return nullptr;
}

/// All elements of a block of ranges, last direction fastest.
void addBlock(Component& component, const std::vector<Range>& ranges)
{
    const size_t     dims = ranges.size();
    std::vector<int> elements, at(dims);
    for (size_t d = 0; d < dims; ++d) {
        if (ranges[d].last < ranges[d].first)
            return;
        at[d] = ranges[d].first;
    }
    for (;;) {
        elements.insert(elements.end(), at.begin(), at.end());
        size_t d = dims;
        while (d > 0 && ++at[d - 1] > ranges[d - 1].last) {
            at[d - 1] = ranges[d - 1].first;
            --d;
        }
        if (d == 0)
            break;
    }
    addElements(component, elements.data(), elements.size() / dims);
}

double blockSize(const std::vector<Range>& ranges)
{
    double n = 1;
    for (const Range& r : ranges)
        n *= double(r.last) - r.first + 1;
    return n;
}

std::string rangeText(int first, int last)
{
    return first == last ? "[" + std::to_string(first) + "]"
                         : "[" + std::to_string(first) + ":" + std::to_string(last) + "]";
}

}  // namespace

bool isComponentText(const std::string& text)
{
    const std::string head = headOf(text);
    return std::any_of(std::begin(kNames), std::end(kNames), [&](const Name& n) { return head == n.text; });
}

MFn::Type componentTypeOf(const std::string& text, ComponentOf of)
{
    const std::string head = headOf(text);
    const bool        oneBracket = std::count(text.begin(), text.end(), '[') < 2;
    for (const Name& n : kNames)
        if (head == n.text && (of == n.of || (of == ComponentOf::any && !(n.of == ComponentOf::surface && oneBracket))))
            return n.type;
    return MFn::kInvalid;
}

Ref<Component> parseComponent(const std::string& text, ComponentOf of, const int* extent, std::string* why)
{
    const MFn::Type    type = componentTypeOf(text, of);
    Ref<Component>     component = type == MFn::kInvalid ? nullptr : makeComponent(type);
    std::vector<Range> ranges;
    if (!component || !readRanges(text, ranges) || ranges.size() > size_t(component->dimensions()))
        return refuse(text, why);
    if (std::all_of(ranges.begin(), ranges.end(), [](const Range& r) { return r.all; })) {
        component->complete = true;
        for (int d = 0; extent && d < component->dimensions(); ++d)
            component->completeCount[d] = extent[d];
        return component;
    }
    ranges.resize(size_t(component->dimensions()));
    for (size_t d = 0; d < ranges.size(); ++d) {
        if (extent)
            ranges[d].last = std::min(ranges[d].last, extent[d] - 1);
        else if (ranges[d].last == INT_MAX)
            return refuse(text, why);
    }
    constexpr double kMost = 1e8;   // a range nobody means would fill the memory
    if (blockSize(ranges) > kMost)
        return refuse(text, why);
    addBlock(*component, ranges);
    return component;
}

std::vector<std::string> componentTexts(const Component& component, const int* extent)
{
    std::vector<std::string> texts;
    const char*              name = nameOf(component.apiType());
    if (!name)
        return texts;
    const int dims = component.dimensions();
    if (component.complete) {
        std::string text = name;
        for (int d = 0; d < dims; ++d)
            text += extent && extent[d] > 0 ? rangeText(0, extent[d] - 1) : "[*]";
        return {text};
    }
    const std::vector<int>& v = component.indices;
    const size_t            n = component.count();
    const auto sameHead = [&](size_t a, size_t b) { return std::equal(&v[a * dims], &v[a * dims] + dims - 1, &v[b * dims]); };
    for (size_t i = 0; i < n;) {
        size_t last = i;   // runs go along the last direction
        while (last + 1 < n && sameHead(i, last + 1) && v[(last + 1) * dims + dims - 1] == v[last * dims + dims - 1] + 1)
            ++last;
        std::string text = name;
        for (int d = 0; d + 1 < dims; ++d)
            text += rangeText(v[i * dims + d], v[i * dims + d]);
        texts.push_back(text + rangeText(v[i * dims + dims - 1], v[last * dims + dims - 1]));
        i = last + 1;
    }
    return texts;
}

}  // namespace mirk
