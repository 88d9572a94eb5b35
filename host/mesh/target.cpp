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

const SpaceMatrix& MeshTarget::matrix(MSpace::Space space, const MeshBody& body)
{
    static const SpaceMatrix none;
    if (space != MSpace::kWorld)
        return none;
    double now[4][4];
    if (world_)
        world_->get(now);
    else if (data_ && data_->transformed && !body.identity)
        std::memcpy(now, body.matrix, sizeof now);
    else
        return none;
    if (!hasSeen_ || std::memcmp(now, seen_, sizeof now) != 0) {
        std::memcpy(seen_, now, sizeof now);
        space_ = SpaceMatrix(now);
        hasSeen_ = true;
    }
    return space_;
}

}  // namespace mirk
