# Read by CTest when it starts: each suite of `program`, which is that of `target`, is a test with `label` that takes
# so many `processors`.
if(NOT EXISTS "${program}")
  add_test(${target}_NOT_BUILT "${program}")
  return()
endif()
execute_process(COMMAND "${program}" --gtest_list_tests
  OUTPUT_VARIABLE listing ERROR_QUIET RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${program} does not list its tests: ${status}")
endif()

# A suite stands on a line of its own and ends with a dot, behind which a comment can stand.
string(REGEX MATCHALL "(^|\n)[A-Za-z_][A-Za-z0-9_/]*\\." suites "${listing}")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "[\n.]" "" suite "${suite}")
  add_test("${suite}" "${program}" "--gtest_filter=${suite}.*")
  # 77 is a suite of which a test could not run on this machine, and none failed.
  set_tests_properties("${suite}" PROPERTIES
    LABELS "${label}" TIMEOUT 300 PROCESSORS ${processors} SKIP_RETURN_CODE 77)
endforeach()
