// The draw overrides that plug-ins registered.
#pragma once
#include <string>
#include <string_view>

class MObject;
namespace MHWRender { class MPxDrawOverride; }

namespace mirk::view {

using DrawOverrideCreator = MHWRender::MPxDrawOverride* (*)(const MObject& node);

/// Who draws the nodes of a classification, which may name several separated by colons
/// ("drawdb/geometry/light:drawdb/geometry/mine"). A registration of "drawdb/geometry/a" also serves
/// "drawdb/geometry/a/b"; the longest one that fits is taken. Null if there is none.
DrawOverrideCreator findDrawOverride(std::string_view classification);

/// The registrant that draws them, empty if there is none.
std::string drawRegistrant(std::string_view classification);

}  // namespace mirk::view
