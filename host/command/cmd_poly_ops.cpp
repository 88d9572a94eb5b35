// Polygon operations that change which vertices and faces there are (polyMergeVertex, polyDelVertex, ..., polyUnite,
// polySeparate), and polySelect.
#include <algorithm>

#include "command/cmd_util.h"
#include "command/maker.h"
#include "command/poly_history.h"
#include "command/shape_edit.h"
#include "data/component.h"
#include "graph/evaluate.h"
#include "mesh/elements.h"
#include "mesh/loops.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

// ---- operations on one mesh --------------------------------------------------------------------------------------

#define MIRK_OPERATION_FLAGS                                                                                              \
    {"n", "name", "s", kAll}, {"ch", "constructionHistory", "b", kAll}, {"nds", "nodeState", "i", kAll}, {"cch", "caching", "b", kAll}, \
    {"uopa", "useOldPolyArchitecture", "b", kAll}

constexpr Flag kPlainFlags[] = {MIRK_OPERATION_FLAGS};
constexpr Flag kMergeFlags[] = {MIRK_OPERATION_FLAGS, {"d", "distance", "l", kAll}, {"am", "alwaysMergeTwoVertices", "b", kAll}, {"ws", "worldSpace", "b", kAll}};
constexpr Flag kNormalFlags[] = {MIRK_OPERATION_FLAGS, {"nm", "normalMode", "i", kAll}, {"unm", "userNormalMode", "b", kAll}};
#undef MIRK_OPERATION_FLAGS

constexpr MakerFlag kPlainAttributes[] = {{"nodeState", "nodeState"}};
constexpr MakerFlag kMergeAttributes[] = {{"nodeState", "nodeState"}, {"distance", "distance"}, {"alwaysMergeTwoVertices", "alwaysMergeTwoVertices"}, {"worldSpace", "worldSpace"}};
constexpr MakerFlag kNormalAttributes[] = {{"nodeState", "nodeState"}, {"normalMode", "normalMode"}, {"userNormalMode", "userNormalMode"}};

struct Operation
{
    const char* command;
    Maker       maker;
    ElementSet (*named)(const MeshBody&, const ComponentListData*);
    const char* elements;          ///< what they are called
    bool        wholeAllowed;      ///< without components it works on all
};

const Operation kOperations[] = {
    {"polyMergeVertex", {"polyMergeVert", "mesh", "", "output", "inMesh", kMergeAttributes}, verticesNamed, "vertices", true},
    {"polyDelVertex", {"polyDelVertex", "mesh", "", "output", "inMesh", kPlainAttributes}, verticesNamed, "vertices", false},
    {"polyDelFacet", {"polyDelFacet", "mesh", "", "output", "inMesh", kPlainAttributes}, facesNamed, "faces", false},
    {"polyTriangulate", {"polyTriangulate", "mesh", "", "output", "inMesh", kPlainAttributes}, facesNamed, "faces", true},
    {"polyNormal", {"polyNormal", "mesh", "", "output", "inMesh", kNormalAttributes}, facesNamed, "faces", true},
};

const Operation& operationOf(const Call& call)
{
    return *std::find_if(std::begin(kOperations), std::end(kOperations), [&](const Operation& o) { return std::string_view(o.command) == call.command->name; });
}

Value operation(Call& call)
{
    const Operation& o = operationOf(call);
    Value            result;
    if (isNoCreation(call, o.maker, result))
        return result;
    if (const int mode = call.integer("normalMode"); mode != 0 && mode != 2)
        fail("polyNormal: the normal mode " + std::to_string(mode) + " is none of 0 (reverse) and 2 (conform)");
    if (call.num("distance") < 0)
        fail("polyMergeVertex: the distance is negative");
    const std::vector<PolyTarget> all = polyTargets(call);
    for (const PolyTarget& t : all) {
        const std::string name = nodeName(*t.shape);
        if (!t.components && !o.wholeAllowed)
            fail(std::string(o.command) + ": " + o.elements + " of '" + name + "' have to be given");
        if (t.components && o.named(*readMesh(*t.shape)->body, t.components.get()).empty())
            fail(std::string(o.command) + ": no " + o.elements + " of '" + name + "' are given");
    }
    Strings made;
    for (const PolyTarget& t : all) {
        Node* node = applyModifier(t, o.maker.nodeType, call.str("name"), call.boolean("constructionHistory", true), [&](Node& n) {
            setFromFlags(call, o.maker, n);
            if (const Attribute* matrix = n.findAttribute("inputMatrix"))
                edit::connect(*t.shape->cell(t.shape->findAttribute("worldMatrix"))->element(0), *n.cell(matrix));
        });
        if (node)
            made.push_back(nodeName(*node));
    }
    return made.empty() ? Value() : Value(made);
}

// ---- several meshes ----------------------------------------------------------------------------------------------

Cell& cellOf(Node& node, const char* attribute) { return *node.cell(node.findAttribute(attribute)); }

