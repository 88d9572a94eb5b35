#pragma once
#include <vector>

#include <maya/MDagPath.h>

/// An array of paths. An index past the end gives an invalid path.
class MDagPathArray
{
public:
    MDagPathArray() = default;
    explicit MDagPathArray(unsigned initialSize, const MDagPath& initialValue = MDagPath()) : paths_(initialSize, initialValue) {}

    unsigned        length() const { return unsigned(paths_.size()); }
    MStatus         setLength(unsigned length) { paths_.resize(length); return MS::kSuccess; }
    MStatus         append(const MDagPath& path) { paths_.push_back(path); return MS::kSuccess; }
    MStatus         insert(const MDagPath& path, unsigned index);
    MStatus         remove(unsigned index);
    MStatus         set(const MDagPath& path, unsigned index);
    MStatus         copy(const MDagPathArray& source) { paths_ = source.paths_; return MS::kSuccess; }
    MStatus         clear() { paths_.clear(); return MS::kSuccess; }
    MDagPath&       operator[](unsigned index);
    const MDagPath& operator[](unsigned index) const;

private:
    std::vector<MDagPath> paths_;
};
