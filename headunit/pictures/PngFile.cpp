#include "pictures/PngFile.h"

#include <png.h>

#include <new>

namespace headunit {

static_assert(sizeof(Colour) == PNG_IMAGE_PIXEL_SIZE(PNG_FORMAT_RGB), "points as the library has them");

std::string encodePng(const Picture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width());
    image.height = static_cast<png_uint_32>(picture.height());
    image.format = PNG_FORMAT_RGB;
    image.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    // There is room enough, so that it can only fail for want of memory.
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.points(), 0, nullptr) == 0)
        throw std::bad_alloc();
    bytes.resize(size);
    return bytes;
}

} // namespace headunit
