// What the mesh iterators share: the mesh, the elements walked and the place among them.
#pragma once
#include <memory>
#include <vector>

#include <maya/MSpace.h>
#include <maya/MStatus.h>

#include "mesh/api.h"
#include "mesh/target.h"

namespace mirk {

class MeshWalk
{
public:
    enum Kind { vertices, faces, edges, corners };

    explicit MeshWalk(Kind kind) : kind_(kind) {}
    /// All elements, or those of the component that exist. On failure there is nothing to walk.
    MStatus open(std::shared_ptr<MeshTarget> target, const MObject& component);
    void    rewind() { place_ = 0; }

    int  count() const { return count_; }
    bool done() const { return place_ >= count_; }
    void step() { ++place_; }
    /// The element's number in the mesh. -1 past the end or when the mesh has become smaller.
    int  index() const
    {
        if (done())
            return -1;
        const int i = listed_ ? items_[size_t(place_)] : place_;
        return i < total() ? i : -1;
    }
    /// Goes to an element; with a component it has to be in it.
    MStatus goTo(int index, int& previous);

    const MeshBody& body() const { return *body_; }
    MeshBody*       write();      ///< null for a shape that refuses
    const Topology& topology() const { return body_->topology(); }
    void changed() { target_->changed(); }
    const SpaceMatrix& matrix(MSpace::Space space) const { return target_->matrix(space, *body_); }
    MPoint point(int vertex, MSpace::Space space) const { return toPoint(body_->points() + 3 * vertex, matrix(space)); }
    MStatus setPoint(int vertex, const MPoint& point, MSpace::Space space);
    MStatus refresh();            ///< after changes: normals are up to date again

    // Normals that stay those from before this iterator moved a point, until refresh(): so a loop that reads a normal
    // and moves a point does not compute all normals at every step.
    const F3& vertexNormal(int vertex) const { return (vertexNormals_ ? *vertexNormals_ : body_->vertexNormals(false))[vertex]; }
    const F3& cornerNormal(int corner) const { return (cornerNormals_ ? *cornerNormals_ : body_->cornerNormals()).at(corner); }

    /// The named set or the current one; null if there is none or the walk is over.
    const UVSet* uvSet(const MString* name) const
    {
        const int set = index() < 0 ? -1 : uvSetOf(*body_, name);
        return set < 0 ? nullptr : &body_->uvSets().sets[size_t(set)];
    }
    const ColorSet* colorSet(const MString* name) const
    {
        const int set = index() < 0 ? -1 : colorSetOf(*body_, name);
        return set < 0 ? nullptr : &body_->colorSets().sets[size_t(set)];
    }
    /// kFailure past the end, else kInvalidParameter.
    MStatus refusal() const { return index() < 0 ? MS::kFailure : MS::kInvalidParameter; }
    /// What to answer without a colour set: a name that is not there is an error, no set at all is not.
    MStatus withoutColors(const MString* name) const
    {
        return index() < 0 ? MS::kFailure : name && name->length() ? MS::kInvalidParameter : MS::kSuccess;
    }

    /// The current element as a component; the object is used again once nobody else holds it.
    MObject item();

private:
    int total() const
    {
        switch (kind_) {
            case vertices: return body_->vertexCount();
            case faces:    return body_->faceCount();
            case edges:    return body_->edgeCount();
            default:       return body_->cornerCount();
        }
    }
    bool takeItems(const MObject& component);

    Kind                        kind_;
    std::shared_ptr<MeshTarget> target_;
    Ref<MeshBody>               body_;
    std::vector<int>            items_;
    bool                        listed_ = false;
    int                         place_ = 0, count_ = 0;
    Ref<const Buffer<F3>>   vertexNormals_;
    Ref<const CornerNormals>    cornerNormals_;
    Ref<Component>              item_;
};

}  // namespace mirk
