// The renderer module: pictures and picking with OpenGL, image files with OpenImageIO.
#include <algorithm>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>

#include "draw/batch.h"
#include "draw/context.h"
#include "draw/image_file.h"
#include "draw/shaders.h"
#include "view/renderer.h"

namespace mirk::draw {

using view::Camera;
using view::Color;
using view::Hit;
using view::Image;
using view::Item;
using view::Primitive;
using view::RenderRequest;
using view::Space;

namespace {

constexpr int kLargestSize = 16384;

void check(const RenderRequest& request)
{
    const Camera& c = request.camera;
    if (c.width < 1 || c.height < 1 || c.width > kLargestSize || c.height > kLargestSize)
        throw view::Error("A picture of " + std::to_string(c.width) + " x " + std::to_string(c.height) +
                          " pixels cannot be drawn: each side is 1 to " + std::to_string(kLargestSize));
    if (!request.list)
        throw view::Error("A picture needs a draw list");
}

std::array<float, 16> toFloat(const view::Matrix& m)
{
    std::array<float, 16> out;
    std::transform(m.begin(), m.end(), out.begin(), [](double v) { return static_cast<float>(v); });
    return out;
}

/// Row-vector matrices are laid out as OpenGL wants its column-vector ones, so nothing is transposed.
class ItemProgram
{
public:
    explicit ItemProgram(const char* fragment) : program_(kItemVertex, fragment) {}

    void begin(const Camera& camera, int scale)
    {
        scale_ = static_cast<float>(scale);
        const std::array<float, 16> projection = toFloat(camera.projection);
        program_.use();
        glUniformMatrix4fv(at("projection"), 1, GL_FALSE, projection.data());
        glUniform2f(at("viewport"), float(camera.width) * scale_, float(camera.height) * scale_);
        glUniform1f(at("pixelScale"), scale_);
        glUniform1i(at("perspective"), camera.projection[11] != 0);
        const Color up{float(camera.view[4]), float(camera.view[5]), float(camera.view[6]), 0};
        glUniform3f(at("eyeUp"), up.r, up.g, up.b);
    }

    /// `wire`: the item's edges come next, in their own colour and without light.
    void item(const Batch& batch, bool wire)
    {
        const Item& item = batch.item();
        const Color& c = wire ? item.state.wireColor : item.state.color;
        const bool points = item.primitive == Primitive::kPoints;
        glUniform3fv(at("anchor"), 1, item.anchor.data());
        glUniform1i(at("space"), int(item.space));
        glUniform1f(at("depthBias"), 4e-6f * float(std::min(item.state.depthPriority, 1000u)) + (wire ? 2e-6f : 0));
        glUniform4f(at("itemColor"), c.r, c.g, c.b, c.a);
        glUniform1i(at("hasColors"), batch.hasColors() && !wire);
        glUniform1i(at("hasNormals"), batch.hasNormals());
        glUniform1i(at("hasTexture"), batch.hasTexture() && !wire);
        glUniform1i(at("texture0"), 0);
        glUniform1i(at("lit"), item.state.lit && item.primitive == Primitive::kTriangles && !wire);
        glUniform1i(at("screenDoor"), item.state.screenDoor && item.primitive == Primitive::kTriangles && !wire);
        glUniform1i(at("roundPoint"), points && item.state.pointSize > 1.5f);
        glUniform1f(at("pointSize"), item.state.pointSize * scale_);
        glUniform1ui(at("id"), item.state.id);
    }

    void place(const Batch::Place& place)
    {
        glUniformMatrix4fv(at("modelView"), 1, GL_FALSE, place.modelView.data());
        glUniformMatrix3fv(at("normalMatrix"), 1, GL_FALSE, place.normalMatrix.data());
    }

private:
    GLint at(const char* name)
    {
        const auto [it, isNew] = places_.try_emplace(name, -1);
        if (isNew)
            it->second = program_.at(name);
        return it->second;
    }

    Program program_;
    std::map<const char*, GLint> places_;   // keyed by the literal's address: one look-up by name each
    float scale_ = 1;
};

/// Everything that is in force while one picture is drawn.
struct Frame
{
    const RenderRequest& request;
    int   scale = 1;         // target pixels a picture pixel
    float tolerance = 0;     // least width of lines and points
    std::deque<Batch> batches;

