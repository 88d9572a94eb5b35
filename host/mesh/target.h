// What a mesh function set or iterator works on: a data object, or a node that offers a mesh, perhaps seen along a path.
#pragma once
#include <memory>

#include <maya/MObject.h>
#include <maya/MSpace.h>

#include "mesh/mesh.h"
#include "mesh/space.h"

class MDagPath;

namespace mirk {

/// The matrix that stands between object and world space. A path's changes with the scene.
struct WorldMatrix
{
    virtual ~WorldMatrix() = default;
    virtual void get(double m[4][4]) const = 0;
};

class MeshTarget
{
public:
    /// Null if the object has no mesh.
    static std::shared_ptr<MeshTarget> of(const MObject& object, std::shared_ptr<const WorldMatrix> world = nullptr);

    /// The mesh for reading; null if a node cannot give one. Valid until the next call of read or write.
    const MeshBody* read();
    /// The mesh for writing; call changed() afterwards.
    MeshBody* write();
    void      changed();
    /// From object space to `space`: the path's matrix, or that of transformed data. Other spaces are object space.
    const SpaceMatrix& matrix(MSpace::Space space, const MeshBody& body)
    {
        return space == MSpace::kWorld ? worldMatrix(body) : SpaceMatrix::identity;
    }
    /// The data object the last read or write gave.
    MeshData* data() const { return data_.get(); }
    bool isNode() const { return source_ != nullptr; }

private:
    const SpaceMatrix& worldMatrix(const MeshBody& body);

    MObject        object_;   // keeps the node
    MeshSource*    source_ = nullptr;
    Ref<MeshData>  data_;
    std::shared_ptr<const WorldMatrix> world_;
    double         seen_[4][4] = {};
    bool           hasSeen_ = false;
    SpaceMatrix    space_;
};

/// The mesh at the end of a DAG path; null if there is none.
std::shared_ptr<MeshTarget> meshAlong(const MDagPath& path);

}  // namespace mirk
