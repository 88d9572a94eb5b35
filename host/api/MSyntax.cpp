#include <maya/MSyntax.h>

#include <maya/MString.h>

namespace {

/// Flag names count with and without their dash.
std::string plain(const char* name)
{
    const std::string text = name ? name : "";
    return !text.empty() && text[0] == '-' ? text.substr(1) : text;
}

}  // namespace

MSyntax::Flag* MSyntax::find(const char* flag)
{
    const std::string name = plain(flag);
    for (Flag& f : flags_)
        if (name == plain(f.shortName.c_str()) || name == plain(f.longName.c_str()))
            return &f;
    return nullptr;
}

MStatus MSyntax::addFlag(const char* shortName, const char* longName, MArgType t1, MArgType t2, MArgType t3, MArgType t4, MArgType t5, MArgType t6)
{
    if (plain(shortName).empty() || plain(longName).empty() || find(shortName) || find(longName))
        return MS::kInvalidParameter;
    Flag flag{shortName, longName, {}, false, false, false};
    for (MArgType t : {t1, t2, t3, t4, t5, t6}) {
        if (t == kNoArg)
            break;
        if (t <= kInvalidArgType || t >= kLastArgType)
            return MS::kInvalidParameter;
        flag.args.push_back(t);
    }
    flags_.push_back(flag);
    return MS::kSuccess;
}

MStatus MSyntax::makeFlagMultiUse(const char* flag)
{
    Flag* f = find(flag);
    if (!f)
        return MS::kInvalidParameter;
    f->multi = true;
    return MS::kSuccess;
}

MStatus MSyntax::makeFlagQueryWithFullArgs(const char* flag, bool argsOptional)
{
    Flag* f = find(flag);
    if (!f)
        return MS::kInvalidParameter;
    f->queryArgs = true;
    f->queryOptional = argsOptional;
    return MS::kSuccess;
}

bool MSyntax::canQueryFlagWithFullArgs(const char* flag) const
{
    const Flag* f = const_cast<MSyntax*>(this)->find(flag);
    return f && f->queryArgs;
}

MStatus MSyntax::addArg(MArgType type)
{
    if (type <= kNoArg || type >= kLastArgType)
        return MS::kInvalidParameter;
    args_.push_back(type);
    return MS::kSuccess;
}

MStatus MSyntax::setObjectType(MObjectFormat format, unsigned minimumObjects)
{
    return setObjectType(format, minimumObjects, 0xFFFFFFFF);
}

MStatus MSyntax::setObjectType(MObjectFormat format, unsigned minimumObjects, unsigned maximumObjects)
{
    if (format <= kInvalidObjectFormat || format >= kLastObjectFormat || minimumObjects > maximumObjects)
        return MS::kInvalidParameter;
    format_ = format;
    min_ = minimumObjects;
    max_ = maximumObjects;
    return MS::kSuccess;
}
