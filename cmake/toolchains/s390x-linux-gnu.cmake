# The big-endian one: mistakes of byte order show here.
set(triple s390x-linux-gnu)
set(machine s390x)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
