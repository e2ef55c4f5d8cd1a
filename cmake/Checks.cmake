# Targets that look at the sources: `format` rewrites them, `format-check` and `lint` complain.
foreach(room Preference settings overrides host platform tests bench)
    file(GLOB_RECURSE room_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.h ${PROJECT_SOURCE_DIR}/${room}/*.cpp
                                                     ${PROJECT_SOURCE_DIR}/${room}/*.mm)
    list(APPEND sources ${room_sources})
endforeach()

add_custom_target(format COMMAND clang-format -i ${sources} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
add_custom_target(format-check COMMAND clang-format --dry-run -Werror ${sources}
                  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Looking at the format of every source" VERBATIM)

# clang reads what g++ compiled, so it needs the Objective-C runtime's headers pointed out.
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_include OUTPUT_STRIP_TRAILING_WHITESPACE)
add_custom_target(lint
    COMMAND run-clang-tidy -quiet -p ${PROJECT_BINARY_DIR} -extra-arg=-idirafter${gcc_include}
            "${PROJECT_SOURCE_DIR}/(Preference|settings|overrides|host|platform)/.*"
    VERBATIM)

# Which lines the tests reach; to be built with the preset `coverage`.
add_custom_target(coverage
    COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${PROJECT_BINARY_DIR} --label-exclude "display|endtoend|package"
    COMMAND gcovr --root ${PROJECT_SOURCE_DIR} --exclude tests/ --exclude bench/ --print-summary
            --html-details ${PROJECT_BINARY_DIR}/coverage.html ${PROJECT_BINARY_DIR}
    VERBATIM)
