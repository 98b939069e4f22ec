# pgkit_compile_by_folder(TARGET ROOT [FILES_AT_ONCE]): compiles the C++ files of a folder together,
# at most so many at once, because most of the time of compiling goes into the headers that all of
# them need. Not taken are files with options of their own, and those that call Windows itself, whose
# header defines macros of common words. Call it when the target has all its sources.
function(pgkit_compile_by_folder target root)
  set(files_at_once 1000)
  if(ARGC GREATER 2)
    set(files_at_once ${ARGV2})
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # Here a source file looks like a header, whose classes should not have members of types of one file.
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  list(FILTER sources EXCLUDE REGEX "_win32")
  foreach(source ${sources})
    get_filename_component(path ${source} ABSOLUTE)
    file(RELATIVE_PATH path ${root} ${path})
    get_filename_component(folder all/${path} DIRECTORY)
    string(MAKE_C_IDENTIFIER ${folder} folder)
    math(EXPR group "0${${folder}_files} / ${files_at_once}")
    math(EXPR ${folder}_files "0${${folder}_files} + 1")
    set_source_files_properties(${source} TARGET_DIRECTORY ${target}
      PROPERTIES UNITY_GROUP ${folder}_${group})
  endforeach()
endfunction()
