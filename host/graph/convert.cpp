#include "graph/convert.h"

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MTime.h>

#include "command/registry.h"
#include "graph/edit.h"
#include "graph/undo.h"

namespace mirk::edit {
namespace {

using Unit = MFnUnitAttribute;

constexpr double kTicksPerSecond = 6000;   // what the factors of time conversions count in

/// kInvalid for plain numbers.
Unit::Type unitOf(const Attribute& a) { return a.kind == AttrKind::kUnit ? a.unit : Unit::kInvalid; }

bool isNumber(const Attribute& a) { return storeDimension(a.store) == 1; }

/// What one internal unit (radian, centimetre, tick) is in the user's unit.
double shownPerInternal(Unit::Type unit)
{
    switch (unit) {
    case Unit::kAngle:    return MAngle(1, MAngle::kRadians).as(MAngle::uiUnit());
    case Unit::kDistance: return MDistance(1, MDistance::kCentimeters).as(MDistance::uiUnit());
    case Unit::kTime:     return MTime(1, MTime::kSeconds).as(MTime::uiUnit()) / kTicksPerSecond;
    default:              return 1;
    }
}

double factorBetween(const Attribute& source, const Attribute& target)
{
    const Unit::Type from = unitOf(source), to = unitOf(target);
    return from == to ? 1 : shownPerInternal(from) / shownPerInternal(to);
}

bool needsConversion(const Cell& source, const Cell& target)
{
    if (source.isMulti() || target.isMulti() || !isNumber(*source.attr) || !isNumber(*target.attr))
        return false;
    return !isConversion(*source.node) && !isConversion(*target.node) && factorBetween(*source.attr, *target.attr) != 1;
}

bool partsNeedConversion(Cell& source, Cell& target)
{
    const size_t n = target.attr->children.size();
    if (source.isMulti() || target.isMulti() || source.attr->children.size() != n)
        return false;
    for (size_t i = 0; i < n; ++i)
        if (needsConversion(*source.child(i), *target.child(i)))
            return true;
    return false;
}

void connectThroughNode(Cell& source, Cell& target, bool force)
{
    const bool  fromTime = unitOf(*source.attr) == Unit::kTime, toTime = unitOf(*target.attr) == Unit::kTime;
    const char* type = fromTime ? "timeToUnitConversion" : toTime ? "unitToTimeConversion" : "unitConversion";
    Node* node = createNode(findNodeType(type), std::string(type) + "#");
    setNumber(*node->cell(node->findAttribute("conversionFactor")), factorBetween(*source.attr, *target.attr));
    connect(source, *node->cell(node->findAttribute("input")));
    connect(*node->cell(node->findAttribute("output")), target, force);
}

/// All or nothing.
template <class F>
void whole(const char* name, F&& work)
{
    undo::Scope scope(name);
    try {
        work();
    } catch (...) {
        scope.rollback();
        throw;
    }
}

}  // namespace

bool isConversion(const Node& node)
{
    return node.apiType() == MFn::kUnitConversion || node.apiType() == MFn::kTimeToUnitConversion ||
           node.apiType() == MFn::kUnitToTimeConversion;
}

Cell* behindConversion(Cell* source)
{
    while (source && isConversion(*source->node)) {
        Cell* input = source->node->cellIfAny(source->node->findAttribute("input"));
        if (!input || !input->source)
            break;
        source = input->source;
    }
    return source;
}

void connectConverting(Cell& source, Cell& target, bool force)
{
    if (needsConversion(source, target)) {
        checkConnect(source, target, force);
        whole("connect", [&] { connectThroughNode(source, target, force); });
    } else if (partsNeedConversion(source, target)) {
        checkConnect(source, target, force);
        whole("connect", [&] {
            if (target.source)
                disconnect(*target.source, target);
            for (size_t i = 0; i < target.attr->children.size(); ++i)
                connectConverting(*source.child(i), *target.child(i), force);
        });
    } else
        connect(source, target, force);
}

void disconnectConverting(Cell& source, Cell& target)
{
    if (target.source != &source && target.source && behindConversion(target.source) == &source)
        disconnect(*target.source, target);   // an unused conversion goes with its last connection
    else if (target.source != &source && partsNeedConversion(source, target))
        whole("disconnect", [&] {
            for (size_t i = 0; i < target.attr->children.size(); ++i)
                disconnectConverting(*source.child(i), *target.child(i));
        });
    else
        disconnect(source, target);
}

}  // namespace mirk::edit
