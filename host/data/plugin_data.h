// Data of the types that plug-ins register.
#pragma once
#include <memory>
#include <string>

#include <maya/MPxData.h>

#include "data/data.h"

namespace mirk {

using PxDataCreator = void* (*)();

/// Makes a type known. Registering a name and id again takes the old registration's place; false for a name or an id that
/// belongs to another type, or without a creator.
bool registerDataType(const std::string& name, unsigned id, PxDataCreator creator, MPxData::Type kind = MPxData::kData);
bool deregisterDataType(unsigned id);
/// The id of a registered type by name, 0 if there is none.
unsigned dataTypeId(const std::string& name);
bool     isDataType(unsigned id);

/// A shell around a plug-in's data object, which it owns. Sharing asks the object to copy itself.
class PluginData : public Data
{
public:
    PluginData(unsigned id, PxDataCreator creator, std::unique_ptr<MPxData> object)
        : id_(id), creator_(creator), object_(std::move(object)) { object_->holder_ = this; }
    MFnData::Type type() const override { return MFnData::kPlugin; }
    MFn::Type     apiType() const override { return MFn::kPluginData; }
    Ref<Data>     share() const override;

    unsigned typeId() const { return id_; }
    MPxData& object() const { return *object_; }
    /// The data object that holds this one; null for one that the plug-in made by itself.
    static PluginData* holding(const MPxData& object) { return object.holder_; }

private:
    unsigned                 id_;
    PxDataCreator            creator_;
    std::unique_ptr<MPxData> object_;
};

/// A new data object of a registered type; null if there is no such type or its creator gives nothing.
Ref<PluginData> makePluginData(unsigned id);

}  // namespace mirk
