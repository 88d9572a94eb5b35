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

float middleDepth(const Item& item, const view::Matrix& m)
{
    const std::vector<float>& p = item.positions;
    double low[3], high[3];
    for (int c = 0; c < 3; ++c) {
        low[c] = std::numeric_limits<double>::max();
        high[c] = -low[c];
        for (size_t i = c; i < p.size(); i += 3) {
            low[c] = std::min<double>(low[c], p[i]);
            high[c] = std::max<double>(high[c], p[i]);
        }
        if (item.space == view::Space::kAnchored)
            low[c] = high[c] = item.anchor[c];
    }
    double z = m[14];
    for (int c = 0; c < 3; ++c)
        z += 0.5 * (low[c] + high[c]) * m[c * 4 + 2];
    return static_cast<float>(-z);
}

}  // namespace

Batch::Batch(const Item& item, const view::Camera& camera) : item_(&item)
{
    const size_t vertexCount = item.positions.size() / 3;
    const view::Matrix modelView = view::multiply(item.matrix, camera.view);
    std::transform(modelView.begin(), modelView.end(), modelView_.begin(), [](double v) { return float(v); });
    normalMatrix_ = normalsOf(modelView);
    hasColors_ = vertexCount && item.colors.size() >= vertexCount * 4;
    hasNormals_ = vertexCount && item.normals.size() >= vertexCount * 3;
    transparent_ = item.state.transparent || (hasColors_ ? anyAlphaBelowOne(item.colors) : item.state.color.a < 1);
    if (!vertexCount)
        return;
    depth_ = middleDepth(item, modelView);
    upload(validIndices(item.indices, cornerCount(item.primitive), vertexCount),
           item.primitive == Primitive::kTriangles ? validIndices(item.wire, 2, vertexCount) : std::vector<uint32_t>{});
}

Batch::~Batch()
{
    glDeleteVertexArrays(1, &array_);
    glDeleteBuffers(2, buffers_);
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
    const size_t sizes[] = {vertexCount * 3, hasNormals_ ? vertexCount * 3 : 0, hasColors_ ? vertexCount * 4 : 0};
    const float* data[] = {item.positions.data(), item.normals.data(), item.colors.data()};
    const GLint  widths[] = {3, 3, 4};
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr((sizes[0] + sizes[1] + sizes[2]) * sizeof(float)), nullptr, GL_STATIC_DRAW);
    size_t start = 0;
    for (GLuint a = 0; a < 3; ++a) {
        if (!sizes[a])
            continue;
        glBufferSubData(GL_ARRAY_BUFFER, GLintptr(start * sizeof(float)), GLsizeiptr(sizes[a] * sizeof(float)), data[a]);
        glVertexAttribPointer(a, widths[a], GL_FLOAT, GL_FALSE, 0, reinterpret_cast<const void*>(start * sizeof(float)));
        glEnableVertexAttribArray(a);
        start += sizes[a];
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
    const GLsizeiptr first = GLsizeiptr(indices.size() * 4), second = GLsizeiptr(wire.size() * 4);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, first + second, nullptr, GL_STATIC_DRAW);
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, first, indices.data());
    glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, first, second, wire.data());
}

void Batch::draw() const
{
    glBindVertexArray(array_);
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
