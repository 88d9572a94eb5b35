#include "view/draw_override.h"

#include <maya/MDrawContext.h>
#include <maya/MUIDrawManager.h>

#include "view/convert.h"
#include "view/recorder.h"

namespace mirk::view {

void DrawnObject::draw(const MDagPath& object, const MDagPath& camera, const FrameData& frame, uint32_t id, DrawList& list)
{
    FrameData own = frame;
    own.world = fromMatrix(override_->transform(object, camera));
    const MHWRender::MFrameContext context(frame);

    MUserData* data = override_->prepareForDraw(object, camera, context, kept_.get());
    std::shared_ptr<MUserData> held = data == kept_.get() ? kept_ : std::shared_ptr<MUserData>(data);
    kept_ = data && !data->deleteAfterUse() ? held : nullptr;

    if (override_->hasUIDrawables()) {
        Recorder recorder(list, own.world, id);
        MHWRender::MUIDrawManager manager(recorder);
        override_->addUIDrawables(object, manager, context, data);
    }
    if (const auto callback = override_->callback_)
        list.callbacks.push_back({[callback, held, own](const Camera&) {
                                      const InCallback inside(own);
                                      callback(MHWRender::MDrawContext(own), held.get());
                                  },
                                  own.world, override_->isTransparent() ? Callback::Order::kTransparent : Callback::Order::kOpaque});
}

}  // namespace mirk::view