/// The mesh shapes at or below what is given, each once a path.
std::vector<Path> meshPaths(const Call& call)
{
    std::vector<Path> out;
    const auto        take = [&](const Path& p) {
        if (dynamic_cast<MeshSource*>(p.node()) && !boolAttr(*p.node(), "intermediateObject") && std::find(out.begin(), out.end(), p) == out.end())
            out.push_back(p);
        return true;
    };
    for (const Item& item : callItems(call)) {
        const size_t before = out.size();
        if (!item.path.nodes.empty() && !item.component) {
            take(item.path);
            dag::descend(item.path, take);
        }
        if (out.size() == before && std::none_of(out.begin(), out.end(), [&](const Path& p) {
                return std::find(p.nodes.begin(), p.nodes.end(), item.node) != p.nodes.end();
            }))
            fail(std::string(call.command->name) + ": '" + itemName(item) + "' is no polygon object");
    }
    return out;
}

/// A new transform with a mesh that the output gives or, without history, has given.
Node& newObject(const std::string& name, Node* parent, Cell& output, bool history)
{
    Node* transform = dag::createNode(findNodeType("transform"), name, parent);
    Node* shape = dag::createNode(findNodeType("mesh"), shapeName(transform->name), transform);
    Cell& input = cellOf(*shape, "inMesh");
    edit::connect(output, input);
    eval::pull(input);
    if (!history) {
        const Ref<Data> mesh = input.data() ? input.data()->share() : Ref<Data>();
        edit::disconnect(output, input);
        setGeometry(*shape, mesh);
    }
    return *transform;
}

/// Takes one instance of a shape out of the scene, and its transform if nothing else is below.
void removeSource(const Path& path)
{
    Node& shape = *path.nodes.back();
    if (!shape.inScene || path.nodes.size() < 2)
        return;
    Node& above = *path.nodes[path.nodes.size() - 2];
    shape.dag->parents.size() > 1 ? dag::removeInstance(shape, above) : dag::deleteNode(shape);
    if (above.inScene && above.dag->children.empty())
        dag::deleteNode(above);
}

constexpr Flag kUnite[] = {
    {"n", "name", "s"}, {"ch", "constructionHistory", "b"}, {"muv", "mergeUVSets", "i"}, {"cp", "centerPivot"}, {"nds", "nodeState", "i"}, {"cch", "caching", "b"},
    {"uopa", "useOldPolyArchitecture", "b"},
};

Value unite(Call& call)
{
    const std::vector<Path> sources = meshPaths(call);
    if (sources.size() < 2)
        fail("polyUnite: more than one polygon object has to be given or selected");
    const int mergeUVs = call.integer("mergeUVSets", 1);
    if (mergeUVs < 0 || mergeUVs > 2)
        fail("polyUnite: mergeUVSets is 0, 1 or 2, not " + std::to_string(mergeUVs));
    for (const Path& p : sources)
        readMesh(*p.nodes.back());
    const bool history = call.boolean("constructionHistory", true);
    Node*      node = edit::createNode(findNodeType("polyUnite"));
    edit::setNumber(cellOf(*node, "mergeUVSets"), mergeUVs);
    edit::setNumber(cellOf(*node, "nodeState"), call.integer("nodeState"));
    for (size_t i = 0; i < sources.size(); ++i) {
        Node& shape = *sources[i].nodes.back();
        edit::connect(cellOf(shape, "outMesh"), edit::addElement(cellOf(*node, "inputPoly"), int(i)));
        edit::connect(*cellOf(shape, "worldMatrix").element(int(dag::instanceNumber(sources[i]))), edit::addElement(cellOf(*node, "inputMat"), int(i)));
    }
    Node& whole = newObject(call.str("name", "polySurface#"), nullptr, cellOf(*node, "output"), history);
    for (const Path& p : sources)
        if (!history)
            removeSource(p);
        else
            edit::setNumber(cellOf(*p.nodes.back(), "intermediateObject"), 1);
    if (call.has("centerPivot"))
        execute("xform", std::vector<Value>{"-centerPivots", dag::fullName(dag::firstPath(whole))});
    selection::set({itemOf(whole)});
    if (history)
        return Value(Strings{nodeName(whole), nodeName(*node)});
    edit::deleteNode(*node);
    return Value(Strings{nodeName(whole)});
}

constexpr Flag kSeparate[] = {
    {"n", "name", "s"}, {"ch", "constructionHistory", "b"}, {"rs", "removeShells", "i", kCreate, true}, {"nds", "nodeState", "i"}, {"cch", "caching", "b"},
    {"uopa", "useOldPolyArchitecture", "b"},
};

