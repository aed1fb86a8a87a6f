# Project-wide compiler settings and the small helpers every folder uses.

include(GenerateExportHeader)

add_compile_options(-Wall -Wextra -Wpedantic)
if(HBRC_WERROR)
  add_compile_options(-Werror)
endif()
if(HBRC_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# hbrc_add_library(<name> [SHARED|STATIC] SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...] [INCLUDES ...]
#                  [EXPORT_HEADER <folder>/<file>.h])
# Symbols are hidden unless a public header exports them. EXPORT_HEADER generates that header, with
# the macro <NAME>_EXPORT (hbrc_depot: HBRC_DEPOT_EXPORT), for the public headers to include as
# <folder>/<file>.h; a library without one brings its own macro (the toolkit's, the SDK's).
function(hbrc_add_library name)
  cmake_parse_arguments(A "SHARED;STATIC" "EXPORT_HEADER" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS;INCLUDES" ${ARGN})
  set(kind SHARED)
  if(A_STATIC)
    set(kind STATIC)
  endif()
  add_library(${name} ${kind} ${A_SOURCES})
  target_link_libraries(${name} PUBLIC ${A_PUBLIC_LIBS} PRIVATE ${A_PRIVATE_LIBS})
  foreach(dir ${A_INCLUDES})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${dir}>)
  endforeach()
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(A_EXPORT_HEADER)
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/exportheader)
    generate_export_header(${name} EXPORT_FILE_NAME ${generated}/${A_EXPORT_HEADER})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${generated}>)
  endif()
  if(NOT A_STATIC)
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
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
