# cmake -DROOT=<providers/hpeva> -P CheckNamedResults.cmake
# Result codes and severities go by their names (qrn_results.h) and message keys by their
# constants (hpeva_messages.h). Fails on a line that returns a bare non-zero number, passes
# a bare severity to pushMessage, or spells a message key as a string.
file(GLOB_RECURSE files ${ROOT}/*.cc ${ROOT}/*.h)
set(failures "")
foreach(file ${files})
  file(STRINGS ${file} lines)
  set(number 0)
  foreach(line IN LISTS lines)
    math(EXPR number "${number} + 1")
    if(line MATCHES "return -?[1-9][0-9]*;"
       OR line MATCHES "pushMessage\\([^,]*, [^,]*, -?[0-9]"
       OR line MATCHES "^[^/]*\"MSG_ERROR_")
      file(RELATIVE_PATH shown ${ROOT} ${file})
      string(STRIP "${line}" line)
      string(APPEND failures "  ${shown}:${number}: ${line}\n")
    endif()
  endforeach()
endforeach()
if(failures)
  message(FATAL_ERROR "Bare result codes, severities or message keys (name them in qrn_results.h or "
                      "hpeva_messages.h):\n${failures}")
endif()
