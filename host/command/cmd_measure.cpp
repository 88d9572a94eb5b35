// Questions scripts ask about what is named or selected: sizes, places, kinds, and components as others of their mesh.
#include <algorithm>
#include <map>

#include "command/cmd_util.h"
#include "command/shape_edit.h"
#include "command/value_text.h"
#include "dag/component_text.h"
#include "data/component.h"

namespace mirk::command {

namespace {

/// The call as the same command would be made by hand.
Value ask(const char* command, std::vector<Value> args) { return execute(command, args); }

constexpr Flag kExactBox[] = {{"ce", "calculateExactly"}, {"ii", "ignoreInvisible"}};

Value exactWorldBoundingBox(Call& call)
{
    const std::vector<Item> items = callItems(call);
    if (items.empty())
        fail("exactWorldBoundingBox: nothing is given or selected");
    std::vector<double> box;
    for (const Item& item : items) {
        std::vector<double> own;
        const Value         answer = ask("xform", {Value("-query"), Value("-boundingBox"), Value("-worldSpace"), Value(itemName(item, true))});
        for (const double d : numbersIn(answer))
            own.push_back(d);
        for (size_t k = 0; k < own.size() && !box.empty(); ++k)
            box[k] = k < 3 ? std::min(box[k], own[k]) : std::max(box[k], own[k]);
        if (box.empty())
            box = own;
    }
    return Value(box);
}

constexpr Flag kPointPosition[] = {{"l", "local"}, {"w", "world"}};

Value pointPosition(Call& call)
{
    const std::vector<Item> items = callItems(call);
    if (items.size() != 1 || !items[0].component)
        fail("pointPosition: exactly one point has to be given or selected");
    const char* space = call.has("local") ? "-objectSpace" : "-worldSpace";
    const Value at = ask("xform", {Value("-query"), Value(space), Value("-translation"), Value(itemName(items[0], true))});
    std::vector<double> out;
    for (const double d : numbersIn(at))
        out.push_back(d);
    if (out.size() != 3)
        fail("pointPosition: '" + itemName(items[0]) + "' is more than one point");
    return Value(out);
}

constexpr Flag kArclen[] = {{"ch", "constructionHistory", "b"}};

Value arclen(Call& call)
{
    double total = 0;
    int    curves = 0;
    for (Node* node : callNodes(call))
        for (Node* shape : shapesOf(*node)) {
            if (!isA(*shape, "nurbsCurve"))
                continue;
            const std::string info = ask("createNode", {Value("curveInfo")}).asString();
            const Path        path = dag::firstPath(*shape);
            ask("connectAttr", {Value(dag::fullName(path) + ".worldSpace[0]"), Value(info + ".inputCurve")});
            total += ask("getAttr", {Value(info + ".arcLength")}).asFloat();
            if (call.boolean("constructionHistory"))
                return Value(info);
            ask("delete", {Value(info)});
            ++curves;
        }
    if (curves == 0)
        fail("arclen: no curve is given or selected");
    return Value(total);
}

// ---- kinds of things ---------------------------------------------------------------------------------------------

constexpr Flag kFilterExpand[] = {{"sm", "selectionMask", "i", kCreate, true}, {"ex", "expand", "b"}, {"fp", "fullPath", "b"}, {"smd", "symbolicMaskNames", ""}};

/// The numbers that selection masks have.
bool inMask(const Item& item, int mask)
{
    if (item.component)
        switch (mask) {
        case 28: return item.component->apiType() == MFn::kCurveCVComponent || item.component->apiType() == MFn::kSurfaceCVComponent;
        case 31: return item.component->apiType() == MFn::kMeshVertComponent;
        case 32: return item.component->apiType() == MFn::kMeshEdgeComponent;
        case 34: return item.component->apiType() == MFn::kMeshPolygonComponent;
        case 35: return item.component->apiType() == MFn::kMeshMapComponent;
        default: return false;
        }
    Node* node = nodeOf(item);
    if (!node || item.plug)
        return false;
    const char* shape = mask == 9 ? "nurbsCurve" : mask == 10 ? "nurbsSurface" : mask == 12 ? "mesh" : nullptr;
    if (!shape)
        return mask == 13 && isTransform(*node) && shapesOf(*node).empty();
    const std::vector<Node*> shapes = shapesOf(*node);
    return std::any_of(shapes.begin(), shapes.end(), [&](Node* s) { return isA(*s, shape); });
}

/// One text an element: "a.vtx[0]", "a.vtx[1]" ...
void expand(const Item& item, const std::string& owner, Strings& out)
{
    Component one(item.component->apiType(), item.component->dimensions());
    const std::vector<int> all = allElements(*item.component);
    const size_t           n = size_t(item.component->dimensions());
    for (size_t at = 0; at + n <= all.size(); at += n) {
        one.indices.assign(all.begin() + long(at), all.begin() + long(at + n));
        one.changed();
        for (const std::string& text : componentTexts(one))
            out.push_back(owner + "." + text);
    }
}

Value filterExpand(Call& call)
{
    const std::vector<const Call::Use*> masks = call.all("selectionMask");
    if (masks.empty())
        fail("filterExpand: -selectionMask has to be given");
    const bool each = !call.has("expand") || call.boolean("expand"), full = call.boolean("fullPath");
    Strings    out;
    for (const Item& item : callItems(call)) {
        if (std::none_of(masks.begin(), masks.end(), [&](const Call::Use* m) { return inMask(item, m->args[0].asInt()); }))
            continue;
        if (item.component && each) {
            Node* transform = transformOf(*item.path.node());
            expand(item, transform ? nodeName(*transform, full) : itemName(itemOf(item.path), full), out);
        } else {
            out.push_back(itemName(item, full));
        }
    }
    return out.empty() ? Value() : Value(out);
}

// ---- components as others ----------------------------------------------------------------------------------------

enum Element { kVertex, kEdge, kFace, kUV, kElements };

constexpr Flag kConversion[] = {
    {"fv", "fromVertex"}, {"fe", "fromEdge"}, {"ff", "fromFace"}, {"fuv", "fromUV"},
    {"tv", "toVertex"}, {"te", "toEdge"}, {"tf", "toFace"}, {"tuv", "toUV"}, {"in", "internal"},
};
constexpr const char* kFrom[] = {"fromVertex", "fromEdge", "fromFace", "fromUV"};
constexpr const char* kTo[] = {"toVertex", "toEdge", "toFace", "toUV"};
constexpr MFn::Type   kComponentOf[] = {MFn::kMeshVertComponent, MFn::kMeshEdgeComponent, MFn::kMeshPolygonComponent, MFn::kMeshMapComponent};

int elementOf(MFn::Type type)
{
    for (int e = 0; e < kElements; ++e)
        if (kComponentOf[e] == type)
            return e;
    return -1;
}

int countOf(const MeshBody& mesh, Element e)
{
    const UVSets& sets = mesh.uvSets();
    switch (e) {
    case kVertex: return mesh.vertexCount();
    case kEdge:   return mesh.topology().edgeCount();
    case kFace:   return mesh.topology().faceCount();
    default:      return int(sets.sets[size_t(sets.current)].uvs->size());
    }
}

using Marks = std::vector<char>;

/// All conversions go by corners, each of which has a vertex, the edge that begins there, a face and perhaps a UV.
class Corners
{
public:
    explicit Corners(const MeshBody& mesh)
        : mesh_(mesh), t_(mesh.topology()), uvs_(mesh.uvSets().sets[size_t(mesh.uvSets().current)]) {}

