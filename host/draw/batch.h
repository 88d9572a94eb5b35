// Items made ready for drawing: checked, uploaded, sorted into layers.
#pragma once
#include <array>
#include <vector>

#include "draw/gl.h"
#include "view/draw_list.h"

namespace mirk::draw {

/// An item on the graphics device. Lives no longer than its draw list, and dies with the context current.
class Batch
{
public:
    /// Primitives with an index out of range are left out.
    Batch(const view::Item& item, const view::Camera& camera);
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    const view::Item& item() const { return *item_; }
    bool  transparent() const { return transparent_; }
    bool  hasColors() const { return hasColors_; }
    bool  hasNormals() const { return hasNormals_; }
    bool  hasWire() const { return wireCount_ > 0; }
    bool  empty() const { return count_ == 0; }
    float depth() const { return depth_; }              ///< distance of the middle from the eye, along its axis

    const std::array<float, 16>& modelView() const { return modelView_; }
    const std::array<float, 9>&  normalMatrix() const { return normalMatrix_; }

    void draw() const;
    void drawWire() const;

private:
    void upload(const std::vector<uint32_t>& indices, const std::vector<uint32_t>& wire);

    const view::Item*     item_;
    std::array<float, 16> modelView_{};
    std::array<float, 9>  normalMatrix_{};
    GLuint  array_ = 0, buffers_[2] = {0, 0};
    GLsizei count_ = 0, wireCount_ = 0;
    float   depth_ = 0;
    bool    indexed_ = false, transparent_ = false, hasColors_ = false, hasNormals_ = false;
};

}  // namespace mirk::draw
