# Makes an installation's C library variant from the C library of the
# compiler's multilib: the printf and scanf families call __vfprintf and
# __vfscanf, which the link points at the chosen formatter, in place of the
# library's own formatter. Run with cmake -P:
#   -DAR= -DOBJCOPY= -DNM=        the binary utilities
#   -DLIBC=<archive>              the multilib's C library
#   -DOBJECTS=<a;b;...>           objects added to the result
#   -DLIBGCC=<archive>            merged into the result when set
#   -DOUTPUT=<archive>            the result
cmake_minimum_required(VERSION 3.25)

# The library's formatters, whose calls go to the selected one.
set(redirected _vfprintf_r _svfprintf_r _vfscanf_r __svfscanf_r __ssvfscanf_r)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command} failed: ${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

get_filename_component(name "${OUTPUT}" NAME)
set(work "${OUTPUT}.work")
file(REMOVE_RECURSE "${work}")
file(MAKE_DIRECTORY "${work}")

# The members that define or call a formatter, from lines such as
# "libc.a:lib_a-printf.o:         U _vfprintf_r".
run(${NM} -A "${LIBC}")
list(JOIN redirected "|" alternatives)
string(REGEX MATCHALL "[^\n]*:[^:\n]+:[ 0-9a-fA-F]+ [A-Za-z] (${alternatives})\n" lines "${output}")
set(members)
foreach(line IN LISTS lines)
  string(REGEX MATCH ":([^:\n]+):[ 0-9a-fA-F]+ ([A-Za-z]) ([^\n]+)" line "${line}")
  set(member ${CMAKE_MATCH_1})
  list(APPEND members ${member})
  if(CMAKE_MATCH_2 STREQUAL "U")
    list(APPEND calls_${member} ${CMAKE_MATCH_3})
  else()
    set(defines_${member} TRUE)
  endif()
endforeach()
list(REMOVE_DUPLICATES members)
if(NOT members)
  message(FATAL_ERROR "${LIBC} has none of ${redirected}")
endif()
run(${CMAKE_COMMAND} -E chdir "${work}" ${AR} x "${LIBC}" ${members})

set(changed)
foreach(member IN LISTS members)
  set(object "${work}/${member}")
  list(APPEND changed "${object}")
  if(defines_${member})
    # Its own vfprintf or vfscanf would bypass the selection; the
    # library's formatter stays as it is for the selection to call.
    run(${OBJCOPY} --localize-symbol=vfprintf --localize-symbol=vfscanf "${object}")
  else()
    # One symbol a pass: objcopy sends no two symbols to the same name.
    foreach(symbol IN LISTS calls_${member})
      string(REGEX MATCH "printf|scanf" family "${symbol}")
      run(${OBJCOPY} --redefine-sym ${symbol}=__vf${family} "${object}")
    endforeach()
  endif()
endforeach()

set(temporary "${work}/${name}")
file(COPY_FILE "${LIBC}" "${temporary}")
run(${AR} r "${temporary}" ${changed} ${OBJECTS})
if(LIBGCC)
  file(WRITE "${work}/merge.mri" "OPEN ${temporary}\nADDLIB ${LIBGCC}\nSAVE\nEND\n")
  run(${AR} -M INPUT_FILE "${work}/merge.mri")
endif()
run(${AR} s "${temporary}")
file(RENAME "${temporary}" "${OUTPUT}")
file(REMOVE_RECURSE "${work}")
