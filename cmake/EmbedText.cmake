# Writes one C++ file that holds the bytes of text files as character arrays.
#
#   mirk_embed_text(OUTPUT file.cpp HEADER header.h ENTRIES name=file[,file...] ...)
#
# An entry of several files is their concatenation. The header declares each array and, from the length at build time,
# its byte count `<name>_size`; a terminating NUL follows the bytes and is not counted.
function(mirk_embed_text)
  cmake_parse_arguments(ARG "" "OUTPUT;HEADER" "ENTRIES" ${ARGN})
  set(inputs)
  foreach(entry IN LISTS ARG_ENTRIES)
    string(REGEX REPLACE "^[^=]*=" "" files "${entry}")
    string(REPLACE "," ";" files "${files}")
    list(APPEND inputs ${files})
  endforeach()
  string(REPLACE ";" "|" packed "${ARG_ENTRIES}")
  add_custom_command(
    OUTPUT "${ARG_OUTPUT}" "${ARG_HEADER}"
    COMMAND "${CMAKE_COMMAND}" "-DENTRIES=${packed}" "-DOUTPUT=${ARG_OUTPUT}" "-DHEADER=${ARG_HEADER}"
            -P "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/EmbedTextRun.cmake"
    DEPENDS ${inputs} "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/EmbedTextRun.cmake"
    COMMENT "Embedding the scripted layer" VERBATIM)
endfunction()
