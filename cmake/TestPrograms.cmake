# test_main: GoogleMock with the usual main function. Its headers are compiled once for every program of tests, which
# therefore is compiled like it.
add_library(test_main STATIC /usr/src/googletest/googlemock/src/gmock_main.cc)
target_link_libraries(test_main PUBLIC GTest::gmock)
target_precompile_headers(test_main PRIVATE <gmock/gmock.h>)
set_target_properties(test_main PROPERTIES POSITION_INDEPENDENT_CODE OFF)

# add_test_program(name): makes an executable a test of CTest, all of its GoogleTest tests together: a process for each
# of them would cost more than the tests. What fails is told by its own name, and --gtest_filter runs it alone. Its
# sources are compiled together, so no two may have a helper of the same name.
function(add_test_program name)
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    target_precompile_headers(${name} REUSE_FROM test_main)
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF UNITY_BUILD ON)
    # Objective-C++ can't have what was compiled for C++.
    get_target_property(sources ${name} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.mm$")
    set_source_files_properties(${sources} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
endfunction()
