find_package(GTest REQUIRED)
include(GoogleTest)

# sorvane_tests(ROOM LABEL unit|driver|gui SOURCES file... LINKS target...): one test binary for a room. Tests whose name holds
# "postgres" need the private server that tools/test starts and carry the label postgres instead.
function(sorvane_tests room)
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;LINKS" ${ARGN})
  set(binary ${room}_tests)
  add_executable(${binary} ${arg_SOURCES})
  target_link_libraries(${binary} PRIVATE ${arg_LINKS} GTest::gtest sorvane_flags)
  set(environment "QT_QPA_PLATFORM=offscreen")
  gtest_discover_tests(${binary} TEST_FILTER "-*postgres*" DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS ${arg_LABEL} ENVIRONMENT "${environment}" TIMEOUT 300)
  gtest_discover_tests(${binary} TEST_FILTER "*postgres*" TEST_LIST ${binary}_postgres DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS postgres ENVIRONMENT "${environment}" TIMEOUT 300)
endfunction()
