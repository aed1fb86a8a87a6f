# Project-wide compiler settings and the small helpers every folder uses.

add_compile_options(-Wall -Wextra -Wpedantic)
if(HBRC_WERROR)
  add_compile_options(-Werror)
endif()
if(HBRC_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# hbrc_add_library(<name> [SHARED|STATIC] SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...] [INCLUDES ...])
function(hbrc_add_library name)
  cmake_parse_arguments(A "SHARED;STATIC" "" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS;INCLUDES" ${ARGN})
  set(kind SHARED)
  if(A_STATIC)
    set(kind STATIC)
  endif()
  add_library(${name} ${kind} ${A_SOURCES})
  target_link_libraries(${name} PUBLIC ${A_PUBLIC_LIBS} PRIVATE ${A_PRIVATE_LIBS})
  if(A_INCLUDES)
    target_include_directories(${name} PUBLIC ${A_INCLUDES})
  endif()
endfunction()

# hbrc_add_test(<name> SOURCES ... [LIBS ...] [TIMEOUT seconds])
# A GoogleTest executable with a QApplication main, registered with ctest and run offscreen.
function(hbrc_add_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} hbrc_testsupport)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${T_TIMEOUT}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;HBRC_TEST_MODE=1")
endfunction()

# hbrc_add_bench(<name> SOURCES ... [LIBS ...]): a Google Benchmark executable (not run by ctest).
function(hbrc_add_bench name)
  cmake_parse_arguments(B "" "" "SOURCES;LIBS" ${ARGN})
  find_package(benchmark REQUIRED)
  add_executable(${name} ${B_SOURCES})
  target_link_libraries(${name} PRIVATE ${B_LIBS} benchmark::benchmark)
endfunction()

# Adds every direct sub-folder of the current folder that has a CMakeLists.txt, except those named.
function(hbrc_add_subdirectories)
  file(GLOB children LIST_DIRECTORIES true CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*)
  foreach(dir ${children})
    get_filename_component(leaf ${dir} NAME)
    if(IS_DIRECTORY ${dir} AND EXISTS ${dir}/CMakeLists.txt AND NOT leaf IN_LIST ARGN)
      add_subdirectory(${dir})
    endif()
  endforeach()
endfunction()
