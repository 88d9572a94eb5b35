// Data made of named arrays.
#pragma once
#include <string>
#include <variant>
#include <vector>

#include "data/data.h"

namespace mirk {

class DynArrayAttrsData : public Data
{
public:
    /// In the order of MFnArrayAttrsData::Type, from kVectorArray.
    using Values = std::variant<Ref<Buffer<MVector>>, Ref<Buffer<double>>, Ref<Buffer<int>>, Ref<ElementBuffer<MString>>>;
    struct Channel { std::string name; Values values; };

    MFnData::Type type() const override { return MFnData::kDynArrayAttrs; }
    MFn::Type     apiType() const override { return MFn::kDynArrayAttrsData; }
    Ref<Data>     share() const override;

    const Channel* find(const std::string& name) const;

    std::vector<Channel> channels;   ///< in the order made; their buffers are never null
};

}  // namespace mirk
