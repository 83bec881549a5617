#include "support/PngPicture.h"

#include <png.h>

#include <stdexcept>
#include <string_view>

namespace headunit_test {

using headunit::Picture;

namespace {

constexpr std::string_view kEnd("\0\0\0\0IEND\xAE\x42\x60\x82", 12);

} // namespace

Picture decodePng(const std::string& bytes) {
    // The library stops at the last point, whatever follows.
    if (bytes.size() < kEnd.size() || bytes.substr(bytes.size() - kEnd.size()) != kEnd)
        throw std::runtime_error("the end is missing");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0)
        throw std::runtime_error(image.message);
    if (image.format != PNG_FORMAT_RGB) {
        png_image_free(&image);
        throw std::runtime_error("the points have another form");
    }
    Picture picture(image.width, image.height);
    if (png_image_finish_read(&image, nullptr, picture.points(), 0, nullptr) == 0)
        throw std::runtime_error(image.message);
    return picture;
}

bool areEqual(const Picture& left, const Picture& right) {
    if (left.width() != right.width() || left.height() != right.height())
        return false;
    for (std::size_t y = 0; y < left.height(); ++y)
        for (std::size_t x = 0; x < left.width(); ++x)
            if (!(left.at(x, y) == right.at(x, y)))
                return false;
    return true;
}

} // namespace headunit_test