    /// The element of a kind that a corner belongs to; -1 if it has none.
    int of(Element e, int corner) const
    {
        switch (e) {
        case kVertex: return t_.connects()[size_t(corner)];
        case kEdge:   return t_.edges().ofCorner[size_t(corner)];
        case kFace:   return t_.cornerFaces()[size_t(corner)];
        default:      return uvs_.id(corner);
        }
    }
    /// Elements of kind `to` that touch a marked one of kind `from`; `internal`: of which all are marked.
    Marks convert(const Marks& marked, Element from, Element to, bool internal) const
    {
        Marks any(size_t(countOf(mesh_, to))), missing(any.size());
        const auto meet = [&](int a, int b) {
            if (a >= 0 && b >= 0)
                (marked[size_t(a)] ? any : missing)[size_t(b)] = 1;
        };
        for (int c = 0; c < t_.cornerCount(); ++c) {
            const int next = t_.next(c, t_.cornerFaces()[size_t(c)]);
            meet(of(from, c), of(to, c));
            if (from == kEdge)                       // an edge ends at the corner after its own
                meet(of(from, c), to == kFace ? -1 : of(to, next));
            if (to == kEdge && from != kEdge)
                meet(from == kFace ? -1 : of(from, next), of(to, c));
        }
        if (internal)
            for (size_t i = 0; i < any.size(); ++i)
                any[i] = char(any[i] && !missing[i]);
        return any;
    }

private:
    const MeshBody& mesh_;
    const Topology& t_;
    const UVSet&    uvs_;
};

/// What is selected of one mesh, a mark an element.
struct Selected
{
    Item  owner;
    Marks marks[kElements];
};

void mark(Selected& s, const MeshBody& mesh, const Item& item)
{
    for (int e = 0; e < kElements; ++e)
        s.marks[e].resize(size_t(countOf(mesh, Element(e))));
    if (!item.component) {
        std::fill(s.marks[kFace].begin(), s.marks[kFace].end(), 1);
        return;
    }
    const int e = elementOf(item.component->apiType());
    if (e < 0)
        return;
    if (item.component->complete)
        std::fill(s.marks[e].begin(), s.marks[e].end(), 1);
    for (int i : item.component->indices)
        if (i >= 0 && size_t(i) < s.marks[e].size())
            s.marks[e][size_t(i)] = 1;
}

void convert(const Call& call, const Selected& s, const MeshBody& mesh, Element to, Strings& out)
{
    const Corners corners(mesh);
    const bool    anyFrom = std::any_of(std::begin(kFrom), std::end(kFrom), [&](const char* f) { return call.has(f); });
    Marks         result(size_t(countOf(mesh, to)));
    for (int from = 0; from < kElements; ++from) {
        const Marks& given = s.marks[from];
        if ((anyFrom && !call.has(kFrom[from])) || std::find(given.begin(), given.end(), 1) == given.end())
            continue;
        const Marks more = from == to ? given : corners.convert(given, Element(from), to, call.has("internal"));
        for (size_t i = 0; i < result.size(); ++i)
            result[i] |= more[i];
    }
    Component component(kComponentOf[to], 1);
    for (size_t i = 0; i < result.size(); ++i)
        if (result[i])
            component.indices.push_back(int(i));
    if (component.indices.empty())
        return;
    const int extent[3] = {int(result.size()), 0, 0};
    for (const std::string& text : componentTexts(component, extent))
        out.push_back(itemName(s.owner) + "." + text);
}

Value polyListComponentConversion(Call& call)
{
    int to = kFace;
    for (int e = 0; e < kElements; ++e)
        if (call.has(kTo[e]))
            to = e;
    std::map<Node*, Selected> byShape;
    std::vector<Node*>        order;
    for (const Item& item : callItems(call)) {
        if (item.component && elementOf(item.component->apiType()) < 0)
            continue;
        Node& shape = meshShapeOf(item);
        if (!byShape.count(&shape)) {
            order.push_back(&shape);
            byShape[&shape].owner = transformOf(shape) ? itemOf(*transformOf(shape)) : itemOf(shape);
        }
        mark(byShape[&shape], *readMesh(shape)->body, item);
    }
    Strings out;
    for (Node* shape : order)
        convert(call, byShape[shape], *readMesh(*shape)->body, Element(to), out);
    return out.empty() ? Value() : Value(out);
}

const Command kCommands[] = {
    {"exactWorldBoundingBox", kExactBox, exactWorldBoundingBox, false},
    {"pointPosition", kPointPosition, pointPosition, false},
    {"arclen", kArclen, arclen},
    {"filterExpand", kFilterExpand, filterExpand, false},
    {"polyListComponentConversion", kConversion, polyListComponentConversion, false},
};

}  // namespace

void registerMeasureCommands() { add(kCommands); }

}  // namespace mirk::command
