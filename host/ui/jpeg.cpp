// JPEG, through libjpeg. Its errors come back by longjmp, so that everything with a destructor lives outside the
// functions that call it.
#include <csetjmp>
#include <cstdio> // jpeglib.h wants it before
#include <cstdlib>
#include <memory>
#include <new>

#include <jpeglib.h>

#include "ui/surface.h"

namespace maxhost {
namespace {

struct ErrorManager : jpeg_error_mgr {
    std::jmp_buf failed;
};

void prepare(ErrorManager &errors) {
    jpeg_std_error(&errors);
    errors.error_exit = [](j_common_ptr common) { std::longjmp(static_cast<ErrorManager *>(common->err)->failed, 1); };
    errors.emit_message = [](j_common_ptr, int) {};
    errors.output_message = [](j_common_ptr) {};
}

bool read_header(jpeg_decompress_struct &jpeg, std::span<const uint8_t> data) {
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, data.data(), data.size());
    return jpeg_read_header(&jpeg, TRUE) == JPEG_HEADER_OK &&
           uint64_t{jpeg.image_width} * jpeg.image_height <= most_pixels;
}

// Spreads a row of three bytes a pixel into four, from the right, in place.
void add_alpha(uint8_t *row, size_t width) {
    for (size_t i = width; i-- > 0;) {
        row[4 * i + 3] = 255;
        for (size_t part = 3; part-- > 0;)
            row[4 * i + part] = row[3 * i + part];
    }
}

bool read_pixels(jpeg_decompress_struct &jpeg, t_jsurface &surface) {
    jpeg.out_color_space = JCS_RGB;
    jpeg_start_decompress(&jpeg);
    const size_t width = jpeg.output_width;
    surface.width = static_cast<int>(width);
    surface.height = static_cast<int>(jpeg.output_height);
    try {
        surface.rgba.resize(4 * width * jpeg.output_height);
    } catch (const std::bad_alloc &) {
        return false;
    }
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = surface.rgba.data() + 4 * width * jpeg.output_scanline;
        jpeg_read_scanlines(&jpeg, &row, 1);
        add_alpha(row, width);
    }
    return jpeg_finish_decompress(&jpeg) != 0;
}

void write_pixels(jpeg_compress_struct &jpeg, const t_jsurface &surface, uint8_t *row) {
    jpeg.image_width = static_cast<JDIMENSION>(surface.width);
    jpeg.image_height = static_cast<JDIMENSION>(surface.height);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 90, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    const size_t width = jpeg.image_width;
    while (jpeg.next_scanline < jpeg.image_height) {
        const uint8_t *from = surface.rgba.data() + 4 * width * jpeg.next_scanline;
        for (size_t i = 0; i < width; ++i)
            for (size_t part = 0; part < 3; ++part)
                row[3 * i + part] = from[4 * i + part];
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
}

} // namespace

bool decode_jpeg(std::span<const uint8_t> data, t_jsurface &surface) {
    if (data.size() < 2 || data[0] != 0xFF || data[1] != 0xD8)
        return false;
    jpeg_decompress_struct jpeg{};
    ErrorManager errors;
    prepare(errors);
    jpeg.err = &errors;
    volatile bool decoded = false;
    if (setjmp(errors.failed) == 0)
        decoded = read_header(jpeg, data) && read_pixels(jpeg, surface);
    jpeg_destroy_decompress(&jpeg);
    return decoded;
}

bool encode_jpeg(const t_jsurface &surface, std::vector<uint8_t> &data) {
    std::vector<uint8_t> row(3 * static_cast<size_t>(surface.width));
    jpeg_compress_struct jpeg{};
    ErrorManager errors;
    prepare(errors);
    jpeg.err = &errors;
    unsigned char *written = nullptr;
    unsigned long size = 0;
    volatile bool encoded = false;
    if (setjmp(errors.failed) == 0) {
        jpeg_create_compress(&jpeg);
        jpeg_mem_dest(&jpeg, &written, &size);
        write_pixels(jpeg, surface, row.data());
        encoded = true;
    }
    jpeg_destroy_compress(&jpeg);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owned(written, std::free);
    if (encoded)
        data.assign(written, written + size);
    return encoded;
}

} // namespace maxhost
