# cmake -DCOMPILER=... -DINCLUDE=FOLDER -DMAP=FILE -P ExportMap.cmake
#
# Writes the version script of libqor_ark_base: each name that a public header marks with QOR_API, and
# no other.
cmake_minimum_required(VERSION 3.25)

file(GLOB headers RELATIVE ${INCLUDE} ${INCLUDE}/qor/*.h)
list(TRANSFORM headers REPLACE "(.+)" "#include \"\\1\"\n")
string(JOIN "" source ${headers})
file(WRITE ${MAP}.c "${source}")
execute_process(
  COMMAND ${COMPILER} -E -P -x c -I${INCLUDE} -DQOR_API=QOR_EXPORTED ${MAP}.c
  OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)

# Of each declaration the declarators, without parameters: a pointer to a function gives its name.
string(REPLACE ";" " QOR_END " text "${text}")
string(REGEX REPLACE "[\n\t ]+" " " text "${text}")
string(REPLACE "[" " QOR_BOUND " text "${text}")
string(REPLACE "]" " " text "${text}")
string(REPLACE "QOR_END" ";" text "${text}")
set(names)
foreach(declaration IN LISTS text)
  if(NOT declaration MATCHES "QOR_EXPORTED (.*)")
    continue()
  endif()
  string(REGEX REPLACE "\\( *\\*+ *([A-Za-z0-9_]+)[^()]*\\)" "\\1" rest "${CMAKE_MATCH_1}")
  set(before)
  while(NOT rest STREQUAL before)
    set(before "${rest}")
    string(REGEX REPLACE "\\([^()]*\\)" "" rest "${rest}")
  endwhile()
  string(REPLACE "," ";" declarators "${rest}")
  foreach(declarator IN LISTS declarators)
    string(REGEX REPLACE " QOR_BOUND.*" "" declarator "${declarator}")
    string(REGEX MATCH "[A-Za-z0-9_]+ *$" name "${declarator}")
    string(STRIP "${name}" name)
    list(APPEND names ${name})
  endforeach()
endforeach()
list(SORT names)
list(REMOVE_DUPLICATES names)
string(JOIN ";\n    " text ${names})
file(WRITE ${MAP} "QOR_1 {\n  global:\n    ${text};\n  local:\n    *;\n};\n")
