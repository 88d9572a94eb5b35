// file: an image as a texture.
#include <algorithm>
#include <array>
#include <filesystem>

#include <maya/MFnAttribute.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include "command/message.h"
#include "graph/scene.h"
#include "texture/image.h"
#include "texture/texture_node.h"

namespace mirk::texture {

using namespace nodes;

namespace {

enum Filter { kOff, kMipmap, kBox, kQuadratic, kQuartic, kGaussian };

/// Numbers of bytes, exact.
const std::array<float, 256> kByte = [] {
    std::array<float, 256> table{};
    for (size_t i = 0; i < 256; ++i)
        table[i] = float(i) / 255.f;
    return table;
}();

/// An image whose lower left corner is (0, 0) and that goes on beyond its borders.
struct Pixels
{
    std::shared_ptr<const Image> image;
    const uint8_t*               bytes = nullptr;
    const float*                 floats = nullptr;
    int                          width = 0, height = 0;
    bool                         smooth = true;

    Texel texel(int x, int y) const
    {
        const size_t at = (size_t(height - 1 - y) * size_t(width) + size_t(x)) * 4;
        if (bytes)
            return {kByte[bytes[at]], kByte[bytes[at + 1]], kByte[bytes[at + 2]], kByte[bytes[at + 3]]};
        return {floats[at], floats[at + 1], floats[at + 2], floats[at + 3]};
    }

    static float mix(float a, float b, float t) { return a + (b - a) * t; }
    static Texel mix(const Texel& a, const Texel& b, float t)
    {
        return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t), mix(a.a, b.a, t)};
    }

    Texel at(float u, float v) const
    {
        const float x = inTile(u) * float(width), y = inTile(v) * float(height);
        if (!smooth)
            return texel(std::min(int(x), width - 1), std::min(int(y), height - 1));
        // between the middles of four pixels, those beyond a border from the other side
        const float fx = std::floor(x - 0.5f), fy = std::floor(y - 0.5f);
        const float tx = x - 0.5f - fx, ty = y - 0.5f - fy;
        const int   i = int(fx), j = int(fy);
        const int   x0 = i < 0 ? width - 1 : i, y0 = j < 0 ? height - 1 : j, x1 = i + 1 < width ? i + 1 : 0, y1 = j + 1 < height ? j + 1 : 0;
        return mix(mix(texel(x0, y0), texel(x1, y0), tx), mix(texel(x0, y1), texel(x1, y1), tx), ty);
    }
};

/// Where there is no image.
struct Nothing final : Sampler
{
    Texel color;
    void  sample(const UV*, Texel* out, size_t count) const override { std::fill_n(out, count, color); }
};

/// The name with its last run of digits, or of '#', before the extension replaced by a frame.
std::string numbered(const std::string& name, int frame)
{
    const size_t slash = name.find_last_of('/'), dot = name.find_last_of('.');
    const size_t stop = dot == std::string::npos || (slash != std::string::npos && dot < slash) ? name.size() : dot;
    const auto   isPlace = [](char c) { return c == '#' || (c >= '0' && c <= '9'); };
    size_t       end = stop;
    while (end > 0 && !isPlace(name[end - 1]) && name[end - 1] != '/')
        --end;
    size_t begin = end;
    while (begin > 0 && isPlace(name[begin - 1]))
        --begin;
    if (begin == end)
        return name;
    std::string digits = std::to_string(std::abs(int64_t(frame)));
    digits.insert(0, end - begin > digits.size() ? end - begin - digits.size() : 0, '0');
    return name.substr(0, begin) + (frame < 0 ? "-" : "") + digits + name.substr(end);
}

/// As it stands, else beside the scene file.
std::string found(const std::string& name)
{
    namespace fs = std::filesystem;
    const fs::path path(name);
    std::error_code failed;
    if (path.is_absolute() || fs::exists(path, failed) || scene().fileName.empty())
        return name;
    const fs::path beside = fs::path(scene().fileName).parent_path() / path;
    return fs::exists(beside, failed) ? beside.string() : name;
}

