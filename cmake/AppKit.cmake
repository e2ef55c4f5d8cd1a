# macOS's own frameworks under the names that GNUstep.cmake gives to GNUstep's.
add_library(appkit INTERFACE)
target_link_libraries(appkit INTERFACE "-framework AppKit" "-framework CoreFoundation" "-framework Foundation")
target_compile_options(appkit INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)

add_library(preferencepanes INTERFACE)
target_link_libraries(preferencepanes INTERFACE appkit "-framework PreferencePanes")
