#include "data/dyn_arrays.h"

#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MIntArray.h>
#include <maya/MStringArray.h>
#include <maya/MVectorArray.h>

#include "data/array_access.h"
#include "data/fn_base.h"

namespace mirk {

Ref<Data> DynArrayAttrsData::share() const
{
    auto copy = make<DynArrayAttrsData>();
    copy->channels = channels;
    return copy;
}

const DynArrayAttrsData::Channel* DynArrayAttrsData::find(const std::string& name) const
{
    for (const Channel& c : channels)
        if (c.name == name)
            return &c;
    return nullptr;
}

}  // namespace mirk

using namespace mirk;

namespace {

std::string text(const MString& s) { return {s.asChar(), s.length()}; }

template <class A, class B>
A copiedChannel(const MObject& object, const MString& name, MStatus* status)
{
    const auto* data = objectAs<DynArrayAttrsData>(object);
    const auto* channel = data ? data->find(text(name)) : nullptr;
    const auto* buffer = channel ? std::get_if<Ref<B>>(&channel->values) : nullptr;
    report(status, buffer ? MS::kSuccess : data ? MS::kInvalidParameter : MS::kFailure);
    return buffer ? arrayFrom<A>(make<B>(**buffer)) : A();
}

template <class A, class B>
A openChannel(const MObject& object, const MString& name, MStatus* status)
{
    auto* data = objectAs<DynArrayAttrsData>(object);
    if (!data)
        return reported(status, MS::kFailure, A());
    const std::string wanted = text(name);
    for (auto& channel : data->channels)
        if (channel.name == wanted) {
            auto* buffer = std::get_if<Ref<B>>(&channel.values);
            report(status, buffer ? MS::kSuccess : MS::kInvalidParameter);
            return buffer ? aliasAs<A>(detach(*buffer)) : A();
        }
    auto made = make<B>();
    data->channels.push_back({wanted, made});
    report(status, MS::kSuccess);
    return aliasAs<A>(*made);
}

}  // namespace

MFnArrayAttrsData::MFnArrayAttrsData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnArrayAttrsData::~MFnArrayAttrsData() = default;
MFn::Type MFnArrayAttrsData::type() const { return MFn::kDynArrayAttrsData; }

MObject MFnArrayAttrsData::create(MStatus* s)
{
    object_ = wrap(make<DynArrayAttrsData>());
    return reported(s, MS::kSuccess, object_);
}

MStatus MFnArrayAttrsData::clear()
{
    auto* data = objectAs<DynArrayAttrsData>(object_);
    if (!data)
        return MS::kFailure;
    data->channels.clear();
    return MS::kSuccess;
}

unsigned MFnArrayAttrsData::count(MStatus* s) const
{
    const auto* data = objectAs<DynArrayAttrsData>(object_);
    return reported(s, data ? MS::kSuccess : MS::kFailure, data ? unsigned(data->channels.size()) : 0u);
}

MStringArray MFnArrayAttrsData::list(MStatus* s) const
{
    MStringArray names;
    const auto*  data = objectAs<DynArrayAttrsData>(object_);
    report(s, data ? MS::kSuccess : MS::kFailure);
    if (data)
        for (const auto& c : data->channels)
            names.append(MString(c.name.data(), int(c.name.size())));
    return names;
}

bool MFnArrayAttrsData::checkArrayExist(const MString name, Type& type, MStatus* s) const
{
    const auto* data = objectAs<DynArrayAttrsData>(object_);
    const auto* channel = data ? data->find(text(name)) : nullptr;
    type = channel ? Type(kVectorArray + int(channel->values.index())) : kInvalid;
    return reported(s, data ? MS::kSuccess : MS::kFailure, channel != nullptr);
}

#define MIRK_CHANNEL_KIND(get, edit, Array, Storage)                                                                      \
    Array MFnArrayAttrsData::get(const MString n, MStatus* s) const { return copiedChannel<Array, Storage>(object_, n, s); } \
    Array MFnArrayAttrsData::edit(const MString n, MStatus* s) { return openChannel<Array, Storage>(object_, n, s); }

MIRK_CHANNEL_KIND(getVectorData, vectorArray, MVectorArray, Buffer<MVector>)
MIRK_CHANNEL_KIND(getDoubleData, doubleArray, MDoubleArray, Buffer<double>)
MIRK_CHANNEL_KIND(getIntData, intArray, MIntArray, Buffer<int>)
MIRK_CHANNEL_KIND(getStringData, stringArray, MStringArray, ElementBuffer<MString>)