    Frame(const RenderRequest& r, int s, float t) : request(r), scale(s), tolerance(t)
    {
        for (const Item& item : r.list->items)
            if (!item.positions.empty())
                batches.emplace_back(item, r.camera);
    }
};

enum class Layer { kOpaque, kTransparent, kXray, kScreen };

Layer layerOf(const Batch& b)
{
    if (b.item().space == Space::kScreen)
        return Layer::kScreen;
    if (b.item().state.xray)
        return Layer::kXray;
    return b.transparent() ? Layer::kTransparent : Layer::kOpaque;
}

/// In drawing order: by depth priority, what is transparent from far to near.
std::vector<const Batch*> layer(const Frame& frame, Layer which)
{
    std::vector<const Batch*> out;
    for (const Batch& b : frame.batches)
        if (!b.empty() && layerOf(b) == which)
            out.push_back(&b);
    std::stable_sort(out.begin(), out.end(), [&](const Batch* a, const Batch* b) {
        const uint32_t pa = a->item().state.depthPriority, pb = b->item().state.depthPriority;
        return pa != pb ? pa < pb : which == Layer::kTransparent && a->depth() > b->depth();
    });
    return out;
}

void setLines(const Frame& frame, const view::State& state)
{
    const auto scale = static_cast<float>(frame.scale);
    glLineWidth(std::clamp(std::max(state.lineWidth, frame.tolerance) * scale, 1.f, 255.f));
    glPointSize(std::clamp(std::max(state.pointSize, frame.tolerance) * scale, 1.f, 255.f));
    if (state.linePattern != 0xffff && frame.tolerance <= 0) {
        glLineStipple(state.lineFactor * frame.scale, state.linePattern);
        glEnable(GL_LINE_STIPPLE);
    } else {
        glDisable(GL_LINE_STIPPLE);
    }
}

void drawBatch(const Frame& frame, ItemProgram& program, const Batch& batch, bool backFirst)
{
    const Item& item = batch.item();
    setLines(frame, item.state);
    program.item(batch, false);
    const bool fill = item.primitive == Primitive::kTriangles;
    if (fill && batch.hasWire()) {
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(1, 1);
    }
    const bool bothSides = fill && backFirst && item.space == Space::kObject;
    for (const Batch::Place& place : batch.places()) {
        program.place(place);
        if (!bothSides) {
            batch.draw();
            continue;
        }
        glEnable(GL_CULL_FACE);
        for (const GLenum hidden : {GL_FRONT, GL_BACK}) {
            glCullFace(hidden);
            batch.draw();
        }
        glDisable(GL_CULL_FACE);
    }
    glDisable(GL_POLYGON_OFFSET_FILL);
    if (batch.hasWire()) {
        program.item(batch, true);
        for (const Batch::Place& place : batch.places()) {
            program.place(place);
            batch.drawWire();
        }
    }
}

void drawLayer(const Frame& frame, ItemProgram& program, Layer which)
{
    const bool test = which == Layer::kOpaque || which == Layer::kTransparent;
    (test ? glEnable : glDisable)(GL_DEPTH_TEST);
    glDepthMask(which == Layer::kOpaque);
    for (const Batch* batch : layer(frame, which))
        drawBatch(frame, program, *batch, which == Layer::kTransparent);
    glDepthMask(GL_TRUE);
}

/// The state that every picture starts from, whatever a callback left.
void setDefaults()
{
    glUseProgram(0);
    glBindVertexArray(0);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_MULTISAMPLE);
    glEnable(GL_POINT_SPRITE);
    glDisable(GL_CULL_FACE);
    glDisable(GL_LINE_STIPPLE);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
}

/// Runs one callback and takes back what it changed. What it throws goes on to the caller.
void runCallback(const view::Callback& callback, const Camera& camera, const Target& target)
{
    glUseProgram(0);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);   // arrays of a callback are in its own memory
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(camera.projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view::multiply(callback.matrix, camera.view).data());
    std::exception_ptr thrown;
    try {
        callback.draw(camera);
    } catch (...) {
        thrown = std::current_exception();
    }
    glPopClientAttrib();
    glPopAttrib();
    while (glGetError() != GL_NO_ERROR) {}
    target.bind();
    if (thrown)
        std::rethrow_exception(thrown);
}

