#include "data/point_walk.h"

#include <maya/MPointArray.h>

#include "data/component.h"
#include "data/mobject.h"

namespace mirk {
namespace {

GeometryData* readSource(Object* object, Ref<GeometryData>& out)
{
    if (auto* mesh = dynamic_cast<MeshSource*>(object))
        out = mesh->meshForRead();
    else if (auto* curve = dynamic_cast<CurveSource*>(object))
        out = curve->curveForRead();
    else if (auto* surface = dynamic_cast<SurfaceSource*>(object))
        out = surface->surfaceForRead();
    return out.get();
}

GeometryData* writeSource(Object* object, Ref<GeometryData>& out)
{
    if (auto* mesh = dynamic_cast<MeshSource*>(object))
        out = mesh->meshForWrite();
    else if (auto* curve = dynamic_cast<CurveSource*>(object))
        out = curve->curveForWrite();
    else if (auto* surface = dynamic_cast<SurfaceSource*>(object))
        out = surface->surfaceForWrite();
    return out.get();
}

}  // namespace

MStatus PointWalk::open(const MObject& object, const MObject& component, std::shared_ptr<const WorldMatrix> world)
{
    *this = PointWalk();
    object_ = object;
    world_ = std::move(world);
    if (auto* data = objectAs<GeometryData>(object)) {
        data_ = Ref<GeometryData>(data);
        writable_ = true;
    } else
        readSource(ObjectAccess::get(object), data_);
    look();
    if (!mesh_ && !curve_ && !surface_)
        return MS::kFailure;
    if (component.isNull()) {
        count_ = total();
        return MS::kSuccess;
    }
    const auto* listed = objectAs<Component>(component);
    return listed ? takeItems(listed) : MStatus(MS::kInvalidParameter);
}

MStatus PointWalk::open(GeometryData* data, const unsigned* groupId, std::function<Object*()> forWrite)
{
    *this = PointWalk();
    data_ = Ref<GeometryData>(data);
    bodyMatrix_ = true;
    forWrite_ = std::move(forWrite);
    look();
    if (!mesh_ && !curve_ && !surface_)
        return MS::kFailure;
    if (!groupId) {
        count_ = total();
        return MS::kSuccess;
    }
    for (const GeometryBody::Group& g : data->geometry().groups)
        if (g.id == *groupId && g.component)
            return takeItems(g.component.get());
    return MS::kSuccess;   // no such group: no members
}

void PointWalk::look()
{
    mesh_ = nullptr;
    curve_ = nullptr;
    surface_ = nullptr;
    if (auto* m = dynamic_cast<MeshData*>(data_.get()))
        mesh_ = m->body.get();
    else if (auto* c = dynamic_cast<CurveData*>(data_.get()))
        curve_ = c->body.get();
    else if (auto* s = dynamic_cast<SurfaceData*>(data_.get()))
        surface_ = s->body.get();
}

int PointWalk::total() const
{
    return mesh_ ? mesh_->vertexCount() : curve_ ? curve_->uniqueCvCount() : surface_ ? int(surface_->cvs->size()) : 0;
}

MFn::Type PointWalk::componentType() const
{
    return mesh_ ? MFn::kMeshVertComponent : curve_ ? MFn::kCurveCVComponent : MFn::kSurfaceCVComponent;
}

MStatus PointWalk::takeItems(const Component* component)
{
    if (component->apiType() != componentType())
        return MS::kInvalidParameter;
    if (component->complete) {
        count_ = total();
        return MS::kSuccess;
    }
    listed_ = true;
    const std::vector<int>& indices = component->indices;
    if (surface_) {
        for (size_t i = 0; i + 1 < indices.size(); i += 2)
            if (indices[i] >= 0 && indices[i] < surface_->cvsU && indices[i + 1] >= 0 && indices[i + 1] < surface_->cvsV)
                items_.push_back(indices[i] * surface_->cvsV + indices[i + 1]);
    } else {
        for (int i : indices)
            if (i >= 0 && i < total())
                items_.push_back(i);
    }
    count_ = int(items_.size());
    return MS::kSuccess;
}

void PointWalk::columnsFirst()
{
    if (!surface_)
        return;
    if (!listed_) {
        items_.resize(size_t(count_));
        for (int i = 0; i < count_; ++i)
            items_[size_t(i)] = i;
        listed_ = true;
    }
    const int columns = surface_->cvsV;
    std::sort(items_.begin(), items_.end(), [columns](int a, int b) {
        return a % columns != b % columns ? a % columns < b % columns : a < b;
    });
}

const NurbsSpace& PointWalk::space(MSpace::Space space) const
{
    static const NurbsSpace none;
    if (space != MSpace::kWorld || !data_)
        return none;
    const GeometryBody& body = data_->geometry();
    double              now[4][4];
    if (world_)
        world_->get(now);
    else if ((bodyMatrix_ || data_->transformed) && !body.identity)
        std::memcpy(now, body.matrix, sizeof now);
    else
        return none;
    if (!hasSeen_ || std::memcmp(now, seen_, sizeof now) != 0) {
        std::memcpy(seen_, now, sizeof now);
        space_ = NurbsSpace(now);
        hasSeen_ = true;
    }
    return space_;
}

// --- reading ---------------------------------------------------------------------------------------------------------

MPoint PointWalk::read(int point) const
{
    if (point < 0 || point >= total())   // the geometry became smaller since
        return MPoint();
    if (mesh_) {
        const float* p = mesh_->points() + 3 * size_t(point);
        return {p[0], p[1], p[2]};
    }
    return std::as_const(curve_ ? *curve_->cvs : *surface_->cvs)[size_t(point)];
}

MPoint PointWalk::position(MSpace::Space s) const
{
    if (done())
        return MPoint();
    const MPoint p = read(pointAt(place_));
    return space(s).pointOut(p);
}

MStatus PointWalk::allPositions(MPointArray& out, MSpace::Space s) const
{
    if (!data_)
        return MS::kFailure;
    out.setLength(unsigned(count_));
    if (!count_)
        return MS::kSuccess;
    const NurbsSpace& to = space(s);
    MPoint*          p = &out[0];
    if (mesh_ && !listed_ && count_ <= total()) {   // the usual case, in one plain run
        const float* from = mesh_->points();
        for (int i = 0; i < count_; ++i, from += 3)
            p[i] = MPoint(from[0], from[1], from[2]);
    } else
        for (int i = 0; i < count_; ++i)
            p[i] = read(pointAt(i));
    if (to.active)
        for (int i = 0; i < count_; ++i)
            p[i] = p[i] * to.out;
    return MS::kSuccess;
}

MVector PointWalk::normal(MSpace::Space s, MStatus* status)
{
    const int i = index();
    if (!mesh_ || i < 0 || i >= total()) {
        if (status)
            *status = MS::kFailure;
        return MVector();
    }
    if (!normals_)
        normals_ = Ref<const Buffer<F3>>(&mesh_->vertexNormals(false));
    if (status)
        *status = MS::kSuccess;
    const F3&    n = (*normals_)[size_t(i)];
    const MVector    v(n.v[0], n.v[1], n.v[2]);
    const NurbsSpace& to = space(s);
    return to.active ? v.transformAsNormal(to.out).normal() : v;
}

// --- writing ---------------------------------------------------------------------------------------------------------

MStatus PointWalk::openForWrite()
{
    if (!data_)
        return MS::kFailure;
    if (mesh_ && !normals_ && mesh_->vertexNormalsBuilt())   // kept: a loop that reads normals and moves points
        normals_ = Ref<const Buffer<F3>>(&mesh_->vertexNormals(false));
    if (writable_)
        return MS::kSuccess;
    Ref<GeometryData> own;
    if (forWrite_)
        own = Ref<GeometryData>(dynamic_cast<GeometryData*>(forWrite_()));
    else
        writeSource(ObjectAccess::get(object_), own);
    if (!own || own->type() != data_->type())
        return MS::kFailure;
    data_ = own;
    look();
    writable_ = forWrite_ != nullptr;   // a node is asked each time: its mesh may be another one by then
    return MS::kSuccess;
}

void PointWalk::beginWrite()
{
    if (mesh_)
        meshPoints_ = mesh_->writePoints();
    else
        cvs_ = detach(curve_ ? curve_->cvs : surface_->cvs).data();
}

void PointWalk::write(int point, const MPoint& p)
{
    if (point < 0 || point >= total())
        return;
    if (mesh_) {
        float* to = meshPoints_ + 3 * size_t(point);
        to[0] = float(p.x);
        to[1] = float(p.y);
        to[2] = float(p.z);
        return;
    }
    if (curve_)
        writeCv(*curve_, cvs_, point, p);
    else
        writeCv(*surface_, cvs_, point / surface_->cvsV, point % surface_->cvsV, p);
}

void PointWalk::endWrite()
{
    meshPoints_ = nullptr;
    cvs_ = nullptr;
    changed();
}

MStatus PointWalk::setPosition(const MPoint& point, MSpace::Space s)
{
    if (done())
        return MS::kFailure;
    if (const MStatus opened = openForWrite(); !opened)
        return opened;
    const MPoint p = space(s).pointIn(point);
    beginWrite();
    write(pointAt(place_), p);
    endWrite();
    return MS::kSuccess;
}

MStatus PointWalk::setAllPositions(const MPointArray& in, MSpace::Space s)
{
    if (!data_)
        return MS::kFailure;
    if (in.length() != unsigned(count_))
        return MS::kInvalidParameter;
    if (!count_)
        return MS::kSuccess;
    if (const MStatus opened = openForWrite(); !opened)
        return opened;
    const NurbsSpace& from = space(s);
    const MPoint*    p = &in[0];
    beginWrite();
    if (mesh_ && !listed_ && !from.active && count_ <= total()) {
        float* to = meshPoints_;
        for (int i = 0; i < count_; ++i, to += 3) {
            to[0] = float(p[i].x);
            to[1] = float(p[i].y);
            to[2] = float(p[i].z);
        }
        endWrite();
        return MS::kSuccess;
    }
    for (int i = count_; i-- > 0;)   // backwards: of a CV and those that repeat it the first one counts
        write(pointAt(i), from.active ? p[i] * from.in : p[i]);
    endWrite();
    return MS::kSuccess;
}

MStatus PointWalk::translate(const MVector& by, MSpace::Space s)
{
    MPoint p = position(s);
    p.x += by.x * p.w;
    p.y += by.y * p.w;
    p.z += by.z * p.w;
    return setPosition(p, s);
}

void PointWalk::changed()
{
    Object* node = ObjectAccess::get(object_);
    if (!node || dynamic_cast<Data*>(node))
        return;
    if (auto* mesh = dynamic_cast<MeshSource*>(node))
        mesh->meshChanged();
    else if (auto* curve = dynamic_cast<CurveSource*>(node))
        curve->curveChanged();
    else if (auto* surface = dynamic_cast<SurfaceSource*>(node))
        surface->surfaceChanged();
}

// --- components ------------------------------------------------------------------------------------------------------

MObject PointWalk::item()
{
    const int i = index();
    if (i < 0)
        return MObject();
    if (!item_ || !item_->unique())
        item_ = makeComponent(componentType());
    if (surface_) {
        item_->indices.resize(2);
        item_->indices[0] = i / surface_->cvsV;
        item_->indices[1] = i % surface_->cvsV;
    } else
        item_->indices.assign(1, i);
    item_->complete = false;   // whoever had it may have changed it
    item_->changed();
    return wrap(item_);
}

MObject PointWalk::component() const
{
    if (!data_)
        return MObject();
    Ref<Component>   all = makeComponent(componentType());
    std::vector<int> indices;
    for (int i = 0; i < count_; ++i) {
        const int point = pointAt(i);
        if (surface_)
            indices.insert(indices.end(), {point / surface_->cvsV, point % surface_->cvsV});
        else
            indices.push_back(point);
    }
    if (count_)
        addElements(*all, indices.data(), size_t(count_));
    return wrap(all);
}

}  // namespace mirk
