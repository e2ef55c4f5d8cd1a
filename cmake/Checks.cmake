# Targets that look at the sources: `format` rewrites them, `format-check` and `lint` complain.
set(rooms Preference command settings overrides host system platform bench)
foreach(room ${rooms} tests)
    file(GLOB_RECURSE room_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${room}/*.h ${PROJECT_SOURCE_DIR}/${room}/*.cpp
                                                     ${PROJECT_SOURCE_DIR}/${room}/*.mm)
    list(APPEND sources ${room_sources})
endforeach()

add_custom_target(format COMMAND clang-format -i ${sources} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
add_custom_target(format-check COMMAND clang-format --dry-run -Werror ${sources}
                  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Looking at the format of every source" VERBATIM)

# clang-tidy reads what clang compiles, so this one is of clang's build alone. In tests it finds next to nothing, and
# takes as long again for GoogleMock's headers.
if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    file(GLOB_RECURSE scripts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/packaging/*.sh ${PROJECT_SOURCE_DIR}/tests/*.sh)
    list(JOIN rooms "|" any_room)
    add_custom_target(lint
        COMMAND shellcheck run test .ci/run ${scripts}
        COMMAND run-clang-tidy -quiet -p ${PROJECT_BINARY_DIR} "^(${PROJECT_SOURCE_DIR}|${PROJECT_BINARY_DIR})/(${any_room})/"
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Looking for faults in every script and source" VERBATIM)
endif()

# Which lines and branches the tests reach; to be built with the preset `coverage`.
add_custom_target(coverage
    COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${PROJECT_BINARY_DIR} --label-exclude "endtoend|package"
    COMMAND gcovr --root ${PROJECT_SOURCE_DIR} --exclude tests/ --exclude bench/ --exclude-throw-branches --print-summary
            --html-details ${PROJECT_BINARY_DIR}/coverage.html ${PROJECT_BINARY_DIR}
    VERBATIM)
