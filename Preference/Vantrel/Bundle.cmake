# The bundle that the settings host loads, Vantrel.prefPane, in the build folder.
# What the bundle stands on but for the system's services.
add_library(pane_surface INTERFACE)
target_link_libraries(pane_surface INTERFACE vantrel_pane vantrel_cocoa_overrides vantrel_appkit preferencepanes)

add_library(pane MODULE)
target_link_libraries(pane PRIVATE pane_surface vantrel_system)
set_target_properties(pane PROPERTIES LINKER_LANGUAGE CXX)
set_target_properties(pane PROPERTIES OUTPUT_NAME Vantrel PREFIX "" SUFFIX "")

if(APPLE)
    compile_together(pane PaneView.mm PrincipalClass.mm)
    set_target_properties(pane PROPERTIES BUNDLE TRUE BUNDLE_EXTENSION prefPane
                          MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/Resources/Info.plist.in
                          LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    set(bundle_resources ${PROJECT_BINARY_DIR}/Vantrel.prefPane/Contents/Resources)
else()
    # Its rooms' Objective-C++ once more, and instead of theirs: so there is one of each table that the runtime wants.
    compile_together(pane PaneView.mm PrincipalClass.mm StandardImages.mm
                     ${PROJECT_BINARY_DIR}/platform/cocoa/vantrel_appkit.mm
                     ${PROJECT_BINARY_DIR}/platform/cocoa/vantrel_cocoa.mm
                     ${PROJECT_BINARY_DIR}/overrides/vantrel_cocoa_overrides.mm
                     ${PROJECT_SOURCE_DIR}/system/SystemServicesGNUstep.mm)
    # The host loads many bundles into one process: nothing of ours may be seen outside but the class, which the
    # Objective-C runtime finds without a symbol.
    target_link_libraries(pane PRIVATE vantrel_loadable)
    # The bundle that is built carries the library KVRXMetadataDictionary, wherever it is copied. The one that is
    # packaged finds the library's own package.
    set(bundle ${PROJECT_BINARY_DIR}/Vantrel.prefPane)
    set_target_properties(pane PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${bundle}
                          INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH TRUE)
    set(bundled_library ${bundle}/$<TARGET_SONAME_FILE_NAME:KVRXMetadataDictionary>)
    add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/library.stamp
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:KVRXMetadataDictionary> ${bundled_library}
        COMMAND ${CMAKE_COMMAND} -E touch ${CMAKE_CURRENT_BINARY_DIR}/library.stamp
        DEPENDS KVRXMetadataDictionary VERBATIM)
    add_custom_target(pane_library DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/library.stamp)
    add_dependencies(pane pane_library)
    set(bundle_resources ${bundle}/Resources)
    configure_file(Resources/Info-gnustep.plist.in ${bundle_resources}/Info-gnustep.plist @ONLY)
endif()

include(Resources.cmake)
