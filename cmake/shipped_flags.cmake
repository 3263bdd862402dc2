# What is shipped: position independent, guarded, and free of build paths.
# Programs for Windows are all that by the linker's own choice.
include(CheckLinkerFlag)

if(NOT WIN32)
  add_compile_options(-fPIE)
  add_link_options(-pie)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  add_compile_options(-ffile-prefix-map=${PROJECT_BINARY_DIR}=build
                      -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
  if(NOT WIN32)
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
  endif()
  check_linker_flag(CXX -Wl,-z,relro,-z,now TAPFORGE_LINKER_KNOWS_RELRO)
  if(TAPFORGE_LINKER_KNOWS_RELRO)
    add_link_options(-Wl,-z,relro,-z,now)
  endif()
endif()
