# The host's SDK in MAX_SDK_DIR, which is its folder or the one with its headers: the targets max-api and max-plugin.
find_path(MAX_SDK_INCLUDES ext.h
  PATHS ${MAX_SDK_DIR}
  PATH_SUFFIXES source/c74support/max-includes c74support/max-includes source/max-sdk-base/c74support/max-includes
  NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_file(MAX_SDK_COMMON_SYMBOLS commonsyms.c
  PATHS ${MAX_SDK_INCLUDES} PATH_SUFFIXES common NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)

add_library(max-api INTERFACE)
target_include_directories(max-api SYSTEM INTERFACE ${MAX_SDK_INCLUDES})
add_library(max-plugin INTERFACE)
target_sources(max-plugin INTERFACE ${MAX_SDK_COMMON_SYMBOLS})
target_link_libraries(max-plugin INTERFACE max-api)

# The last two names are macOS's alone, and what the SDK's own source asks for.
file(STRINGS host/exports.txt host_names)
list(APPEND host_names path_fromfsref common_symbols_gettable)

if(MSVC)
  add_compile_options(/W4 /utf-8)
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
  add_compile_options(-Wall -Wextra -Wno-cast-function-type)
endif()

if(APPLE)
  # Only the host's names may be missing when the module is linked. Some that the box has to call are deprecated.
  list(TRANSFORM host_names PREPEND "-Wl,-U,_")
  target_link_options(max-plugin INTERFACE ${host_names})
  target_link_libraries(max-plugin INTERFACE "-framework CoreServices")
  add_compile_options(-Wno-deprecated-declarations)
elseif(WIN32)
  find_file(MAX_SDK_IMPORT_LIBRARY MaxAPI.lib
    PATHS ${MAX_SDK_INCLUDES} PATH_SUFFIXES x64 NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  target_link_libraries(max-plugin INTERFACE ${MAX_SDK_IMPORT_LIBRARY})
  add_compile_definitions(NOMINMAX LIBXML_STATIC)
  if(MINGW)
    target_link_options(max-plugin INTERFACE -static -s)
  endif()
endif()
