# Finds what the tests need. TAPFORGE_TESTS is on where all of it is there, and
# can be set by hand as any option.
find_package(Python3 COMPONENTS Interpreter QUIET)
option(TAPFORGE_BUILD_GTEST "Build GoogleTest from its sources" ${CMAKE_CROSSCOMPILING})
if(TAPFORGE_BUILD_GTEST)
  # Neither cross compilers nor other C++ libraries come with a built one.
  find_path(TAPFORGE_GTEST_SOURCES src/gtest-all.cc PATHS /usr/src/googletest/googletest
            NO_CMAKE_FIND_ROOT_PATH)
  set(GTest_FOUND ${TAPFORGE_GTEST_SOURCES})
else()
  find_package(GTest QUIET)
endif()

if(Python3_FOUND AND GTest_FOUND)
  option(TAPFORGE_TESTS "Build the tests" ON)
elseif(NOT DEFINED TAPFORGE_TESTS)
  message(STATUS "The tests are left out: they need GoogleTest and Python 3.")
endif()

# Makes GTest::gtest_main known to the folder that calls it.
macro(provide_gtest)
  if(TAPFORGE_BUILD_GTEST)
    set(INSTALL_GTEST OFF)
    add_subdirectory(${TAPFORGE_GTEST_SOURCES} googletest EXCLUDE_FROM_ALL)
    target_compile_options(gtest PRIVATE -w)
  else()
    find_package(GTest REQUIRED)
  endif()
endmacro()

# No test takes nearly as long as this, also on a busy machine; a loop without end does.
set(test_seconds 900)

# Makes each test of a GoogleTest program a test of CTest. Under an emulator,
# which takes long to start, the whole program is one.
function(add_unit_tests program)
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${program} COMMAND ${program})
  else()
    include(GoogleTest)
    gtest_discover_tests(${program} PROPERTIES TIMEOUT ${test_seconds})
  endif()
endfunction()

# Gives all other tests of the folder that calls it their limit.
macro(limit_tests)
  get_property(tests DIRECTORY PROPERTY TESTS)
  set_tests_properties(${tests} PROPERTIES TIMEOUT ${test_seconds})
endmacro()
