// The points of any geometry in one order, for reading and writing: mesh vertices, curve CVs, surface CVs with V running
// fastest. What MItGeometry and the CV iterators stand on.
#pragma once
#include <functional>
#include <memory>
#include <vector>

#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

#include "mesh/mesh.h"
#include "nurbs/target.h"

class MPointArray;

namespace mirk {

class PointWalk
{
public:
    /// On geometry data or a shape node; world space is that of the path or of transformed data. Null component: all
    /// points. On failure there is nothing to walk.
    MStatus open(const MObject& object, const MObject& component, std::shared_ptr<const WorldMatrix> world = nullptr);
    /// On data of a data block, whose matrix makes world space; `forWrite` is called before the first change and gives
    /// the data to change. With a group only its members.
    MStatus open(GeometryData* data, const unsigned* groupId, std::function<Object*()> forWrite);

    void rewind() { place_ = 0; }
    void step() { ++place_; }
    bool done() const { return place_ >= count_; }
    int  count() const { return count_; }
    int  place() const { return place_; }
    /// Number of the current point in the geometry, -1 past the end.
    int  index() const { return done() ? -1 : pointAt(place_); }
    bool isMesh() const { return mesh_; }
    /// Columns of a surface's CVs (its CVs in V), else 1.
    int  columns() const { return surface_ ? surface_->cvsV : 1; }
    int  rows() const { return surface_ ? surface_->cvsU : 0; }

    MPoint  position(MSpace::Space space) const;
    MStatus setPosition(const MPoint& point, MSpace::Space space);
    MStatus allPositions(MPointArray& out, MSpace::Space space) const;
    MStatus setAllPositions(const MPointArray& in, MSpace::Space space);
    MStatus translate(const MVector& by, MSpace::Space space);
    /// Of the current mesh vertex; zero and kFailure on other geometry. Positions set on the way do not change it.
    MVector normal(MSpace::Space space, MStatus* status);

    /// The current point as a component; the object is used again once nobody else holds it.
    MObject item();
    MObject component() const;
    void    changed();
    /// Walks U along the inner loop instead of V. Surfaces only.
    void    columnsFirst();

private:
    int        total() const;
    int        pointAt(int place) const { return listed_ ? items_[size_t(place)] : place; }
    MFn::Type  componentType() const;
    void       look();                     ///< at the body of data_
    MStatus    takeItems(const Component* component);
    MStatus    openForWrite();
    const NurbsSpace& space(MSpace::Space space) const;
    MPoint     read(int point) const;
    void       write(int point, const MPoint& p);   ///< after beginWrite
    void       beginWrite();
    void       endWrite();

    MObject                  object_;       ///< keeps a node
    Ref<GeometryData>        data_;
    MeshBody*                mesh_ = nullptr;
    CurveBody*               curve_ = nullptr;
    SurfaceBody*             surface_ = nullptr;
    std::shared_ptr<const WorldMatrix> world_;
    bool                     bodyMatrix_ = false;   ///< world space is the body's matrix even on a plain shell
    std::function<Object*()> forWrite_;
    bool                     writable_ = false;
    float*                   meshPoints_ = nullptr; ///< between beginWrite and endWrite
    MPoint*                  cvs_ = nullptr;

    std::vector<int> items_;
    bool             listed_ = false;
    int              place_ = 0, count_ = 0;
    Ref<Component>   item_;
    Ref<const Buffer<F3>> normals_;

    mutable double     seen_[4][4] = {};   // the matrix that space_ was made of
    mutable bool       hasSeen_ = false;
    mutable NurbsSpace space_;
};

}  // namespace mirk
