#include <maya/MFnAttribute.h>

#include "data/mobject.h"
#include "graph/attribute.h"

using namespace mirk;

namespace {

bool tell(MStatus* status, bool good)
{
    if (status) *status = good ? MS::kSuccess : MS::kFailure;
    return good;
}

}  // namespace

MFnAttribute::MFnAttribute(const MObject& object, MStatus* status)
{
    const MStatus s = setObject(object);
    if (status) *status = s;
}

MFn::Type  MFnAttribute::type() const { return MFn::kAttribute; }
Attribute* MFnAttribute::attr() const { return objectAs<Attribute>(object_); }
bool       MFnAttribute::acceptsObject(const MObject& object) const { return object.hasFn(type()); }

MObject MFnAttribute::adopt(Attribute* attribute, MStatus* status)
{
    object_ = wrap(attribute);
    tell(status, attribute);
    return object_;
}

#define MIRK_FLAG(getter, setter, flag)                                     \
    bool MFnAttribute::getter(MStatus* s) const                             \
    {                                                                       \
        Attribute* a = attr();                                              \
        return tell(s, a) && a->is(Attribute::flag);                        \
    }                                                                       \
    MStatus MFnAttribute::setter(bool on)                                   \
    {                                                                       \
        Attribute* a = attr();                                              \
        if (!a) return MS::kFailure;                                        \
        a->set(Attribute::flag, on);                                        \
        return MS::kSuccess;                                                \
    }

MIRK_FLAG(isReadable, setReadable, kReadable)
MIRK_FLAG(isWritable, setWritable, kWritable)
MIRK_FLAG(isConnectable, setConnectable, kConnectable)
MIRK_FLAG(isStorable, setStorable, kStorable)
MIRK_FLAG(isCached, setCached, kCached)
MIRK_FLAG(indexMatters, setIndexMatters, kIndexMatters)
MIRK_FLAG(isKeyable, setKeyable, kKeyable)
MIRK_FLAG(isChannelBoxFlagSet, setChannelBox, kChannelBox)
MIRK_FLAG(isHidden, setHidden, kHidden)
MIRK_FLAG(isUsedAsColor, setUsedAsColor, kUsedAsColor)
MIRK_FLAG(isUsedAsFilename, setUsedAsFilename, kUsedAsFilename)
MIRK_FLAG(isWorldSpace, setWorldSpace, kWorldSpace)
MIRK_FLAG(isInternal, setInternal, kInternal)
MIRK_FLAG(isIndeterminant, setIndeterminant, kIndeterminant)
MIRK_FLAG(isRenderSource, setRenderSource, kRenderSource)
MIRK_FLAG(isAffectsAppearance, setAffectsAppearance, kAffectsAppearance)
MIRK_FLAG(usesArrayDataBuilder, setUsesArrayDataBuilder, kUsesBuilder)
#undef MIRK_FLAG

bool MFnAttribute::isArray(MStatus* s) const { Attribute* a = attr(); return tell(s, a) && a->isArray(); }
bool MFnAttribute::isDynamic(MStatus* s) const { Attribute* a = attr(); return tell(s, a) && a->is(Attribute::kDynamic); }

MStatus MFnAttribute::setArray(bool on)
{
    Attribute* a = attr();
    // cells of an attribute in use are laid out for what it is
    if (!a || (a->slot >= 0 && a->isArray() != on))
        return MS::kFailure;
    a->set(Attribute::kArray, on);
    return MS::kSuccess;
}

MFnAttribute::DisconnectBehavior MFnAttribute::disconnectBehavior(MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) ? DisconnectBehavior(a->disconnect) : kNothing;
}

MStatus MFnAttribute::setDisconnectBehavior(DisconnectBehavior behavior)
{
    Attribute* a = attr();
    if (!a)
        return MS::kFailure;
    a->disconnect = uint8_t(behavior);
    return MS::kSuccess;
}

MStatus MFnAttribute::setNiceNameOverride(const MString& name)
{
    Attribute* a = attr();
    if (!a)
        return MS::kFailure;
    a->niceName = name.asChar();
    return MS::kSuccess;
}

MStatus MFnAttribute::addToCategory(const MString& category)
{
    Attribute* a = attr();
    if (!a)
        return MS::kFailure;
    a->categories.push_back(category.asChar());
    return MS::kSuccess;
}

bool MFnAttribute::hasCategory(const MString& category, MStatus* s) const
{
    Attribute* a = attr();
    if (!tell(s, a))
        return false;
    for (auto& c : a->categories)
        if (category == c.c_str())
            return true;
    return false;
}

MObject MFnAttribute::parent(MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) && a->parent ? wrap(a->parent) : MObject();
}

MStatus MFnAttribute::setParent(const MObject& parent)
{
    Attribute* a = attr();
    auto* p = objectAs<Attribute>(parent);
    if (!a || !p || a->parent || a->slot >= 0 || p->slot >= 0)
        return MS::kFailure;
    a->parent = p;
    a->childIndex = int(p->children.size());
    p->children.push_back(Ref<Attribute>(a));
    return MS::kSuccess;
}

MString MFnAttribute::name(MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) ? MString(a->longName.c_str()) : MString();
}

MString MFnAttribute::shortName(MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) ? MString(a->shortName.c_str()) : MString();
}

bool MFnAttribute::accepts(MFnData::Type type, MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) && a->acceptsData(type);
}

bool MFnAttribute::accepts(MFnNumericData::Type type, MStatus* s) const
{
    Attribute* a = attr();
    if (!tell(s, a))
        return false;
    for (auto t : a->acceptNumeric)
        if (t == type)
            return true;
    return a->kind == AttrKind::kNumeric && a->numeric == type;
}

bool MFnAttribute::accepts(const MTypeId& id, MStatus* s) const
{
    Attribute* a = attr();
    return tell(s, a) && a->pluginDataId == id.id() && id.id() != 0;
}
