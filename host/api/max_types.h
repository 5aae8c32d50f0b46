// Basic types, results and linkage macros of the host's C API.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Before what a plug-in exports: its entry functions, nothing else.
#ifdef _WIN32
#define C74_EXPORT __declspec(dllexport)
#define HOST_API_VISIBLE
#define HOST_API_HIDDEN
#else
#define C74_EXPORT __attribute__((visibility("default")))
#define HOST_API_VISIBLE _Pragma("GCC visibility push(default)")
#define HOST_API_HIDDEN _Pragma("GCC visibility pop")
#endif

// Around every declaration of the API: C linkage, visible outside the host.
#ifdef __cplusplus
#define HOST_API_BEGIN HOST_API_VISIBLE extern "C" {
#define HOST_API_END                                                                                                   \
    }                                                                                                                  \
    HOST_API_HIDDEN
#else
#define HOST_API_BEGIN HOST_API_VISIBLE
#define HOST_API_END HOST_API_HIDDEN
#endif

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