/// Marks a picture in the making: code that a callback runs must not start another one.
class Drawing
{
public:
    explicit Drawing(bool& flag) : flag_(flag)
    {
        if (flag_)
            throw view::Error("A picture cannot be drawn while another one is: drawing was called from a draw callback");
        flag_ = true;
    }
    ~Drawing() { flag_ = false; }
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

private:
    bool& flag_;
};

class GlRenderer final : public view::Renderer
{
public:
    Image render(const RenderRequest& request) override;
    std::vector<Hit> pick(const RenderRequest& request, int x, int y, int width, int height, float tolerance) override;
    void  writeImage(const std::string& path, const Image& image) override { draw::writeImage(path, image); }
    Image readImage(const std::string& path) override { return draw::readImage(path); }
    std::string description() override;
    void setCurrentColor(const Color& c) override { glColor4f(c.r, c.g, c.b, c.a); }
    void drawPixelLines(const Camera& camera, const std::vector<float>& lines, float depth) override;

private:
    /// The context waits for the first use that needs it: reading an image needs none.
    Context& context()
    {
        if (!context_)
            context_ = std::make_unique<Context>();
        return *context_;
    }
    void drawBackground(const Camera& camera);
    void drawAll(const Frame& frame, const Target& target);

    std::recursive_mutex mutex_;
    bool drawing_ = false;
    std::unique_ptr<Context> context_;
    std::unique_ptr<ItemProgram> items_, picks_;
    std::unique_ptr<Program> background_;
};

void GlRenderer::drawBackground(const Camera& camera)
{
    if (!background_)
        background_ = std::make_unique<Program>(kBackgroundVertex, kBackgroundFragment);
    background_->use();
    const Color &t = camera.backgroundTop, &b = camera.backgroundBottom;
    glUniform4f(background_->at("top"), t.r, t.g, t.b, t.a);
    glUniform4f(background_->at("bottom"), b.r, b.g, b.b, b.a);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    GLuint none = 0;
    glGenVertexArrays(1, &none);
    glBindVertexArray(none);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDeleteVertexArrays(1, &none);
    glEnable(GL_BLEND);
}

void GlRenderer::drawAll(const Frame& frame, const Target& target)
{
    const Camera& camera = frame.request.camera;
    if (!items_)
        items_ = std::make_unique<ItemProgram>(kItemFragment);
    drawBackground(camera);
    items_->begin(camera, frame.scale);
    drawLayer(frame, *items_, Layer::kOpaque);
    const auto runCallbacks = [&](view::Callback::Order order) {
        for (const view::Callback& callback : frame.request.list->callbacks)
            if (callback.draw && callback.order == order)
                runCallback(callback, camera, target);
        setDefaults();
        items_->begin(camera, frame.scale);
    };
    runCallbacks(view::Callback::Order::kOpaque);
    drawLayer(frame, *items_, Layer::kTransparent);
    runCallbacks(view::Callback::Order::kTransparent);
    runCallbacks(view::Callback::Order::kLast);
    drawLayer(frame, *items_, Layer::kXray);
    drawLayer(frame, *items_, Layer::kScreen);
}

Image GlRenderer::render(const RenderRequest& request)
{
    check(request);
    const std::lock_guard lock(mutex_);
    const Drawing drawing(drawing_);
    const Context::Current current(context());
    const int width = request.camera.width, height = request.camera.height;
    // four times four samples: a picture twice as large, shrunk. A callback would draw its lines half as wide there.
    const bool large = request.samples > 4 && request.list->callbacks.empty() && std::max(width, height) * 2 <= kLargestSize;
    const int scale = large ? 2 : 1;

    setDefaults();
    const Target target(width * scale, height * scale, request.samples > 1 ? 4 : 1, GL_RGBA8);
    glViewport(0, 0, width * scale, height * scale);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawAll(Frame(request, scale, 0), target);

    const Target resolved(width * scale, height * scale, 1, GL_RGBA8), small(width, height, 1, GL_RGBA8);
    target.copyTo(resolved);
    resolved.copyTo(small);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    Image image{width, height, 4, std::vector<uint8_t>(size_t(width) * height * 4), {}};
    small.read(image.bytes.data());
    for (int y = 0; y < height / 2; ++y)   // OpenGL counts rows from the bottom
        std::swap_ranges(&image.bytes[size_t(y) * width * 4], &image.bytes[size_t(y) * width * 4] + size_t(width) * 4,
                         &image.bytes[size_t(height - 1 - y) * width * 4]);
    return image;
}