class File : public TextureNode
{
public:
    static void*   creator() { return new File; }
    static MStatus initialize()
    {
        aName = typed("fileTextureName", "ftn", MFnData::kString);
        MFnAttribute(aName).setUsedAsFilename(true);
        aFilterType = choice("filterType", "ft", kQuadratic, {"Off", "Mipmap", "Box", "Quadratic", "Quartic", "Gaussian"}, kKey);
        aUseFrame = number("useFrameExtension", "ufe", Number::kBoolean, 0, kKey);
        aFrame = number("frameExtension", "fe", Number::kInt, 0, kKey);
        aFrameOffset = number("frameOffset", "fof", Number::kInt, 0, kKey);
        aDisable = number("disableFileLoad", "dfl", Number::kBoolean, 0, kKey);
        aHasAlpha = number("fileHasAlpha", "fha", Number::kBoolean, 0, kOut);
        aSize = tuple("outSize", "os", {number("outSizeX", "osx", Number::kFloat, 0, kOut), number("outSizeY", "osy", Number::kFloat, 0, kOut)}, kOut);
        add({aHasAlpha, aSize});
        // scene files connect the settings of a placement; what counts comes by uvCoord
        add({uvPair("coverage", "c", 1, kHide), uvPair("translateFrame", "tf", 0, kHide), unit("rotateFrame", "rf", Unit::kAngle, 0, kHide),
             number("mirrorU", "mu", Number::kBoolean, 0, kHide), number("mirrorV", "mv", Number::kBoolean, 0, kHide),
             number("stagger", "s", Number::kBoolean, 0, kHide), number("wrapU", "wu", Number::kBoolean, 1, kHide),
             number("wrapV", "wv", Number::kBoolean, 1, kHide), uvPair("repeatUV", "re", 1, kHide), uvPair("offset", "of", 0, kHide),
             unit("rotateUV", "ro", Unit::kAngle, 0, kHide), uvPair("noiseUV", "n", 0, kHide)});
        for (const MObject& corner : corners())
            add({corner});
        const MStatus status = declare({aName, aFilterType, aUseFrame, aFrame, aFrameOffset, aDisable});
        affects({aName, aUseFrame, aFrame, aFrameOffset, aDisable}, {aHasAlpha, aSize});
        return status;
    }

    std::unique_ptr<Sampler> sampler(MDataBlock& block) override
    {
        load(block);
        if (!image_) {
            auto nothing = std::make_unique<Nothing>();
            nothing->color = balance(block).uncovered;
            return nothing;
        }
        Pixels pixels;
        pixels.smooth = block.inputValue(aFilterType).asShort() != kOff;
        pixels.image = pixels.smooth ? level(block) : image_;
        pixels.bytes = pixels.image->bytes.empty() ? nullptr : pixels.image->bytes.data();
        pixels.floats = pixels.image->floats.data();
        pixels.width = pixels.image->width;
        pixels.height = pixels.image->height;
        return paint(block, std::move(pixels));
    }

    MStatus compute(const MPlug& plug, MDataBlock& block) override
    {
        if (plug == aHasAlpha) {
            load(block);
            block.outputValue(aHasAlpha).setBool(image_ && image_->hasAlpha);
        } else if (plug == aSize || (plug.isChild() && plug.parent() == aSize)) {
            load(block);
            block.outputValue(aSize).set2Float(image_ ? float(image_->width) : 0, image_ ? float(image_->height) : 0);
            block.setClean(aSize);
        } else {
            return TextureNode::compute(plug, block);
        }
        block.setClean(plug);
        return MS::kSuccess;
    }

private:
    /// The image that the attributes name is in `image_` then. What cannot be read is told of once, until it changes.
    void load(MDataBlock& block)
    {
        std::string path = block.inputValue(aName).asString().asChar();
        if (block.inputValue(aUseFrame).asBool() && !path.empty()) {
            const int64_t frame = int64_t(block.inputValue(aFrame).asInt()) + block.inputValue(aFrameOffset).asInt();
            path = numbered(path, int(std::clamp<int64_t>(frame, INT32_MIN, INT32_MAX)));
        }
        if (path.empty() || block.inputValue(aDisable).asBool()) {
            take(nullptr, "", "");
            return;
        }
        path = found(path);
        const std::string stamp = fileStamp(path);
        if (path == path_ && stamp == stamp_)
            return;
        std::string why;
        take(readImage(path, why), path, stamp);
        if (!image_)
            message::warning(std::string(name().asChar()) + ": the image '" + path + "' cannot be read: " + why + ".");
    }

    void take(std::shared_ptr<const Image> image, const std::string& path, const std::string& stamp)
    {
        image_ = std::move(image);
        levels_.clear();
        path_ = path;
        stamp_ = stamp;
    }

    /// The image at the size where the filter is about a pixel wide.
    std::shared_ptr<const Image> level(MDataBlock& block)
    {
        const float2& size = block.inputValue(aFilterSize).asFloat2();
        const float   width = std::max(std::fabs(size[0]) * float(image_->width), std::fabs(size[1]) * float(image_->height)) * value(block, aFilter) +
                            value(block, aFilterOffset) * float(std::max(image_->width, image_->height));
        const size_t wanted = width >= 2 ? size_t(std::min(std::log2(width), 31.f)) : 0;
        while (levels_.size() < wanted) {
            const Image& last = levels_.empty() ? *image_ : *levels_.back();
            if (last.width == 1 && last.height == 1)
                break;
            levels_.push_back(std::make_shared<Image>(halved(last)));
        }
        const size_t at = std::min(wanted, levels_.size());
        return at ? levels_[at - 1] : image_;
    }

    static inline MObject aName, aFilterType, aUseFrame, aFrame, aFrameOffset, aDisable, aHasAlpha, aSize;

    std::shared_ptr<const Image>              image_;
    std::vector<std::shared_ptr<const Image>> levels_;   ///< halved again and again
    std::string                               path_, stamp_;
};

}  // namespace

void registerFile() { registerTexture("file", 0x52544654, MFn::kFileTexture, File::creator, File::initialize); }

}  // namespace mirk::texture
