# tamlin_test(<name> SOURCES ... [LIBS ...] [LABELS ...] [TIMEOUT s] [ENV K=V ...])
# One GoogleTest executable registered with ctest, labelled by what it runs:
#   unit  (the default) the code under test runs in the test's process and starts no program
#   e2e   the code under test runs a program: evasim as SSSU, an SSSU stand-in, tamlinctl, the
#         exec pipe's child
#   slow  long real waits; left out of `make test`
#   concurrency  beside unit or e2e: threads or processes meet in the code under test; `make
#         test-tsan` runs these under ThreadSanitizer
# The build and source trees are compiled in (TAMLIN_BUILD_DIR_DEFAULT, TAMLIN_SOURCE_DIR_DEFAULT,
# read through test_paths.h), and so is each ENV value as <K>_DEFAULT, so that a test binary
# also runs on its own from the build tree; ctest puts the same values in the environment.
function(tamlin_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;LABELS;ENV" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  tamlin_test_paths(${name})
  foreach(item ${T_ENV})
    if(item MATCHES "^([A-Za-z_][A-Za-z0-9_]*)=(.*)$")
      target_compile_definitions(${name} PRIVATE ${CMAKE_MATCH_1}_DEFAULT="${CMAKE_MATCH_2}")
    endif()
  endforeach()
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_LABELS)
    set(T_LABELS unit)
  endif()
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  set_tests_properties(${name} PROPERTIES LABELS "${T_LABELS}" TIMEOUT ${T_TIMEOUT}
    ENVIRONMENT "TAMLIN_BUILD_DIR=${CMAKE_BINARY_DIR};TAMLIN_SOURCE_DIR=${PROJECT_SOURCE_DIR};${T_ENV}")
endfunction()

# The compiled-in trees of test_paths.h, for a target that is not a tamlin_test itself.
function(tamlin_test_paths target)
  target_compile_definitions(${target} PRIVATE TAMLIN_BUILD_DIR_DEFAULT="${CMAKE_BINARY_DIR}"
                                               TAMLIN_SOURCE_DIR_DEFAULT="${PROJECT_SOURCE_DIR}")
endfunction()
