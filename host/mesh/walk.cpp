#include "mesh/walk.h"

#include <climits>

#include "data/mobject.h"

namespace mirk {

namespace {

constexpr MFn::Type componentTypes[] = {MFn::kMeshVertComponent, MFn::kMeshPolygonComponent, MFn::kMeshEdgeComponent,
                                        MFn::kMeshVtxFaceComponent};

}  // namespace

MStatus MeshWalk::open(std::shared_ptr<MeshTarget> target, const MObject& component)
{
    place_ = count_ = 0;
    listed_ = false;
    vertexNormals_ = nullptr;
    cornerNormals_ = nullptr;
    body_ = nullptr;
    target_ = std::move(target);
    if (!target_ || !target_->read())
        return MS::kFailure;
    body_ = target_->data()->body;
    if (!component.isNull() && !takeItems(component))
        return MS::kInvalidParameter;
    count_ = listed_ ? int(items_.size()) : total();
    return MS::kSuccess;
}

bool MeshWalk::takeItems(const MObject& object)
{
    const auto* component = objectAs<Component>(object);
    const size_t width = kind_ == corners ? 2 : 1;
    if (!component || component->apiType() != componentTypes[kind_] || component->dimensions() != int(width))
        return false;
    if (component->complete)
        return true;
    listed_ = true;
    items_.clear();
    for (size_t i = 0; i + width <= component->indices.size(); i += width) {
        int id = component->indices[i];
        if (kind_ == corners)   // vertex, face
            id = within(component->indices[i + 1], body_->faceCount()) ? topology().cornerAt(component->indices[i + 1], id) : -1;
        if (within(id, total()))
            items_.push_back(id);
    }
    return true;
}

MStatus MeshWalk::goTo(int index, int& previous)
{
    if (!body_ || !within(index, total()))
        return MS::kInvalidParameter;
    int place = index;
    if (listed_) {
        const auto found = std::find(items_.begin(), items_.end(), index);
        if (found == items_.end())
            return MS::kInvalidParameter;
        place = int(found - items_.begin());
    }
    previous = this->index();
    place_ = place;
    return MS::kSuccess;
}

MeshBody* MeshWalk::write()
{
    if (!target_ || !body_)
        return nullptr;
    if (target_->isNode()) {
        if (!target_->write())
            return nullptr;
        body_ = target_->data()->body;
    }
    return body_.get();
}

MStatus MeshWalk::setPoint(int vertex, const MPoint& point, MSpace::Space space)
{
    const SpaceMatrix& m = matrix(space);
    MeshBody* body = m.invertible() ? write() : nullptr;
    if (!body || !within(vertex, body->vertexCount()))
        return MS::kFailure;
    if (!vertexNormals_ && body->vertexNormalsBuilt())
        vertexNormals_ = Ref<const Buffer<F3>>(&body->vertexNormals(false));
    if (!cornerNormals_ && body->cornerNormalsBuilt())
        cornerNormals_ = Ref<const CornerNormals>(&body->cornerNormals());
    m.pointIn(&point.x, body->writePoints() + 3 * vertex);
    changed();
    return MS::kSuccess;
}

MStatus MeshWalk::refresh()
{
    if (!target_ || !body_)
        return MS::kFailure;
    vertexNormals_ = nullptr;
    cornerNormals_ = nullptr;
    if (!listed_)
        count_ = total();
    return MS::kSuccess;
}

MObject MeshWalk::item()
{
    const int i = index();
    if (i < 0)
        return MObject::kNullObj;
    if (!item_ || !item_->unique())
        item_ = make<Component>(componentTypes[kind_], kind_ == corners ? 2 : 1);
    if (kind_ == corners) {
        item_->indices.resize(2);
        item_->indices[0] = topology().connects()[i];
        item_->indices[1] = topology().cornerFaces()[i];
    } else {
        item_->indices.assign(1, i);
    }
    item_->complete = false;   // whoever had it may have changed it
    item_->changed();
    return wrap(item_);
}

}  // namespace mirk