std::vector<Hit> nearestFirst(const std::vector<uint32_t>& ids, const std::vector<float>& depths)
{
    std::map<uint32_t, float> nearest;
    for (size_t i = 0; i < ids.size(); ++i)
        if (ids[i]) {
            const auto [it, isNew] = nearest.try_emplace(ids[i], depths[i]);
            it->second = std::min(it->second, depths[i]);
        }
    std::vector<Hit> hits;
    for (const auto& [id, depth] : nearest)
        hits.push_back({id, depth});
    std::stable_sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) { return a.depth < b.depth; });
    return hits;
}

std::vector<Hit> GlRenderer::pick(const RenderRequest& request, int x, int y, int width, int height, float tolerance)
{
    check(request);
    const int left = std::clamp(x, 0, request.camera.width), bottom = std::clamp(y, 0, request.camera.height);
    width = int(std::clamp<long>(long(x) + width, left, request.camera.width)) - left;
    height = int(std::clamp<long>(long(y) + height, bottom, request.camera.height)) - bottom;
    if (width == 0 || height == 0)
        return {};
    const std::lock_guard lock(mutex_);
    const Drawing drawing(drawing_);
    const Context::Current current(context());
    if (!picks_)
        picks_ = std::make_unique<ItemProgram>(kPickFragment);

    setDefaults();
    glDisable(GL_BLEND);
    const Target target(request.camera.width, request.camera.height, 1, GL_R32UI);
    glViewport(0, 0, request.camera.width, request.camera.height);
    glEnable(GL_SCISSOR_TEST);
    glScissor(left, bottom, width, height);
    const GLuint nothing[4] = {0, 0, 0, 0};
    glClearBufferuiv(GL_COLOR, 0, nothing);
    glClear(GL_DEPTH_BUFFER_BIT);

    const Frame frame(request, 1, std::max(tolerance, 1.f));
    picks_->begin(request.camera, 1);
    for (const Layer which : {Layer::kOpaque, Layer::kTransparent, Layer::kXray, Layer::kScreen}) {
        if (which == Layer::kXray) {   // from here on in front of everything, the later the nearer
            glDepthFunc(GL_ALWAYS);
            glDepthRange(0, 0);
        }
        for (const Batch* batch : layer(frame, which))
            drawBatch(frame, *picks_, *batch, false);
    }
    glDisable(GL_SCISSOR_TEST);
    glDepthRange(0, 1);

    std::vector<uint32_t> ids(size_t(width) * height);
    std::vector<float>    depths(ids.size());
    glReadPixels(left, bottom, width, height, GL_RED_INTEGER, GL_UNSIGNED_INT, ids.data());
    glReadPixels(left, bottom, width, height, GL_DEPTH_COMPONENT, GL_FLOAT, depths.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return nearestFirst(ids, depths);
}

std::string GlRenderer::description()
{
    const std::lock_guard lock(mutex_);
    const Context::Current current(context());
    const auto text = [](GLenum what) { return std::string(reinterpret_cast<const char*>(glGetString(what))); };
    return "OpenGL " + text(GL_VERSION) + ", " + text(GL_RENDERER);
}

void GlRenderer::drawPixelLines(const Camera& camera, const std::vector<float>& lines, float depth)
{
    for (const GLenum which : {GL_PROJECTION, GL_MODELVIEW}) {
        glMatrixMode(which);
        glPushMatrix();
        glLoadIdentity();
    }
    glBegin(GL_LINES);
    for (size_t i = 0; i + 1 < lines.size(); i += 2)
        glVertex3f(2 * lines[i] / float(camera.width) - 1, 2 * lines[i + 1] / float(camera.height) - 1, depth);
    glEnd();
    for (const GLenum which : {GL_PROJECTION, GL_MODELVIEW}) {
        glMatrixMode(which);
        glPopMatrix();
    }
}

}  // namespace

}  // namespace mirk::draw

extern "C" mirk::view::Renderer* mirkCreateRenderer() { return new mirk::draw::GlRenderer; }
