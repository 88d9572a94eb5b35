#pragma once
#include <vector>

#include <maya/MPlug.h>

/// An array of plugs. An index past the end gives a null plug.
class MPlugArray
{
public:
    MPlugArray() = default;
    explicit MPlugArray(unsigned initialSize, const MPlug& initialValue = MPlug()) : plugs_(initialSize, initialValue) {}
    unsigned     length() const { return unsigned(plugs_.size()); }
    MStatus      setLength(unsigned length) { plugs_.resize(length); return MS::kSuccess; }
    MStatus      append(const MPlug& plug) { plugs_.push_back(plug); return MS::kSuccess; }
    MStatus      insert(const MPlug& plug, unsigned index);
    MStatus      remove(unsigned index);
    MStatus      set(const MPlug& plug, unsigned index);
    MStatus      copy(const MPlugArray& source) { plugs_ = source.plugs_; return MS::kSuccess; }
    MStatus      clear() { plugs_.clear(); return MS::kSuccess; }
    const MPlug& operator[](unsigned index) const;
    MPlug&       operator[](unsigned index);

private:
    std::vector<MPlug> plugs_;
};
