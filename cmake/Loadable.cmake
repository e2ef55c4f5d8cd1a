# For what other processes load: nothing of it is seen but what it means to show, and there is little for the loader to
# look at.
add_library(vantrel_loadable INTERFACE)
target_link_options(vantrel_loadable INTERFACE -Wl,--exclude-libs,ALL -Wl,--no-undefined -Wl,--gc-sections
                    -Wl,--as-needed -Wl,-O1 -Wl,-z,pack-relative-relocs $<$<CONFIG:MinSizeRel>:-s>)
