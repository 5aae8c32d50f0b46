// Floats as text, with a decimal point whatever locale the program has set.
#include "vrk.numbers.h"

#include <charconv>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#ifdef __APPLE__
#include <xlocale.h>
#endif

#ifdef _WIN32

void vrk_print_float(double value, char *buffer, size_t size) {
    *std::to_chars(buffer, buffer + size - 1, value, std::chars_format::fixed, 6).ptr = '\0';
}

double vrk_read_float(const char *text) {
    static const _locale_t c_locale = _create_locale(LC_NUMERIC, "C");
    return _strtod_l(text, nullptr, c_locale);
}

#else

namespace {

const locale_t c_locale = newlocale(LC_NUMERIC_MASK, "C", nullptr);

// The calling thread's numbers are C's until the scope ends.
class c_numbers {
  public:
    c_numbers() : former(uselocale(c_locale)) {}
    ~c_numbers() { uselocale(former); }
    c_numbers(const c_numbers &) = delete;
    c_numbers &operator=(const c_numbers &) = delete;

  private:
    locale_t former;
};

} // namespace

void vrk_print_float(double value, char *buffer, size_t size) {
    const c_numbers numbers;
    std::snprintf(buffer, size, "%f", value);
}

double vrk_read_float(const char *text) {
    const c_numbers numbers;
    return std::strtod(text, nullptr);
}

#endif
