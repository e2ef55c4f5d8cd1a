# Targets that look at the sources: `format` rewrites them, `format-check` and `lint` complain.
foreach(room Preference command settings overrides host system platform bench tests)
    file(GLOB_RECURSE room_sources RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${room}/*.h ${room}/*.cpp ${room}/*.mm)
    list(APPEND sources ${room_sources})
endforeach()

add_custom_target(format COMMAND clang-format -i ${sources} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
add_custom_target(format-check COMMAND clang-format --dry-run -Werror ${sources}
                  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Looking at the format of every source" VERBATIM)

# clang-tidy reads what clang compiles, so this one is of clang's build alone. It takes as long for the headers of a
# file as for what is ours, so it gets all rooms as one file, which nobody compiles, and as another what only macOS has.
# Alone are programs of one name for many stores, and the command's main function, whose library takes longest. In tests
# it finds next to nothing, and takes as long again for GoogleMock's headers.
if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    set(of_rooms ${sources})
    list(FILTER of_rooms EXCLUDE REGEX "\\.h$|^(tests|bench)/|^command/main")
    set(of_macos ${of_rooms})
    list(FILTER of_macos INCLUDE REGEX "/apple/|Apple\\.mm$")
    list(REMOVE_ITEM of_rooms ${of_macos})
    add_library(all_rooms OBJECT EXCLUDE_FROM_ALL)
    compile_together(all_rooms ${of_rooms})
    target_link_libraries(all_rooms PRIVATE pane_surface)
    add_library(all_of_macos OBJECT EXCLUDE_FROM_ALL)
    compile_together(all_of_macos ${of_macos})
    target_link_libraries(all_of_macos PRIVATE macos_services)
    target_include_directories(all_of_macos SYSTEM PRIVATE ${PROJECT_SOURCE_DIR}/tests/platform/apple/declarations)

    file(GLOB_RECURSE scripts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/packaging/*.sh ${PROJECT_SOURCE_DIR}/tests/*.sh)
    add_custom_target(lint
        COMMAND shellcheck run test .ci/run ${scripts}
        COMMAND run-clang-tidy -quiet -p ${PROJECT_BINARY_DIR}
                "^(${PROJECT_SOURCE_DIR}|${PROJECT_BINARY_DIR})/(all_|bench/|command/CMakeFiles/vantrelctl\\.dir/)"
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMENT "Looking for faults in every script and source" VERBATIM)
endif()

# Which lines and branches the tests reach; to be built with the preset `coverage`.
add_custom_target(coverage
    COMMAND ${CMAKE_CTEST_COMMAND} --test-dir ${PROJECT_BINARY_DIR} --label-exclude "endtoend|package"
    COMMAND gcovr --root ${PROJECT_SOURCE_DIR} --exclude tests/ --exclude bench/ --exclude-throw-branches --print-summary
            --html-details ${PROJECT_BINARY_DIR}/coverage.html ${PROJECT_BINARY_DIR}
    VERBATIM)