Value separate(Call& call)
{
    const std::vector<Path> sources = meshPaths(call);
    if (sources.size() != 1)
        fail("polySeparate: one polygon object has to be given or selected");
    Node&     source = *sources[0].nodes.back();
    const int count = readMesh(source)->body->topology().shells().count();
    if (count < 2)
        fail("polySeparate: '" + nodeName(source) + "' has one shell only");
    std::vector<char> removed(size_t(count), 0);
    for (const auto* use : call.all("removeShells")) {
        const int s = use->args[0].asInt();
        if (s < 0 || s >= count)
            fail("polySeparate: '" + nodeName(source) + "' has no shell " + std::to_string(s));
        removed[size_t(s)] = 1;
    }
    const bool history = call.boolean("constructionHistory", true);
    Node*      node = edit::createNode(findNodeType("polySeparate"), call.str("name"));
    const int  parts = int(std::count(removed.begin(), removed.end(), 0));
    edit::setNumber(cellOf(*node, "icount"), parts);
    edit::setNumber(cellOf(*node, "nodeState"), call.integer("nodeState"));
    for (int s = 0, i = 0; s < count; ++s)
        if (removed[size_t(s)])
            edit::setNumber(edit::addElement(cellOf(*node, "removeShells"), i++), s);
    edit::connect(cellOf(source, "outMesh"), cellOf(*node, "inputPoly"));
    Node*             group = sources[0].nodes[sources[0].nodes.size() - 2].get();
    Strings           out;
    std::vector<Item> made;
    for (int i = 0; i < parts; ++i) {
        Node& part = newObject("polySurface#", group, *cellOf(*node, "output").element(i), history);
        made.push_back(itemOf(part));
    }
    if (history)
        edit::setNumber(cellOf(source, "intermediateObject"), 1);
    else {
        edit::deleteNode(*node);
        removeSource(sources[0]);
    }
    for (const Item& item : made)
        out.push_back(itemName(item));
    if (history)
        out.push_back(nodeName(*node));
    selection::set(made);
    return out.empty() ? Value() : Value(out);
}

// ---- polySelect --------------------------------------------------------------------------------------------------

constexpr Flag kSelectFlags[] = {
    {"ets", "extendToShell", "i", kCreate, true}, {"el", "edgeLoop", "i", kCreate, true}, {"er", "edgeRing", "i", kCreate, true}, {"eb", "edgeBorder", "i", kCreate, true},
    {"ns", "noSelection"}, {"ass", "asSelectString"}, {"add", "add"}, {"r", "replace"}, {"d", "deselect"}, {"tgl", "toggle"},
};

/// What a flag makes of one face or edge: numbers of elements of the same kind.
struct Grower
{
    const char* flag;
    MFn::Type   type;
    const char* called;
    std::vector<int> (*grow)(const Topology&, int);
};

std::vector<int> shellOf(const Topology& t, int face)
{
    const auto faces = (*t.shells().faces)[t.shells().ofFace[size_t(face)]];
    return {faces.begin(), faces.end()};
}

const Grower kGrowers[] = {
    {"extendToShell", MFn::kMeshPolygonComponent, "face", shellOf},
    {"edgeLoop", MFn::kMeshEdgeComponent, "edge", edgeLoop},
    {"edgeRing", MFn::kMeshEdgeComponent, "edge", edgeRing},
    {"edgeBorder", MFn::kMeshEdgeComponent, "edge", edgeBorder},
};

/// The elements as text, in runs.
void addTexts(Node& shape, MFn::Type type, const std::vector<int>& elements, Strings& out)
{
    if (elements.empty())
        return;
    Item item = itemOf(shape);
    item.component = makeComponent(type);
    addElements(*item.component, elements.data(), elements.size());
    for (const std::string& text : names::texts(item))
        out.push_back(text);
}

void selectTexts(const Call& call, const Strings& texts)
{
    std::vector<Value> args;
    args.emplace_back(call.has("add") ? "-add" : call.has("deselect") ? "-deselect" : call.has("toggle") ? "-toggle" : "-replace");
    for (const std::string& t : texts)
        args.emplace_back(t);
    if (!texts.empty())
        execute("select", args);
}

Value polySelect(Call& call)
{
    Ints    found;
    Strings texts;
    const bool named = !call.has("noSelection") || call.has("asSelectString");
    for (const PolyTarget& t : polyTargets(call)) {
        const Ref<MeshData> mesh = readMesh(*t.shape);
        const Topology&     topology = mesh->body->topology();
        for (const Grower& g : kGrowers)
            for (const auto* use : call.all(g.flag)) {
                const int i = use->args[0].asInt();
                if (i < 0 || i >= (g.type == MFn::kMeshPolygonComponent ? topology.faceCount() : topology.edgeCount()))
                    fail("polySelect: '" + nodeName(*t.shape) + "' has no " + g.called + " " + std::to_string(i));
                const std::vector<int> grown = g.grow(topology, i);
                found.insert(found.end(), grown.begin(), grown.end());
                if (named)
                    addTexts(*t.shape, g.type, grown, texts);
            }
    }
    if (call.uses.empty())
        fail("polySelect: a flag that says what to select has to be given");
    if (!call.has("noSelection"))
        selectTexts(call, texts);
    return call.has("asSelectString") ? Value(texts) : Value(found);
}

const Command kCommands[] = {
    {"polyMergeVertex", kMergeFlags, operation},  {"polyDelVertex", kPlainFlags, operation}, {"polyDelFacet", kPlainFlags, operation},
    {"polyTriangulate", kPlainFlags, operation},  {"polyNormal", kNormalFlags, operation},   {"polyUnite", kUnite, unite},
    {"polySeparate", kSeparate, separate},        {"polySelect", kSelectFlags, polySelect},
};

}  // namespace

void registerPolyOperationCommands() { add(kCommands); }

}  // namespace mirk::command
