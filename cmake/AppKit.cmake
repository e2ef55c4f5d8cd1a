# macOS's own frameworks under the names that GNUstep.cmake gives to GNUstep's.
add_library(foundation INTERFACE)
target_link_libraries(foundation INTERFACE "-framework Foundation" "-framework CoreFoundation")
target_compile_options(foundation INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)

add_library(appkit INTERFACE)
target_link_libraries(appkit INTERFACE foundation "-framework AppKit")

add_library(preferencepanes INTERFACE)
target_link_libraries(preferencepanes INTERFACE appkit "-framework PreferencePanes")
