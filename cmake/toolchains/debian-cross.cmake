# What Debian's cross compilers for Linux have in common: a toolchain file names
# its target in `triple` and qemu's name of the machine in `machine`, and
# includes this one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${machine})
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)

# Libraries come from the target only, programs from this machine only.
set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests run under qemu-user.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${machine} -L /usr/${triple})
