// Contexts, and plug reads that take one.
#include <maya/MDGContext.h>

#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>

#include "api/playback.h"
#include "graph/access.h"
#include "graph/context.h"

using namespace mirk;

namespace {

eval::When whenOf(const MDGContext& context)
{
    if (context.isNormal())
        return {};
    MTime time;
    context.getTime(time);
    return {false, time.as(MTime::kSeconds)};
}

MTime uiTime(double seconds) { return MTime(MTime(seconds, MTime::kSeconds).as(MTime::uiUnit()), MTime::uiUnit()); }

MDGContext contextOf(const eval::When& when) { return when.normal ? MDGContext() : MDGContext(uiTime(when.seconds)); }

}  // namespace

MDGContext MDGContext::fsNormal;

bool MDGContext::isNormal(MStatus* s) const
{
    if (s) *s = MS::kSuccess;
    return normal_;
}

bool MDGContext::isCurrent(MStatus* s) const
{
    if (s) *s = MS::kSuccess;
    const eval::When now = eval::now();
    return now.normal ? normal_ : !normal_ && time_ == MTime(now.seconds, MTime::kSeconds);
}

MStatus MDGContext::getTime(MTime& time) const
{
    const eval::At normal({});
    time = normal_ ? uiTime(playback::currentTime()) : time_;
    return MS::kSuccess;
}

MDGContext MDGContext::makeCurrent(MStatus* s) const
{
    if (s) *s = MS::kSuccess;
    return contextOf(eval::enter(whenOf(*this)));
}

MDGContext MDGContext::current(MStatus* s)
{
    if (s) *s = MS::kSuccess;
    return contextOf(eval::now());
}

#define MIRK_READ(Type, method) \
    Type MPlug::method(const MDGContext& context, MStatus* s) const \
    { \
        const eval::At at(whenOf(context)); \
        return method(s); \
    } \
    MStatus MPlug::getValue(Type& value, const MDGContext& context) const \
    { \
        MStatus s; \
        value = method(context, &s); \
        return s; \
    }
MIRK_READ(bool, asBool)
MIRK_READ(char, asChar)
MIRK_READ(short, asShort)
MIRK_READ(int, asInt)
MIRK_READ(MInt64, asInt64)
MIRK_READ(float, asFloat)
MIRK_READ(double, asDouble)
MIRK_READ(MString, asString)
MIRK_READ(MObject, asMObject)
MIRK_READ(MTime, asMTime)
MIRK_READ(MAngle, asMAngle)
MIRK_READ(MDistance, asMDistance)
#undef MIRK_READ

MDataHandle MPlug::asMDataHandle(const MDGContext& context, MStatus* s) const
{
    Cell* c = PlugAccess::cell(*this);
    if (s) *s = c ? MS::kSuccess : MS::kFailure;
    return c ? HandleAccess::handle(eval::copyAt(*c, whenOf(context)), true) : MDataHandle();
}
