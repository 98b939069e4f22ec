# What Windows shows of a file: name, version, whose it is. The system also compares these versions
# when an installer is to replace the file.
#
#   pgkit_add_version_resource(TARGET DESCRIPTION [MANIFEST])
#
# A program may bring the manifest of its name, TARGET.manifest, from the directory it is called in.
function(pgkit_add_version_resource target description)
  if(NOT WIN32)
    return()
  endif()
  get_target_property(type ${target} TYPE)
  set(file_type 0x1L)  # VFT_APP
  set(extension .exe)
  if(type STREQUAL "SHARED_LIBRARY")
    set(file_type 0x2L)  # VFT_DLL
    set(extension .dll)
  endif()
  set(manifest "")
  if("MANIFEST" IN_LIST ARGN)
    set(manifest "1 24 \"${CMAKE_CURRENT_SOURCE_DIR}/${target}.manifest\"")
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()
