# GNUstep's Foundation as the target `foundation`, its AppKit as `appkit`, and its preference pane framework as
# `preferencepanes`.
find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND ${GNUSTEP_CONFIG} --objc-flags OUTPUT_VARIABLE objc_flags OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --base-libs OUTPUT_VARIABLE base_libs OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${GNUSTEP_CONFIG} --gui-libs OUTPUT_VARIABLE gui_libs OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
if(NOT objc_flags OR NOT gui_libs)
    message(FATAL_ERROR "${GNUSTEP_CONFIG} tells no flags, as it does without a word where make is missing.")
endif()
separate_arguments(objc_flags)
separate_arguments(base_libs)
separate_arguments(gui_libs)

# Dependency files, optimisation and debug information are the build type's business; include folders become system
# ones, so that our warnings stop at our own code.
set(gnustep_includes ${objc_flags})
list(FILTER gnustep_includes INCLUDE REGEX "^-I/")
list(TRANSFORM gnustep_includes REPLACE "^-I" "")
list(FILTER objc_flags EXCLUDE REGEX "^-(I|MMD|MP|g|O|Wall)")

add_library(foundation INTERFACE)
target_compile_options(foundation INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:${objc_flags}>")
target_include_directories(foundation SYSTEM INTERFACE ${gnustep_includes})
target_link_libraries(foundation INTERFACE ${base_libs})

add_library(appkit INTERFACE)
target_link_libraries(appkit INTERFACE foundation ${gui_libs})
# This header of AppKit's defines a function for each PostScript operator. g++ would put the hundred selectors that they
# send into every file, used or not, and with them most of a bundle's relocations.
target_compile_definitions(appkit INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:_PSOperators_h_INCLUDE>)

# clang doesn't look where gcc keeps the headers of the Objective-C runtime that both share.
if(CMAKE_OBJCXX_COMPILER_ID MATCHES Clang)
    execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_include
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    target_compile_options(foundation INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-idirafter ${gcc_include}>")
endif()

add_library(preferencepanes INTERFACE)
target_link_libraries(preferencepanes INTERFACE appkit PreferencePanes)
