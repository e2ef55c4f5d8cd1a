# For what other processes load: nothing of it is seen but what it means to show, and there is little for the loader to
# look at. (clang's sanitizers are in the program, so there something is always missing.)
add_library(vantrel_loadable INTERFACE)
target_link_options(vantrel_loadable INTERFACE -Wl,--exclude-libs,ALL -Wl,--gc-sections
    $<$<CXX_COMPILER_ID:GNU>:-Wl,--no-undefined,-z,pack-relative-relocs,-z,nodynamic-undefined-weak>
    -Wl,--as-needed -Wl,-O1 $<$<CONFIG:MinSizeRel>:-s>)
# Compiled as a whole, in one part. (The tables that g++ makes for each Objective-C++ file look to it then like one type
# that is declared in several ways.) And code gets no pages of its own, which would be half empty.
target_link_options(vantrel_loadable INTERFACE
    "$<${small_gnu}:-flto;-flto-partition=one;-ffunction-sections;-fdata-sections;-Wno-odr>"
    $<$<CONFIG:MinSizeRel>:-Wl,-z,noseparate-code>)
