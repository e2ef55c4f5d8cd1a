# The warnings that our own code is held to. System headers are outside their reach.
add_library(vantrel_warnings INTERFACE)
target_compile_options(vantrel_warnings INTERFACE -Wall -Wextra -Werror $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>)
target_include_directories(vantrel_warnings INTERFACE ${PROJECT_SOURCE_DIR})
