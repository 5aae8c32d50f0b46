// PNG, through libpng's simplified interface.
#include <new>

#include <png.h>

#include "ui/surface.h"

bool maxhost::decode_png(std::span<const uint8_t> data, t_jsurface &surface) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, data.data(), data.size()))
        return false;
    image.format = PNG_FORMAT_RGBA;
    if (uint64_t{image.width} * image.height > most_pixels) {
        png_image_free(&image);
        return false;
    }
    try {
        surface.rgba.resize(PNG_IMAGE_SIZE(image));
    } catch (const std::bad_alloc &) {
        png_image_free(&image);
        throw;
    }
    surface.width = static_cast<int>(image.width);
    surface.height = static_cast<int>(image.height);
    return png_image_finish_read(&image, nullptr, surface.rgba.data(), 0, nullptr) != 0; // frees what image holds
}

bool maxhost::encode_png(const t_jsurface &surface, std::vector<uint8_t> &data) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(surface.width);
    image.height = static_cast<png_uint_32>(surface.height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&image, nullptr, &size, 0, surface.rgba.data(), 0, nullptr))
        return false;
    data.resize(size);
    const bool written = png_image_write_to_memory(&image, data.data(), &size, 0, surface.rgba.data(), 0, nullptr) != 0;
    data.resize(size);
    return written;
}
