// Nodes of shading networks.
#include "command/cmd_util.h"
#include "command/texture_commands.h"

namespace mirk::command {
namespace {

constexpr Flag kShadingNode[] = {
    {"al", "asLight"}, {"app", "asPostProcess"}, {"ar", "asRendering"}, {"as", "asShader"}, {"at", "asTexture"}, {"au", "asUtility"},
    {"icm", "isColorManaged"}, {"n", "name", "s"}, {"p", "parent", "s"}, {"s", "shared"}, {"ss", "skipSelect"},
};

/// As createNode; the flag that says what the node is for has to be there, and the type has to be what it says.
Value shadingNode(Call& call)
{
    const Strings args = call.names();
    if (args.size() != 1)
        fail("shadingNode: one node type has to be given");
    struct Kind { const char* flag; const char* classification; const char* what; };
    constexpr Kind kKinds[] = {{"asShader", "shader", "shader"}, {"asTexture", "texture", "texture"}, {"asUtility", "", ""},
                               {"asLight", "light", "light"}, {"asPostProcess", "postprocess", "post process"}, {"asRendering", "rendering", "rendering node"}};
    const Kind* kind = nullptr;
    for (const Kind& k : kKinds)
        if (call.has(k.flag)) {
            if (kind)
                fail("shadingNode: -" + std::string(kind->flag) + " and -" + k.flag + " exclude each other");
            kind = &k;
        }
    if (!kind)
        fail("shadingNode: one of -asShader, -asTexture, -asUtility, -asLight, -asPostProcess and -asRendering has to be given");
    const NodeType* type = findNodeType(args[0]);
    if (type && type->classification.find(kind->classification) == std::string::npos)
        fail("shadingNode: '" + args[0] + "' is no " + kind->what);
    std::vector<Value> create;
    for (const char* text : {"name", "parent"})
        if (call.has(text))
            create.insert(create.end(), {Value(std::string("-") + text), Value(call.str(text))});
    for (const char* plain : {"shared", "skipSelect"})
        if (call.has(plain))
            create.emplace_back(std::string("-") + plain);
    create.emplace_back(args[0]);
    return execute("createNode", create);
}

const Command kCommands[] = {
    {"shadingNode", kShadingNode, shadingNode},
};

}  // namespace

void registerShadingCommands() { add(kCommands); }

}  // namespace mirk::command
