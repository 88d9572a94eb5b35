#include "command/commands.h"

#include "command/anim_commands.h"
#include "command/cmd_util.h"
#include "command/texture_commands.h"

namespace mirk {

void registerCommands()
{
    using namespace command;
    registerNodeCommands();
    registerGetSetCommands();
    registerConnectCommands();
    registerListCommands();
    registerSelectCommands();
    registerAttrCommands();
    registerDagCommands();
    registerTransformCommands();
    registerPolyCommands();
    registerMeshEditCommands();
    registerPolyOperationCommands();
    registerPolyCutCommands();
    registerNurbsCommands();
    registerSceneCommands();
    registerTimeCommands();
    registerMeasureCommands();
    registerDisplayCommands();
    registerSystemCommands();
    registerPluginCommands();
    registerKeyCommands();
    registerKeyEditCommands();
    registerSetCommands();
    registerParticleCommands();
    registerInstancerCommands();
    registerShadingCommands();
}

}  // namespace mirk
