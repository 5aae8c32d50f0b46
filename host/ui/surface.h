// Images: pixels with a count of references.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "jgraphics.h"
#include "kernel/classes.h"

struct _jsurface : t_object {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba; // rows from the top, four bytes a pixel, alpha not multiplied in
    std::atomic<int> references{1};

    static maxhost::Class *host_class();
    static constexpr const char *kind_name = "image surface";
};

namespace maxhost {

// An image of more pixels than this is not decoded: its memory would be out of proportion to its file.
constexpr uint64_t most_pixels = 64u << 20;

// The decoders and encoders fill what they are given and are false when they cannot.
bool decode_png(std::span<const uint8_t> data, t_jsurface &surface);
bool decode_jpeg(std::span<const uint8_t> data, t_jsurface &surface);
bool encode_png(const t_jsurface &surface, std::vector<uint8_t> &data);
bool encode_jpeg(const t_jsurface &surface, std::vector<uint8_t> &data);

} // namespace maxhost
