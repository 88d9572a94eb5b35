// Geometry as argument lists: what `setAttr -type "mesh"`, "nurbsCurve" and "nurbsSurface" take and scene files hold.
#pragma once
#include "command/cmd_util.h"
#include "data/data.h"

namespace mirk { class MeshBody; class CurveBody; class SurfaceBody; }

namespace mirk::command {

Ref<Data> meshFromArguments(Arguments& args);
Ref<Data> curveFromArguments(Arguments& args);
Ref<Data> surfaceFromArguments(Arguments& args);

/// The arguments that give the body back, exactly.
std::string meshText(const MeshBody& mesh);
std::string curveText(const CurveBody& curve);
std::string surfaceText(const SurfaceBody& surface);

/// The shortest decimals that read back as the same float; what is not finite as nan, inf, -inf.
std::string floatText(float value);
std::string doubleText(double value);

}  // namespace mirk::command
