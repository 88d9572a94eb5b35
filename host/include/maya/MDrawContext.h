#pragma once
#include <maya/MFrameContext.h>

namespace MHWRender {

/// The context of one object's drawing: the world matrix is the object's.
class MDrawContext : public MFrameContext
{
public:
    using MFrameContext::MFrameContext;
};

}  // namespace MHWRender
