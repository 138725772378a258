# Flags that every target of the project shares, as two interface targets.

find_package(Threads REQUIRED)

# Warnings are errors for all code that is ours.
add_library(qor_warnings INTERFACE)
target_compile_options(qor_warnings INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wconversion
    -Wno-sign-conversion -Wshadow -Werror>
  # g++ 12 sees overlaps in its own std::string that cannot be (bug 105651).
  $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wno-restrict>)

# The library's arithmetic is the one written: no contraction, no reordering, no trap-free shortcuts.
add_library(qor_arithmetic INTERFACE)
target_compile_options(qor_arithmetic INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-ffp-contract=off -fno-fast-math>)

# Callers of the second platform may keep the stack aligned to 4 bytes only.
set(QOR_IS_I386 OFF)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(QOR_IS_I386 ON)
  target_compile_options(qor_arithmetic INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-mstackrealign>)
endif()

# The instruction set of a level.
function(qor_level_options level out)
  if(QOR_IS_I386)
    set(${out} "" PARENT_SCOPE)
  elseif(level STREQUAL "v1")
    set(${out} -march=x86-64 -mtune=generic PARENT_SCOPE)
  elseif(level STREQUAL "v3")
    set(${out} -march=x86-64-v3 -mtune=generic PARENT_SCOPE)
  elseif(level STREQUAL "v4")
    set(${out} -march=x86-64-v4 -mtune=generic -mprefer-vector-width=512 PARENT_SCOPE)
  else()
    message(FATAL_ERROR "QOR_LEVELS: ${level} is none of v1, v3, v4")
  endif()
endfunction()

# Where the library of a level stands below the library folder, as the dynamic loader looks for it.
function(qor_level_folder level out)
  if(level STREQUAL "v1")
    set(${out} "" PARENT_SCOPE)
  else()
    set(${out} "/glibc-hwcaps/x86-64-${level}" PARENT_SCOPE)
  endif()
endfunction()
