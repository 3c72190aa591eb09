# How mingw-w64 builds what ships: hardened, and reproducibly in any folder.
if(NOT MINGW)
  return()
endif()

add_compile_options(-fstack-protector-strong)
add_library(vantrel_stack_guard STATIC support/StackGuard.cpp)
target_compile_definitions(vantrel_stack_guard PRIVATE
  $<TARGET_PROPERTY:vantrel_options,INTERFACE_COMPILE_DEFINITIONS>)
# The guard's value is set while the module loads, so this file itself is not protected.
target_compile_options(vantrel_stack_guard PRIVATE
  $<TARGET_PROPERTY:vantrel_options,INTERFACE_COMPILE_OPTIONS> -fno-stack-protector)
target_link_libraries(vantrel_options INTERFACE vantrel_stack_guard)

# The map lists the libraries that were linked in, for ./package.
add_link_options(-Wl,--no-insert-timestamp -Wl,-Map=$<TARGET_PROPERTY:NAME>.map)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  add_link_options(-s)
  # Before 2.41, GNU's linker leaves the import table writable, depending on the section's name.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    foreach(rule CMAKE_CXX_LINK_EXECUTABLE CMAKE_CXX_CREATE_SHARED_LIBRARY)
      list(APPEND ${rule} "${CMAKE_OBJCOPY} --preserve-dates \
--rename-section .idata=.imports,contents,alloc,load,readonly,data <TARGET>")
    endforeach()
  endif()
endif()
