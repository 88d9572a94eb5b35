#include "draw/image_file.h"

#include <OpenImageIO/imageio.h>

namespace mirk::draw {

using OIIO::ImageInput;
using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;
using view::Error;
using view::Image;

namespace {

void checkArrays(const std::string& path, const Image& image)
{
    const size_t size = image.width > 0 && image.height > 0 && image.channels > 0
                            ? size_t(image.width) * image.height * image.channels : 0;
    if (!size || (image.bytes.size() != size && image.floats.size() != size))
        throw Error("Cannot write image '" + path + "': " + std::to_string(image.width) + " x " +
                    std::to_string(image.height) + " pixels of " + std::to_string(image.channels) +
                    " channels do not fit the data given");
}

}  // namespace

void writeImage(const std::string& path, const Image& image)
{
    checkArrays(path, image);
    const bool bytes = !image.bytes.empty();
    const auto out = ImageOutput::create(path);
    if (!out)
        throw Error("Cannot write image '" + path + "': " + OIIO::geterror());
    ImageSpec layout(image.width, image.height, image.channels, bytes ? TypeDesc::UINT8 : TypeDesc::FLOAT);
    if (bytes) {
        layout.attribute("oiio:ColorSpace", "sRGB");
        layout.attribute("oiio:UnassociatedAlpha", 1);
    }
    const void* data = bytes ? static_cast<const void*>(image.bytes.data()) : image.floats.data();
    if (!out->open(path, layout) || !out->write_image(bytes ? TypeDesc::UINT8 : TypeDesc::FLOAT, data) || !out->close())
        throw Error("Cannot write image '" + path + "': " + out->geterror());
}

Image readImage(const std::string& path)
{
    ImageSpec layout, plain;
    plain.attribute("oiio:UnassociatedAlpha", 1);
    const auto in = ImageInput::create(path);
    if (!in)
        throw Error("Cannot read image '" + path + "': " + OIIO::geterror());
    if (!in->open(path, layout, plain))
        throw Error("Cannot read image '" + path + "': " + in->geterror());
    Image image{layout.width, layout.height, layout.nchannels, {}, {}};
    const size_t size = size_t(layout.width) * layout.height * layout.nchannels;
    const bool bytes = layout.format == TypeDesc::UINT8;
    bool good = false;
    if (bytes) {
        image.bytes.resize(size);
        good = in->read_image(0, 0, 0, layout.nchannels, TypeDesc::UINT8, image.bytes.data());
    } else {
        image.floats.resize(size);
        good = in->read_image(0, 0, 0, layout.nchannels, TypeDesc::FLOAT, image.floats.data());
    }
    if (!good)
        throw Error("Cannot read image '" + path + "': " + in->geterror());
    return image;
}

}  // namespace mirk::draw
