#include "nodes/attr.h"

#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPxNode.h>

#include "data/mobject.h"
#include "graph/attribute.h"

namespace mirk::nodes {

MObject flagged(MObject attribute, unsigned flags)
{
    MFnAttribute fn(attribute);
    fn.setKeyable(flags & kKey);
    if (flags & kChannel)
        fn.setChannelBox(true);
    if (flags & kOut) {
        fn.setWritable(false);
        fn.setStorable(false);
    }
    if (flags & kNoStore)
        fn.setStorable(false);
    if (flags & kHide)
        fn.setHidden(true);
    if (flags & (kMulti | kBuilder | kLoose))
        fn.setArray(true);
    if (flags & kBuilder)
        fn.setUsesArrayDataBuilder(true);
    if (flags & kLoose)
        fn.setIndexMatters(false);
    if (flags & kWorld) {
        fn.setArray(true);
        fn.setWorldSpace(true);
    }
    if (flags & kReset)
        fn.setDisconnectBehavior(MFnAttribute::kReset);
    if (flags & kColor)
        fn.setUsedAsColor(true);
    return attribute;
}

MObject number(const char* longName, const char* shortName, Number::Type type, double value, unsigned flags)
{
    MFnNumericAttribute fn;
    return flagged(fn.create(longName, shortName, type, value), flags);
}

MObject number(const char* longName, const char* shortName, Number::Type type, double value, double min, double max,
               unsigned flags)
{
    MObject attribute = number(longName, shortName, type, value, flags);
    MFnNumericAttribute fn(attribute);
    fn.setMin(min);
    if (max > min)
        fn.setMax(max);
    return attribute;
}

MObject unit(const char* longName, const char* shortName, Unit::Type type, double value, unsigned flags)
{
    MFnUnitAttribute fn;
    return flagged(fn.create(longName, shortName, type, value), flags);
}

namespace {

MObject joined(const char* longName, const char* shortName, const MObject (&children)[3], unsigned flags)
{
    MFnNumericAttribute fn;
    return flagged(fn.create(longName, shortName, children[0], children[1], children[2]), flags);
}

std::string with(const char* name, char letter) { return std::string(name) + letter; }

}  // namespace

MObject triple(const char* longName, const char* shortName, Number::Type child, double value, unsigned flags, const char* suffix)
{
    MObject children[3];
    for (int i = 0; i < 3; ++i)
        children[i] = number(with(longName, suffix[i]).c_str(), with(shortName, char(suffix[i] + 32)).c_str(), child, value,
                             flags & (kKey | kOut | kHide | kNoStore | kChannel));
    return joined(longName, shortName, children, flags);
}

MObject triple(const char* longName, const char* shortName, Unit::Type child, double value, unsigned flags)
{
    MObject children[3];
    for (int i = 0; i < 3; ++i)
        children[i] = unit(with(longName, "XYZ"[i]).c_str(), with(shortName, "xyz"[i]).c_str(), child, value,
                           flags & (kKey | kOut | kHide | kNoStore | kChannel));
    return joined(longName, shortName, children, flags);
}

MObject tuple(const char* longName, const char* shortName, std::initializer_list<MObject> children, unsigned flags)
{
    MFnNumericAttribute fn;
    const MObject*      c = children.begin();
    const auto          nth = [&](size_t i) { return i < children.size() ? c[i] : MObject(); };
    return flagged(children.size() == 4 ? fn.create(longName, shortName, nth(0), nth(1), nth(2), nth(3))
                                        : fn.create(longName, shortName, nth(0), nth(1), nth(2)),
                   flags);
}

MObject typed(const char* longName, const char* shortName, MFnData::Type type, unsigned flags)
{
    MFnTypedAttribute fn;
    return flagged(fn.create(longName, shortName, type), flags);
}

MObject matrix(const char* longName, const char* shortName, unsigned flags)
{
    MFnMatrixAttribute fn;
    return flagged(fn.create(longName, shortName), flags);
}

MObject message(const char* longName, const char* shortName, unsigned flags)
{
    MFnMessageAttribute fn;
    return flagged(fn.create(longName, shortName), flags);
}

MObject choice(const char* longName, const char* shortName, int value, std::initializer_list<const char*> fields, unsigned flags)
{
    MFnEnumAttribute fn;
    MObject          attribute = fn.create(longName, shortName, short(value));
    short            i = 0;
    for (const char* f : fields)
        fn.addField(f, i++);
    return flagged(attribute, flags);
}

MObject compound(const char* longName, const char* shortName, std::initializer_list<MObject> children, unsigned flags)
{
    MFnCompoundAttribute fn;
    MObject              attribute = fn.create(longName, shortName);
    for (const MObject& c : children)
        fn.addChild(c);
    return flagged(attribute, flags);
}

MObject childOf(const MObject& parent, unsigned index)
{
    Attribute* a = objectAs<Attribute>(parent);
    return a ? wrap(a->child(index)) : MObject();
}

void add(std::initializer_list<MObject> attributes)
{
    for (const MObject& a : attributes)
        CHECK_MSTATUS(MPxNode::addAttribute(a));
}

void affects(std::initializer_list<MObject> inputs, std::initializer_list<MObject> outputs)
{
    for (const MObject& in : inputs)
        for (const MObject& out : outputs)
            CHECK_MSTATUS(MPxNode::attributeAffects(in, out));
}

}  // namespace mirk::nodes
