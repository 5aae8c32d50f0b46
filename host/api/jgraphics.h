// Drawing: fills, text and images in a cell's own coordinates, y down, in pixels. Main thread.
#pragma once

#include "jpatcher_api.h"

HOST_API_BEGIN

typedef struct _jgraphics t_jgraphics; // a drawing context
typedef struct _jsurface t_jsurface;   // an image

typedef enum { JGRAPHICS_FONT_SLANT_NORMAL, JGRAPHICS_FONT_SLANT_ITALIC } t_jgraphics_font_slant;
typedef enum { JGRAPHICS_FONT_WEIGHT_NORMAL, JGRAPHICS_FONT_WEIGHT_BOLD } t_jgraphics_font_weight;

#define JGRAPHICS_FILEFORMAT_PNG 0
#define JGRAPHICS_FILEFORMAT_JPEG 1

void jrgba_set(t_jrgba *prgba, double r, double g, double b, double a);

// Four float atoms, red green blue alpha, into an array of at least four.
void jrgba_to_atoms(t_jrgba *c, t_atom *argv);

// The host's own colour setter, for an attribute whose four doubles live in the instance.
t_max_err jgraphics_attr_setrgba(t_object *x, t_object *attr, long argc, t_atom *argv);

// The path, the current colour, and filling the path with it, which clears the path.
void jgraphics_rectangle(t_jgraphics *g, double x, double y, double width, double height);
void jgraphics_set_source_jrgba(t_jgraphics *g, t_jrgba *rgba);
void jgraphics_fill(t_jgraphics *g);

// Text in UTF-8 with its baseline at the current point.
void jgraphics_select_font_face(t_jgraphics *g, const char *family, t_jgraphics_font_slant slant,
                                t_jgraphics_font_weight weight);
void jgraphics_set_font_size(t_jgraphics *g, double size);
void jgraphics_move_to(t_jgraphics *g, double x, double y);
void jgraphics_show_text(t_jgraphics *g, const char *utf8);

// Images. …create… decodes PNG or JPEG bytes and gives null when it cannot; …write… allocates *data, which the caller
// frees with sysmem_freeptr, and leaves *data null and *size 0 when it cannot. …reference gives the caller a further
// reference, the surface itself; …destroy gives one back.
t_jsurface *jgraphics_image_surface_create_from_filedata(const void *data, unsigned long datalen);
void jgraphics_write_image_surface_to_filedata(t_jsurface *surf, long fmt, void **data, long *size);
int jgraphics_image_surface_get_width(t_jsurface *s);
int jgraphics_image_surface_get_height(t_jsurface *s);
void jgraphics_image_surface_draw(t_jgraphics *g, t_jsurface *s, t_rect srcRect, t_rect destRect);
t_jsurface *jgraphics_surface_reference(t_jsurface *s);
void jgraphics_surface_destroy(t_jsurface *s);

HOST_API_END
