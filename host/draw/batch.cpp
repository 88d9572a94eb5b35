#include "draw/batch.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mirk::draw {

using view::Item;
using view::Primitive;

namespace {

int cornerCount(Primitive p) { return p == Primitive::kPoints ? 1 : p == Primitive::kLines ? 2 : 3; }

GLenum mode(Primitive p)
{
    return p == Primitive::kPoints ? GL_POINTS : p == Primitive::kLines ? GL_LINES : GL_TRIANGLES;
}

/// The primitives all of whose corners exist.
std::vector<uint32_t> validIndices(const std::vector<uint32_t>& indices, size_t corners, size_t vertexCount)
{
    std::vector<uint32_t> good;
    good.reserve(indices.size());
    for (size_t i = 0; i + corners <= indices.size(); i += corners)
        if (std::all_of(&indices[i], &indices[i] + corners, [&](uint32_t v) { return v < vertexCount; }))
            good.insert(good.end(), &indices[i], &indices[i] + corners);
    return good;
}

bool anyAlphaBelowOne(const std::vector<float>& colors)
{
    for (size_t i = 3; i < colors.size(); i += 4)
        if (colors[i] < 1)
            return true;
    return false;
}

/// Inverse transpose of the upper 3 x 3, up to a positive factor: normals are made unit length later.
std::array<float, 9> normalsOf(const view::Matrix& m)
{
    const auto cofactor = [&](int r, int c) {
        const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return m[r1 * 4 + c1] * m[r2 * 4 + c2] - m[r1 * 4 + c2] * m[r2 * 4 + c1];
    };
    double largest = 0;
    std::array<double, 9> all;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            all[r * 3 + c] = cofactor(r, c);
            largest = std::max(largest, std::fabs(all[r * 3 + c]));
        }
    std::array<float, 9> out;
    for (int i = 0; i < 9; ++i)
        out[i] = static_cast<float>(largest > 0 ? all[i] / largest : (i % 4 == 0));
    return out;
}

/// The middle of the item, in its own space.
std::array<double, 3> middle(const Item& item)
{
    const std::vector<float>& p = item.positions;
    std::array<double, 3> out;
    for (size_t c = 0; c < 3; ++c) {
        double low = std::numeric_limits<double>::max(), high = -low;
        for (size_t i = c; i < p.size(); i += 3) {
            low = std::min<double>(low, p[i]);
            high = std::max<double>(high, p[i]);
        }
        out[c] = item.space == view::Space::kAnchored ? item.anchor[c] : 0.5 * (low + high);
    }
    return out;
}

}  // namespace

Batch::Batch(const Item& item, const view::Camera& camera) : item_(&item)
{
    const size_t vertexCount = item.positions.size() / 3;
    hasColors_ = vertexCount && item.colors.size() >= vertexCount * 4;
    hasNormals_ = vertexCount && item.normals.size() >= vertexCount * 3;
    transparent_ = item.state.transparent || (hasColors_ ? anyAlphaBelowOne(item.colors) : item.state.color.a < 1);
    if (!vertexCount)
        return;
    stand(camera);
    upload(validIndices(item.indices, cornerCount(item.primitive), vertexCount),
           item.primitive == Primitive::kTriangles ? validIndices(item.wire, 2, vertexCount) : std::vector<uint32_t>{});
}

void Batch::stand(const view::Camera& camera)
{
    const std::array<double, 3> m = middle(*item_);
    const auto add = [&](const view::Matrix& matrix) {
        const view::Matrix modelView = view::multiply(matrix, camera.view);
        Place& place = places_.emplace_back();
        std::transform(modelView.begin(), modelView.end(), place.modelView.begin(), [](double v) { return float(v); });
        place.normalMatrix = normalsOf(modelView);
        place.depth = static_cast<float>(-(m[0] * modelView[2] + m[1] * modelView[6] + m[2] * modelView[10] + modelView[14]));
    };
    if (item_->copies.empty())
        add(item_->matrix);
    for (const view::Matrix& matrix : item_->copies)
        add(matrix);
    if (transparent_)
        std::stable_sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) { return a.depth > b.depth; });
}

Batch::~Batch()
{
    glDeleteVertexArrays(1, &array_);
    glDeleteBuffers(2, buffers_);
    glDeleteTextures(1, &texture_);
}

void Batch::upload(const std::vector<uint32_t>& indices, const std::vector<uint32_t>& wire)
{
    const Item&  item = *item_;
    const size_t vertexCount = item.positions.size() / 3;
    indexed_ = !item.indices.empty();
    count_ = static_cast<GLsizei>(indexed_ ? indices.size() : vertexCount - vertexCount % cornerCount(item.primitive));
    wireCount_ = static_cast<GLsizei>(wire.size());

    glGenVertexArrays(1, &array_);
    glBindVertexArray(array_);
    glGenBuffers(2, buffers_);
    glBindBuffer(GL_ARRAY_BUFFER, buffers_[0]);
    const bool   textured = item.texture && item.uvs.size() >= vertexCount * 2;
    const size_t sizes[] = {vertexCount * 3, hasNormals_ ? vertexCount * 3 : 0, hasColors_ ? vertexCount * 4 : 0, textured ? vertexCount * 2 : 0};
    const float* data[] = {item.positions.data(), item.normals.data(), item.colors.data(), item.uvs.data()};
    const GLint  widths[] = {3, 3, 4, 2};
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr((sizes[0] + sizes[1] + sizes[2] + sizes[3]) * sizeof(float)), nullptr, GL_STATIC_DRAW);
    size_t start = 0;
    for (GLuint a = 0; a < 4; ++a) {
        if (!sizes[a])
            continue;
        glBufferSubData(GL_ARRAY_BUFFER, GLintptr(start * sizeof(float)), GLsizeiptr(sizes[a] * sizeof(float)), data[a]);
        glVertexAttribPointer(a, widths[a], GL_FLOAT, GL_FALSE, 0, reinterpret_cast<const void*>(start * sizeof(float)));
        glEnableVertexAttribArray(a);
        start += sizes[a];
    }
    if (textured)
        uploadTexture();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
    const GLsizeiptr first = GLsizeiptr(indices.size() * 4), second = GLsizeiptr(wire.size() * 4);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, first + second, nullptr, GL_STATIC_DRAW);
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, first, indices.data());
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, first, second, wire.data());
}

void Batch::uploadTexture()
{
    const view::Texture& t = *item_->texture;
    if (t.width < 1 || t.height < 1 || t.rgba.size() < size_t(t.width) * size_t(t.height) * 4)
        return;
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, t.width, t.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, t.rgba.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void Batch::draw() const
{
    glBindVertexArray(array_);
    if (texture_)
        glBindTexture(GL_TEXTURE_2D, texture_);
    if (indexed_)
        glDrawElements(mode(item_->primitive), count_, GL_UNSIGNED_INT, nullptr);
    else
        glDrawArrays(mode(item_->primitive), 0, count_);
}

void Batch::drawWire() const
{
    glBindVertexArray(array_);
    const size_t start = indexed_ ? size_t(count_) * 4 : 0;
    glDrawElements(GL_LINES, wireCount_, GL_UNSIGNED_INT, reinterpret_cast<const void*>(start));
}

}  // namespace mirk::draw
