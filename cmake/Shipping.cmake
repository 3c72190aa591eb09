# vantrel_ship(TARGET DESCRIPTION): what a program or library that ships gets beyond the options of all: a version resource,
# from the project's version, and with mingw-w64 a read-only import table.
function(vantrel_ship target description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(file_type VFT_APP)
    set(file_name ${target}.exe)
  else()
    set(file_type VFT_DLL)
    set(file_name ${target}.dll)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Version.rc.in ${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)

  # Before 2.41, GNU's linker leaves the import table writable, depending on the section's name.
  if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
    # Without --preserve-dates, objcopy writes the time into the header.
    add_custom_command(TARGET ${target} POST_BUILD COMMAND ${CMAKE_OBJCOPY} --preserve-dates
      --rename-section .idata=.imports,contents,alloc,load,readonly,data $<TARGET_FILE:${target}>)
  endif()
endfunction()
