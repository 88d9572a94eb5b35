// Data types that plug-ins define: their base class, their registry, and the function set on them.
#include <maya/MFnPluginData.h>
#include <maya/MPxData.h>

#include "data/fn_base.h"
#include "data/plugin_data.h"

namespace mirk {
namespace {

struct DataType
{
    std::string   name;
    unsigned      id;
    PxDataCreator creator;
    MPxData::Type kind;
};

std::vector<DataType>& dataTypes()
{
    static std::vector<DataType> types;
    return types;
}

DataType* findDataType(unsigned id)
{
    for (DataType& t : dataTypes())
        if (t.id == id)
            return &t;
    return nullptr;
}

}  // namespace

bool registerDataType(const std::string& name, unsigned id, PxDataCreator creator, MPxData::Type kind)
{
    if (name.empty() || id == 0 || !creator)
        return false;
    for (DataType& t : dataTypes()) {
        if ((t.name == name) != (t.id == id))
            return false;
        if (t.id == id) {
            t = {name, id, creator, kind};
            return true;
        }
    }
    dataTypes().push_back({name, id, creator, kind});
    return true;
}

bool deregisterDataType(unsigned id)
{
    return std::erase_if(dataTypes(), [id](const DataType& t) { return t.id == id; }) != 0;
}

unsigned dataTypeId(const std::string& name)
{
    for (const DataType& t : dataTypes())
        if (t.name == name)
            return t.id;
    return 0;
}

bool isDataType(unsigned id) { return findDataType(id) != nullptr; }

Ref<PluginData> makePluginData(unsigned id)
{
    const DataType* type = findDataType(id);
    if (!type)
        return {};
    std::unique_ptr<MPxData> object(static_cast<MPxData*>(type->creator()));
    return object ? make<PluginData>(id, type->creator, std::move(object)) : Ref<PluginData>();
}

Ref<Data> PluginData::share() const
{
    std::unique_ptr<MPxData> copy(static_cast<MPxData*>(creator_()));
    if (!copy)
        return {};
    copy->copy(*object_);
    return make<PluginData>(id_, creator_, std::move(copy));
}

}  // namespace mirk

MPxData::MPxData() = default;
MPxData::MPxData(const MPxData&) {}
MPxData& MPxData::operator=(const MPxData&) { return *this; }
MPxData::~MPxData() = default;
// A type that never goes into files need not say how.
MStatus MPxData::readASCII(const MArgList&, unsigned&) { return MS::kSuccess; }
MStatus MPxData::readBinary(std::istream&, unsigned) { return MS::kSuccess; }
MStatus MPxData::writeASCII(std::ostream&) { return MS::kSuccess; }
MStatus MPxData::writeBinary(std::ostream&) { return MS::kSuccess; }

using namespace mirk;

MFnPluginData::MFnPluginData(const MObject& object, MStatus* s) { report(s, setObject(object).statusCode()); }
MFnPluginData::~MFnPluginData() = default;
MFn::Type MFnPluginData::type() const { return MFn::kPluginData; }

MTypeId MFnPluginData::typeId(MStatus* s) const
{
    const PluginData* data = objectAs<PluginData>(object_);
    return reported(s, data ? MS::kSuccess : MS::kFailure, data ? MTypeId(data->typeId()) : MTypeId());
}
const MPxData* MFnPluginData::constData(MStatus* s) const
{
    const PluginData* data = objectAs<PluginData>(object_);
    return reported<const MPxData*>(s, data ? MS::kSuccess : MS::kFailure, data ? &data->object() : nullptr);
}
MPxData* MFnPluginData::data(MStatus* s)
{
    PluginData* data = objectAs<PluginData>(object_);
    return reported<MPxData*>(s, data ? MS::kSuccess : MS::kFailure, data ? &data->object() : nullptr);
}
MObject MFnPluginData::create(const MTypeId& id, MStatus* s)
{
    const Ref<PluginData> made = makePluginData(id.id());
    if (!made)
        return reported(s, MS::kFailure, MObject());
    object_ = wrap(made);
    return reported(s, MS::kSuccess, object_);
}
