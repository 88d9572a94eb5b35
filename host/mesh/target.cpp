#include "mesh/target.h"

#include "data/mobject.h"

namespace mirk {

std::shared_ptr<MeshTarget> MeshTarget::of(const MObject& object, std::shared_ptr<const WorldMatrix> world)
{
    auto* data = objectAs<MeshData>(object);
    auto* source = data ? nullptr : dynamic_cast<MeshSource*>(ObjectAccess::get(object));
    if (!data && !source)
        return nullptr;
    auto target = std::make_shared<MeshTarget>();
    target->object_ = object;
    target->source_ = source;
    target->data_ = Ref<MeshData>(data);
    target->world_ = std::move(world);
    return target;
}

const MeshBody* MeshTarget::read()
{
    if (source_) {
        data_ = nullptr;
        data_ = source_->meshForRead();
    }
    return data_ ? data_->body.get() : nullptr;
}

MeshBody* MeshTarget::write()
{
    if (source_) {
        data_ = nullptr;
        data_ = source_->meshForWrite();
    }
    return data_ ? data_->body.get() : nullptr;
}

void MeshTarget::changed()
{
    if (source_)
        source_->meshChanged();
}

const SpaceMatrix& MeshTarget::worldMatrix(const MeshBody& body)
{
    double path[4][4];
    const double (*now)[4] = body.matrix;
    if (world_) {
        world_->get(path);
        now = path;
    } else if (!data_ || !data_->transformed || body.identity) {
        return SpaceMatrix::identity;
    }
    if (!hasSeen_ || std::memcmp(now, seen_, sizeof seen_) != 0) {
        std::memcpy(seen_, now, sizeof seen_);
        space_ = SpaceMatrix(now);
        hasSeen_ = true;
    }
    return space_;
}

}  // namespace mirk
