# The module as a bundle of macOS: Info.plist from package-info.json, PkgInfo, signature.
string(JSON author GET "${package_info}" author)
string(JSON domain GET "${package_info}" package_extra reverse_domain)
string(JSON copyright GET "${package_info}" package_extra copyright)

file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/PkgInfo "iLaX????")
target_sources(vrk.tessaroll PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/PkgInfo)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/PkgInfo PROPERTIES MACOSX_PACKAGE_LOCATION .)

set_target_properties(vrk.tessaroll PROPERTIES
  BUNDLE ON
  BUNDLE_EXTENSION mxo
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/Info.plist.in
  MACOSX_BUNDLE_GUI_IDENTIFIER "${domain}.vrk.tessaroll"
  MACOSX_BUNDLE_BUNDLE_VERSION "${PROJECT_VERSION}"
  MACOSX_BUNDLE_SHORT_VERSION_STRING "${PROJECT_VERSION}"
  MACOSX_BUNDLE_LONG_VERSION_STRING "vrk.tessaroll ${PROJECT_VERSION}, ${author}"
  MACOSX_BUNDLE_COPYRIGHT "${copyright}")

# Apple silicon loads nothing that is not signed; a signature without a name is enough. Where there is no codesign, the
# linker has signed the binary.
find_program(CODESIGN codesign)
if(CODESIGN)
  add_custom_command(TARGET vrk.tessaroll POST_BUILD
    COMMAND ${CODESIGN} --force --sign - $<TARGET_BUNDLE_DIR:vrk.tessaroll>)
endif()
