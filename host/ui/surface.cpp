// Images: making them from files' bytes, and back.
#include "ui/surface.h"

#include <cstring>

#include "ext_sysmem.h"
#include "kernel/objects.h"
#include "ui/graphics.h"

using namespace maxhost;

Class *_jsurface::host_class() {
    static Class *const cls = new_host_class("jsurface", true);
    return cls;
}

t_jsurface *jgraphics_image_surface_create_from_filedata(const void *data, unsigned long datalen) {
    if (!data)
        return nullptr;
    return guarded("jgraphics_image_surface_create_from_filedata", static_cast<t_jsurface *>(nullptr), [&] {
        std::unique_ptr<t_jsurface, SurfaceReleaser> surface(create<t_jsurface>());
        const std::span bytes(static_cast<const uint8_t *>(data), datalen);
        return decode_png(bytes, *surface) || decode_jpeg(bytes, *surface) ? surface.release() : nullptr;
    });
}

void jgraphics_write_image_surface_to_filedata(t_jsurface *surf, long fmt, void **data, long *size) {
    *data = nullptr;
    *size = 0;
    const auto *surface = expect<t_jsurface>(surf, "jgraphics_write_image_surface_to_filedata");
    std::vector<uint8_t> bytes;
    const auto encode = [&] {
        return fmt == JGRAPHICS_FILEFORMAT_JPEG ? encode_jpeg(*surface, bytes) : encode_png(*surface, bytes);
    };
    if (!surface || !guarded("jgraphics_write_image_surface_to_filedata", false, encode))
        return;
    *data = sysmem_newptr(bytes.size());
    if (!*data)
        return;
    std::memcpy(*data, bytes.data(), bytes.size());
    *size = static_cast<long>(bytes.size());
}

int jgraphics_image_surface_get_width(t_jsurface *s) {
    const auto *surface = expect<t_jsurface>(s, "jgraphics_image_surface_get_width");
    return surface ? surface->width : 0;
}

int jgraphics_image_surface_get_height(t_jsurface *s) {
    const auto *surface = expect<t_jsurface>(s, "jgraphics_image_surface_get_height");
    return surface ? surface->height : 0;
}

t_jsurface *jgraphics_surface_reference(t_jsurface *s) {
    auto *surface = expect<t_jsurface>(s, "jgraphics_surface_reference");
    if (surface)
        ++surface->references;
    return surface;
}

void jgraphics_surface_destroy(t_jsurface *s) {
    auto *surface = expect<t_jsurface>(s, "jgraphics_surface_destroy");
    if (surface && --surface->references == 0)
        object_free(surface);
}
