#include "nodes/transform_limits.h"

#include <algorithm>
#include <string>

#include <maya/MPxNode.h>

#include "nodes/attr.h"
#include "nodes/dag_attrs.h"

namespace mirk::nodes {
namespace {

// long name between "min" or "max" and "Limit", letter in short names, default limit
struct Kind { const char* name; char letter; double limit; };
constexpr Kind kKinds[] = {{"Trans", 't', 1}, {"Rot", 'r', 0.78539816339744828}, {"Scale", 's', 1}};

struct Attributes { const Attribute *value = nullptr, *enable = nullptr; };
Attributes g_limits[3][2];   // of kinds, then min and max

std::string longName(const Kind& k, bool max, const std::string& axis, const char* end)
{
    return std::string(max ? "max" : "min") + k.name + axis + "Limit" + end;
}

MObject channel(const Kind& k, const std::string& name, const std::string& shortName, double value)
{
    if (k.letter == 's')
        return number(name.c_str(), shortName.c_str(), Number::kDouble, value);
    return unit(name.c_str(), shortName.c_str(), k.letter == 'r' ? Unit::kAngle : Unit::kDistance, value);
}

MObject limitOf(const Kind& k, bool max)
{
    MObject parts[3];
    for (int i = 0; i < 3; ++i)
        parts[i] = channel(k, longName(k, max, std::string(1, "XYZ"[i]), ""),
                           std::string(max ? "x" : "m") + k.letter + "xyz"[i] + "l", max ? k.limit : -k.limit);
    return tuple(longName(k, max, "", "").c_str(), (std::string(max ? "mx" : "mn") + k.letter + "l").c_str(), {parts[0], parts[1], parts[2]});
}

MObject enableOf(const Kind& k, bool max)
{
    MObject parts[3];
    const std::string start = std::string(max ? "x" : "m") + k.letter;
    for (int i = 0; i < 3; ++i)
        parts[i] = number(longName(k, max, std::string(1, "XYZ"[i]), "Enable").c_str(), (start + "xyz"[i] + "e").c_str(), Number::kBoolean);
    return tuple(longName(k, max, "", "Enable").c_str(), (start + "le").c_str(), {parts[0], parts[1], parts[2]});
}

}  // namespace

void addLimitAttributes(std::initializer_list<MObject> outputs)
{
    for (const Kind& k : kKinds)
        for (bool max : {false, true}) {
            const MObject value = limitOf(k, max), enable = enableOf(k, max);
            add({value, enable});
            affects({value, enable}, outputs);
        }
}

void findLimitAttributes(const NodeType& transform)
{
    for (int i = 0; i < 3; ++i)
        for (bool max : {false, true})
            g_limits[i][max] = {transform.find(longName(kKinds[i], max, "", "")), transform.find(longName(kKinds[i], max, "", "Enable"))};
}

void limit(Node& node, Limited what, double channels[3])
{
    for (bool max : {false, true}) {
        const Attributes& a = g_limits[int(what)][max];
        if (!node.cellIfAny(a.enable))   // nobody has touched the switches
            continue;
        double on[3], bound[3];
        pulledTriple(node, a.enable, on);
        pulledTriple(node, a.value, bound);
        for (int i = 0; i < 3; ++i)
            if (on[i] != 0)
                channels[i] = max ? std::min(channels[i], bound[i]) : std::max(channels[i], bound[i]);
    }
}

}  // namespace mirk::nodes
