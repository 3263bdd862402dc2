# 64-bit ARM.
set(triple aarch64-linux-gnu)
set(machine aarch64)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
