# libqor_ark_base: the same sources once per instruction level, each level a library of its own.
#
# The build tree is laid out like the install tree (lib/ and lib/glibc-hwcaps/...), and
# levels/<level>/ holds a link to one level each, so that a test can pin it with LD_LIBRARY_PATH.

set(QOR_BUILD_LIB ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

# Any BLAS with the Fortran symbols; OpenBLAS, of the OpenMP flavour, keeps to the thread of a team
# that calls it.
find_library(QOR_BLAS NAMES openblas blas REQUIRED)

# The exported names, by the public headers.
function(qor_export_map out)
  set(map ${CMAKE_BINARY_DIR}/qor_ark_base.map)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/include/qor/*.h)
  set(script ${CMAKE_SOURCE_DIR}/cmake/ExportMap.cmake)
  add_custom_command(OUTPUT ${map}
    COMMAND ${CMAKE_COMMAND} -DCOMPILER=${CMAKE_C_COMPILER} -DINCLUDE=${CMAKE_SOURCE_DIR}/include
            -DMAP=${map} -P ${script}
    DEPENDS ${headers} ${script} VERBATIM)
  add_custom_target(qor_export_map DEPENDS ${map})
  set(${out} ${map} PARENT_SCOPE)
endfunction()

function(qor_add_kernel_library)
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/frame/*.cpp ${CMAKE_SOURCE_DIR}/frame/*.S
    ${CMAKE_SOURCE_DIR}/kernels/*/*.cpp
    ${CMAKE_SOURCE_DIR}/services/*.cpp
    ${CMAKE_SOURCE_DIR}/streams/*.cpp ${CMAKE_SOURCE_DIR}/streams/generators/*.cpp
    ${CMAKE_SOURCE_DIR}/distributions/*.cpp ${CMAKE_SOURCE_DIR}/fitting/*.cpp
    ${CMAKE_SOURCE_DIR}/statistics/*.cpp)
  qor_export_map(map)
  # Registers of a step that stand side by side in the source: g++ interleaves them only before it
  # hands out registers. (Its precompiled headers bind the options; the second platform has too few
  # registers.)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT QOR_IS_I386)
    set_source_files_properties(${CMAKE_SOURCE_DIR}/kernels/power/pow.cpp
      ${CMAKE_SOURCE_DIR}/kernels/power/powr.cpp ${CMAKE_SOURCE_DIR}/kernels/power/powx.cpp
      ${CMAKE_SOURCE_DIR}/kernels/root/inv_sqrt.cpp
      PROPERTIES COMPILE_OPTIONS -fschedule-insns SKIP_PRECOMPILE_HEADERS ON)
  endif()
  # Clang would do arithmetic of lanes that are not asked for, and raise their flags. (Not where x87
  # works: there it would wait for exceptions that are left pending for the caller.)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(kernels ${sources})
    list(FILTER kernels INCLUDE REGEX "/kernels/")
    list(FILTER kernels EXCLUDE REGEX "/expm1_double.cpp$")
    set_property(SOURCE ${kernels} APPEND PROPERTY COMPILE_OPTIONS -ffp-exception-behavior=maytrap)
  endif()
  foreach(level IN LISTS QOR_LEVELS)
    qor_level_options(${level} options)
    qor_level_folder(${level} folder)
    set(target qor_ark_base_${level})
    add_library(${target} SHARED ${sources})
    add_dependencies(${target} qor_export_map)
    target_include_directories(${target}
      PUBLIC $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>
      PRIVATE ${CMAKE_SOURCE_DIR})
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${options}>
      $<$<COMPILE_LANGUAGE:CXX>:-fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions
      -fno-rtti>)
    # The intrinsics alone are a third of what g++ takes to compile a small kernel.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_precompile_headers(${target} PRIVATE <algorithm> <cmath> <immintrin.h>)
    endif()
    target_link_libraries(${target} PRIVATE qor_warnings qor_arithmetic Threads::Threads
      ${QOR_BLAS} PUBLIC qor_core)
    # Functions bind inside; data does not: a program's copy of a row, where its linker made one, is
    # then the row that the stubs read, so that a patched slot takes effect either way.
    target_link_options(${target} PRIVATE -Wl,--version-script=${map} -Wl,-Bsymbolic-functions)
    set_target_properties(${target} PROPERTIES
      OUTPUT_NAME qor_ark_base VERSION ${PROJECT_VERSION} SOVERSION 1 LINK_DEPENDS ${map}
      LIBRARY_OUTPUT_DIRECTORY ${QOR_BUILD_LIB}${folder}
      INSTALL_RPATH "$ORIGIN" BUILD_RPATH ${QOR_BUILD_LIB})
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/levels/${level})
    file(CREATE_LINK ${QOR_BUILD_LIB}${folder}/libqor_ark_base.so.1
      ${CMAKE_BINARY_DIR}/levels/${level}/libqor_ark_base.so.1 SYMBOLIC)
  endforeach()
  # What others link against; which level then runs is the loader's choice.
  list(GET QOR_LEVELS 0 first)
  add_library(qor_ark_base ALIAS qor_ark_base_${first})
endfunction()
