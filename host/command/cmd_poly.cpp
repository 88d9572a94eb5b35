// Polygon primitives and polyCreateFacet.
#include "command/cmd_util.h"
#include "command/maker.h"
#include "command/shape_edit.h"
#include "mesh/mesh.h"

namespace mirk::command {

namespace {

constexpr uint8_t kAll = kCreate | kQuery | kEdit;

#define MIRK_MAKER_FLAGS                                                                                                     \
    {"n", "name", "s", kAll}, {"ch", "constructionHistory", "b", kAll}, {"o", "object", "b"}, {"cuv", "createUVs", "i", kAll},         \
    {"ax", "axis", "fff", kAll}, {"nds", "nodeState", "i", kAll}, {"cch", "caching", "b", kAll}, {"tx", "texture", "i", kAll}

constexpr MakerFlag kBoxAttributes[] = {
    {"width", "width"}, {"height", "height"}, {"depth", "depth"}, {"subdivisionsX", "subdivisionsWidth"}, {"subdivisionsY", "subdivisionsHeight"},
    {"subdivisionsZ", "subdivisionsDepth"}, {"subdivisionsWidth", "subdivisionsWidth"}, {"subdivisionsHeight", "subdivisionsHeight"},
    {"subdivisionsDepth", "subdivisionsDepth"}, {"axis", "axis"}, {"createUVs", "createUVs"}, {"nodeState", "nodeState"},
};
constexpr MakerFlag kRoundAttributes[] = {
    {"radius", "radius"}, {"height", "height"}, {"sectionRadius", "sectionRadius"}, {"twist", "twist"}, {"subdivisionsX", "subdivisionsAxis"},
    {"subdivisionsY", "subdivisionsHeight"}, {"subdivisionsZ", "subdivisionsCaps"}, {"subdivisionsAxis", "subdivisionsAxis"},
    {"subdivisionsHeight", "subdivisionsHeight"}, {"subdivisionsCaps", "subdivisionsCaps"}, {"axis", "axis"}, {"createUVs", "createUVs"}, {"nodeState", "nodeState"},
};

constexpr Flag kBoxFlags[] = {
    MIRK_MAKER_FLAGS, {"w", "width", "l", kAll}, {"h", "height", "l", kAll}, {"d", "depth", "l", kAll}, {"sx", "subdivisionsX", "i", kAll},
    {"sy", "subdivisionsY", "i", kAll}, {"sz", "subdivisionsZ", "i", kAll}, {"sw", "subdivisionsWidth", "i", kAll}, {"sh", "subdivisionsHeight", "i", kAll},
    {"sd", "subdivisionsDepth", "i", kAll},
};
constexpr Flag kRoundFlags[] = {
    MIRK_MAKER_FLAGS, {"r", "radius", "l", kAll}, {"h", "height", "l", kAll}, {"sr", "sectionRadius", "l", kAll}, {"tw", "twist", "a", kAll},
    {"sx", "subdivisionsX", "i", kAll}, {"sy", "subdivisionsY", "i", kAll}, {"sz", "subdivisionsZ", "i", kAll}, {"sa", "subdivisionsAxis", "i", kAll},
    {"sh", "subdivisionsHeight", "i", kAll}, {"sc", "subdivisionsCaps", "i", kAll}, {"rcp", "roundCap", "b", kAll},
};
#undef MIRK_MAKER_FLAGS

constexpr Maker kMakers[] = {
    {"polyCube", "mesh", "pCube#", "output", "inMesh", kBoxAttributes},       {"polyPlane", "mesh", "pPlane#", "output", "inMesh", kBoxAttributes},
    {"polySphere", "mesh", "pSphere#", "output", "inMesh", kRoundAttributes}, {"polyCylinder", "mesh", "pCylinder#", "output", "inMesh", kRoundAttributes},
    {"polyCone", "mesh", "pCone#", "output", "inMesh", kRoundAttributes},     {"polyTorus", "mesh", "pTorus#", "output", "inMesh", kRoundAttributes},
};

Value primitive(Call& call)
{
    for (const Maker& m : kMakers)
        if (std::string_view(m.nodeType) == call.command->name)
            return runMaker(call, m);
    return {};
}

constexpr Flag kFacet[] = {
    {"p", "point", "lll", kCreate, true}, {"n", "name", "s"}, {"ch", "constructionHistory", "b"}, {"s", "subdivision", "i"}, {"tx", "texture", "i"}, {"hp", "hole"},
    {"w", "width", "f"},
};

Value createFacet(Call& call)
{
    auto points = make<Buffer<float>>();
    std::vector<int> connects;
    for (const auto* use : call.all("point"))
    {
        connects.push_back(int(connects.size()));
        for (const Value& v : use->args)
            points->push(float(v.asFloat()));
    }
    if (call.has("hole"))
        fail("polyCreateFacet: faces with holes cannot be made");
    if (connects.size() < 3)
        fail("polyCreateFacet: at least three points have to be given");
    const int   count = int(connects.size());
    std::string why;
    auto        topology = Topology::create(count, &count, 1, connects.data(), connects.size(), &why);
    if (!topology)
        fail("polyCreateFacet: " + why);
    auto data = make<MeshData>();
    data->body->reset(points, topology);
    // UVs from the face's own plane, as far as it has one: x and y, or what is longest
    auto uvs = make<Buffer<F2>>();
    for (int i = 0; i < count; ++i)
        uvs->push({(*points)[size_t(i) * 3], (*points)[size_t(i) * 3 + 1]});
    data->body->writeUVSet(0).uvs = uvs;
    data->body->assignUVs(0, make<Buffer<int>>(connects.data(), connects.size()));
    Node* transform = dag::createNode(findNodeType("transform"), call.str("name", "polySurface#"));
    Node* shape = dag::createNode(findNodeType("mesh"), shapeName(transform->name), transform);
    setGeometry(*shape, data);
    selection::set({itemOf(*transform)});
    return Value(Strings{nodeName(*transform)});
}

const Command kCommands[] = {
    {"polyCube", kBoxFlags, primitive},       {"polyPlane", kBoxFlags, primitive},      {"polySphere", kRoundFlags, primitive},
    {"polyCylinder", kRoundFlags, primitive}, {"polyCone", kRoundFlags, primitive},     {"polyTorus", kRoundFlags, primitive},
    {"polyCreateFacet", kFacet, createFacet},
};

}  // namespace

void registerPolyCommands() { add(kCommands); }

}  // namespace mirk::command
