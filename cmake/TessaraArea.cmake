# Helpers shared by every area of the source tree.

set(TESSARA_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wno-unused-parameter)

# tessara_area(<target> [DIRS <subdir>...] [DEPS <target>...] [QT])
# Builds one static library from the *.cpp files of the current source
# directory and of the listed subdirectories. An area without sources yet
# becomes an INTERFACE library so that dependants link either way.
#
# The order in which the areas are added is their layering: an area may
# depend only on areas added before it, so no two areas can ever link each
# other. A dependency on an area not yet added stops the configuration.
function(tessara_area target)
  cmake_parse_arguments(A "QT" "" "DIRS;DEPS" ${ARGN})
  foreach(d IN LISTS A_DEPS)
    if(d MATCHES "^tessara_" AND NOT TARGET ${d})
      message(FATAL_ERROR "${target} depends on ${d}, which is not below it: an area may use "
                          "only the areas added before it (see the top-level CMakeLists.txt)")
    endif()
  endforeach()
  file(GLOB srcs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(d IN LISTS A_DIRS)
    file(GLOB more CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${d}/*.cpp)
    list(APPEND srcs ${more})
  endforeach()
  if(srcs)
    add_library(${target} STATIC ${srcs})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_compile_options(${target} PRIVATE ${TESSARA_WARNINGS})
    target_link_libraries(${target} PUBLIC ${A_DEPS})
    if(A_QT)
      set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON)
    endif()
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} INTERFACE ${A_DEPS})
  endif()
endfunction()

# tessara_test(<area> [LIBS <target>...] [LABELS <label>...] [EXTRA <file>...] [NEEDS_CLI])
# One GoogleTest executable per area from tests/<area>/*.cpp, each test
# registered with CTest.
function(tessara_test area)
  cmake_parse_arguments(A "NEEDS_CLI" "" "LIBS;LABELS;EXTRA" ${ARGN})
  file(GLOB srcs CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT srcs)
    return()
  endif()
  set(exe test_${area})
  add_executable(${exe} ${srcs} ${A_EXTRA})
  target_link_libraries(${exe} PRIVATE ${A_LIBS} GTest::gtest GTest::gmock GTest::gtest_main Threads::Threads)
  target_compile_options(${exe} PRIVATE ${TESSARA_WARNINGS})
  target_include_directories(${exe} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${exe} PRIVATE
    TESSARA_TESTDATA="${PROJECT_SOURCE_DIR}/../shared/testdata"
    TESSARA_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    TESSARA_BINARY_DIR="${PROJECT_BINARY_DIR}"
    TESSARA_CLI="$<TARGET_FILE:tessara-cli>")
  # Only tests that run the batch tool wait for it, so an area's tests build
  # without every other area.
  if(A_NEEDS_CLI)
    add_dependencies(${exe} tessara-cli)
  endif()
  set(props)
  if(A_LABELS)
    set(props PROPERTIES LABELS "${A_LABELS}")
  endif()
  gtest_discover_tests(${exe} DISCOVERY_TIMEOUT 120 ${props})
endfunction()

# A Windows executable that runs on its own, without the MinGW runtime DLLs
# beside it (the batch tool and the test executables). The window links Qt's
# DLLs and must share their runtime, so it does not take this.
function(tessara_static_windows_runtime target)
  if(WIN32)
    target_link_options(${target} PRIVATE -static -static-libgcc -static-libstdc++)
  endif()
endfunction()
