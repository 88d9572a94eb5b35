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
    bool  hasTexture() const { return texture_ != 0; }  ///< then draw() takes it from texture unit 0
    bool  hasWire() const { return wireCount_ > 0; }
    bool  empty() const { return count_ == 0; }
    float depth() const { return places_.empty() ? 0 : places_.front().depth; }   ///< distance of the middle from the eye, along its axis

    /// Where the item stands: once, or once a copy; what is transparent from far to near.
    struct Place
    {
        std::array<float, 16> modelView{};
        std::array<float, 9>  normalMatrix{};
        float                 depth = 0;
    };
    const std::vector<Place>& places() const { return places_; }

    void draw() const;
    void drawWire() const;

private:
    void stand(const view::Camera& camera);
    void uploadTexture();
    void upload(const std::vector<uint32_t>& indices, const std::vector<uint32_t>& wire);

    const view::Item*  item_;
    std::vector<Place> places_;
    GLuint  array_ = 0, buffers_[2] = {0, 0}, texture_ = 0;
    GLsizei count_ = 0, wireCount_ = 0;
    bool    indexed_ = false, transparent_ = false, hasColors_ = false, hasNormals_ = false;
};

}  // namespace mirk::draw
