// The module that decodes images with OpenImageIO.
#include <OpenImageIO/imageio.h>

#include "texture/image.h"

using mirk::texture::Image;
using OIIO::ImageInput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

namespace {

constexpr size_t kMostBytes = size_t(2) << 30;

/// Grey becomes three channels; without alpha everything is opaque.
template <class T>
void complete(T* pixels, size_t count, int channels, bool alpha, T opaque)
{
    for (size_t i = 0; i < count; ++i, pixels += 4) {
        if (channels == 2)
            pixels[3] = pixels[1];
        if (channels < 3)
            pixels[1] = pixels[2] = pixels[0];
        if (!alpha)
            pixels[3] = opaque;
    }
}

template <class T>
bool readPixels(ImageInput& in, const ImageSpec& layout, int channels, TypeDesc format, Image& image, std::vector<T>& pixels, T opaque)
{
    const size_t count = size_t(image.width) * size_t(image.height);
    pixels.resize(count * 4);
    if (!in.read_image(0, 0, 0, channels, format, pixels.data(), OIIO::stride_t(4 * sizeof(T))))
        return false;
    image.hasAlpha = channels == 2 || (channels == 4 && (layout.alpha_channel < 0 || layout.alpha_channel == 3));
    complete(pixels.data(), count, channels, image.hasAlpha, opaque);
    return true;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) bool mirkReadImage(const char* path, Image& image, std::string& why)
{
    ImageSpec layout, plain;
    plain.attribute("oiio:UnassociatedAlpha", 1);
    const auto in = ImageInput::create(path);
    if (!in) {
        why = OIIO::geterror();
        return false;
    }
    if (!in->open(path, layout, plain)) {
        why = in->geterror();
        return false;
    }
    const bool   bytes = layout.format == TypeDesc::UINT8;
    const size_t pixel = bytes ? 4 : 16;
    if (layout.width < 1 || layout.height < 1 || layout.depth > 1 || layout.nchannels < 1 || layout.deep) {
        why = "it is no flat image";
        return false;
    }
    if (size_t(layout.width) > kMostBytes / pixel / size_t(layout.height)) {
        why = "its " + std::to_string(layout.width) + " x " + std::to_string(layout.height) + " pixels are too many";
        return false;
    }
    image.width = layout.width;
    image.height = layout.height;
    const int  channels = std::min(layout.nchannels, 4);
    const bool good = bytes ? readPixels<uint8_t>(*in, layout, channels, TypeDesc::UINT8, image, image.bytes, 255)
                            : readPixels<float>(*in, layout, channels, TypeDesc::FLOAT, image, image.floats, 1.f);
    if (!good)
        why = in->geterror();
    return good;
}
