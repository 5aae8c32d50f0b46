// Basic types, results and linkage macros of the host's C API.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Around every declaration of the API: C linkage, visible outside the host.
#ifdef __cplusplus
#define HOST_API_BEGIN _Pragma("GCC visibility push(default)") extern "C" {
#define HOST_API_END                                                                                                   \
    }                                                                                                                  \
    _Pragma("GCC visibility pop")
#else
#define HOST_API_BEGIN _Pragma("GCC visibility push(default)")
#define HOST_API_END _Pragma("GCC visibility pop")
#endif

// What a plug-in exports: its entry functions, nothing else.
#define C74_EXPORT __attribute__((visibility("default")))

typedef intptr_t t_int;
typedef intptr_t t_ptr_int;
typedef uintptr_t t_ptr_uint;
typedef uintptr_t t_ptr_size;
typedef intptr_t t_atom_long;  // value of an integer atom
typedef double t_atom_float;   // value of a float atom
typedef t_atom_long t_max_err; // result of most calls: MAX_ERR_NONE or an error
typedef char *t_ptr;
typedef uint8_t t_bool;
typedef int16_t t_filepath; // a path id; the functions spell it short
typedef uint32_t t_fourcc;  // a four-character code, 'TEXT' is 0x54455854

#define MAX_ERR_NONE ((t_max_err)0)
#define MAX_ERR_GENERIC ((t_max_err)-1)
#define MAX_ERR_INVALID_PTR ((t_max_err)-2)
#define MAX_ERR_DUPLICATE ((t_max_err)-3)
#define MAX_ERR_OUT_OF_MEM ((t_max_err)-4)
