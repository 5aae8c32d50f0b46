# Builds the plug-in with MAX_SDK_DIR, against host/api made to look like an SDK of another generation: its types, and the
# macros that bite. What is built has to run. Variables: SOURCE_DIR, WORK_DIR, RUN_PROGRAM, COMPILER, C_COMPILER.

set(includes ${WORK_DIR}/sdk/source/c74support/max-includes)
file(REMOVE_RECURSE ${WORK_DIR})
file(GLOB headers ${SOURCE_DIR}/host/api/*.h)
file(COPY ${headers} DESTINATION ${includes})
file(COPY ${SOURCE_DIR}/host/api/commonsyms.c DESTINATION ${includes}/common)

function(replace_in header what with)
  file(READ ${includes}/${header} text)
  string(FIND "${text}" "${what}" place)
  if(place EQUAL -1)
    message(FATAL_ERROR "${header} has no longer: ${what}")
  endif()
  string(REPLACE "${what}" "${with}" text "${text}")
  file(WRITE ${includes}/${header} "${text}")
endfunction()

foreach(type t_int t_ptr_int)
  replace_in(max_types.h "typedef intptr_t ${type}" "typedef long long ${type}")
endforeach()
replace_in(max_types.h "typedef intptr_t t_atom_long" "typedef long long t_atom_long")
replace_in(max_types.h "typedef uintptr_t t_ptr_size" "typedef unsigned long long t_ptr_size")
replace_in(ext_mess.h "void *(*method)(void *)" "void *(*method)(void *, ...)")
replace_in(ext_sysmem.h "sysmem_newptr(t_ptr_size size)" "sysmem_newptr(long size)")
replace_in(ext_sysmem.h "sysmem_newptrclear(t_ptr_size size)" "sysmem_newptrclear(long size)")
replace_in(ext_sysmem.h "t_ptr_size sysmem_ptrsize" "long sysmem_ptrsize")
file(APPEND ${includes}/ext.h [[

#define MIN(a, b) ((a) < (b) ? (a) : (b))
#define MAX(a, b) ((a) > (b) ? (a) : (b))
#define ABS(x) ((x) < 0 ? -(x) : (x))
#define CLAMP(a, lo, hi) ((a) > (lo) ? ((a) < (hi) ? (a) : (hi)) : (lo))
#define INRANGE(v, lo, hi) ((v) >= (lo) && (v) <= (hi))
#define NIL ((void *)0)
#define TRUE 1
#define FALSE 0
#define CAREFUL 1
#define MAGIC 1758379419
#define getbytes(size) sysmem_newptr(size)
#define freebytes(block, size) sysmem_freeptr(block)
#define post(...) object_post(NIL, __VA_ARGS__)
#define error(...) object_error(NIL, __VA_ARGS__)
]])

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed (${status}):\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(configuring ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja -DMAX_SDK_DIR=${WORK_DIR}/sdk
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_COMPILE_WARNING_AS_ERROR=ON)
run(building ${CMAKE_COMMAND} --build ${WORK_DIR}/build --parallel 2)
run(installing ${CMAKE_COMMAND} --install ${WORK_DIR}/build --component package --prefix ${WORK_DIR})

file(GLOB external ${WORK_DIR}/vrk.tessaroll/externals/*)
file(WRITE ${WORK_DIR}/script "new list vrk.tessaroll\nlist read edit-menu.xml\nlist length\n")
run(playing ${RUN_PROGRAM} --plugin ${external} --search ${SOURCE_DIR}/package/examples --script ${WORK_DIR}/script)
if(NOT output MATCHES "^list:1 [1-9][0-9]*\n$")
  message(FATAL_ERROR "the box says: ${output}")
endif()
