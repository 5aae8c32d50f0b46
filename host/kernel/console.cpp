// The console: formatting lines and handing them to the front end.
#include "kernel/console.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

#include "ext_post.h"
#include "kernel/frontend.h"
#include "kernel/objects.h"

namespace maxhost {
namespace {

constexpr int longest_line = 32767; // bytes; what is over is cut

// The formatted text; a format that cannot be carried out (a wide text that no locale can write) stands for itself.
std::string formatted(const char *format, va_list arguments) {
    std::string text(longest_line + 2, 0);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    if (length < 0)
        return format;
    text.resize(static_cast<size_t>(std::min(length, longest_line + 1)));
    return cut(std::move(text), longest_line);
}

void show(ConsoleLine kind, const t_object *object, const std::string &text) {
    if (front_end().console)
        front_end().console(kind, display_name(object), text);
}

void show(ConsoleLine kind, const t_object *object, const char *format, va_list arguments) {
    show(kind, object, formatted(format, arguments));
}

} // namespace

std::string cut(std::string text, size_t bytes) {
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && (text[bytes] & 0xC0) == 0x80)
        --bytes;
    text.resize(bytes);
    return text;
}

void console_error(const t_object *object, const std::string &text) { show(ConsoleLine::error, object, text); }
void console_warning(const t_object *object, const std::string &text) { show(ConsoleLine::warn, object, text); }

void console_error_about(const std::string &name, const std::string &text) {
    if (front_end().console)
        front_end().console(ConsoleLine::error, name, text);
}

} // namespace maxhost

using namespace maxhost;

void object_post(t_object *x, const char *s, ...) {
    va_list arguments;
    va_start(arguments, s);
    guarded("object_post", [&] { show(ConsoleLine::post, x, s, arguments); });
    va_end(arguments);
}

void object_warn(t_object *x, const char *s, ...) {
    va_list arguments;
    va_start(arguments, s);
    guarded("object_warn", [&] { show(ConsoleLine::warn, x, s, arguments); });
    va_end(arguments);
}

void object_error(t_object *x, const char *s, ...) {
    va_list arguments;
    va_start(arguments, s);
    guarded("object_error", [&] { show(ConsoleLine::error, x, s, arguments); });
    va_end(arguments);
}

void ouchstring(const char *s, ...) {
    va_list arguments;
    va_start(arguments, s);
    if (front_end().alert)
        guarded("ouchstring", [&] { front_end().alert(formatted(s, arguments)); });
    va_end(arguments);
}
