# The interface file, the string tables and the icon, as each system wants them, in the bundle's Resources folder.
# Expects the target `pane` and `bundle_resources`, the folder.
set(resources ${CMAKE_CURRENT_SOURCE_DIR}/Resources)
set(interface_file ${resources}/VantrelPref.xib)
set(icon_drawing ${resources}/Vantrel.svg)
file(GLOB string_tables CONFIGURE_DEPENDS ${resources}/*.lproj/Localizable.strings)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(RSVG_CONVERT rsvg-convert REQUIRED)

# An interface file and a table in each language, in the folders of the bundle's. Tables of texts for a single interface
# file would do on macOS, but are read from 10.8 on only.
set(localized ${CMAKE_CURRENT_BINARY_DIR}/localized)

if(APPLE)
    find_program(IBTOOL ibtool REQUIRED)
    find_program(ICONUTIL iconutil REQUIRED)
    set(localizations macos)
    set(compiled nib)
    set(compile_interface ${IBTOOL} --errors --warnings --output-format human-readable-text --target-device mac
                          --minimum-deployment-target ${CMAKE_OSX_DEPLOYMENT_TARGET} --compile)
    set(iconset ${CMAKE_CURRENT_BINARY_DIR}/Vantrel.iconset)
    foreach(points 16 32 128 256)
        math(EXPR double "2 * ${points}")
        list(APPEND draw_icon
            COMMAND ${RSVG_CONVERT} -w ${points} -h ${points} -o ${iconset}/icon_${points}x${points}.png ${icon_drawing}
            COMMAND ${RSVG_CONVERT} -w ${double} -h ${double} -o ${iconset}/icon_${points}x${points}@2x.png ${icon_drawing})
    endforeach()
    set(system_resources
        COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_resources} ${iconset}
        ${draw_icon}
        COMMAND ${ICONUTIL} --convert icns --output ${bundle_resources}/Vantrel.icns ${iconset})
else()
    set(localizations gnustep)
    set(compiled gorm)
    # The builder's own GNUstep folders have no part in the archives. To a sanitizer, what GNUstep keeps until the
    # archiver ends would be lost.
    gnustep_home(archiving_home)
    add_executable(archive_interface)
    compile_together(archive_interface ArchiveInterface.mm PaneView.mm StandardImages.mm)
    target_link_libraries(archive_interface PRIVATE vantrel_cocoa appkit)
    set(archiver archive_interface)
    set(compile_interface ${CMAKE_COMMAND} -E env GNUSTEP_CONFIG_FILE=${archiving_home}/GNUstep.conf
                          ASAN_OPTIONS=detect_leaks=0 $<TARGET_FILE:archive_interface>)
    set(system_resources
        COMMAND ${RSVG_CONVERT} -w 48 -h 48 -o ${bundle_resources}/Vantrel.png ${icon_drawing})
endif()

foreach(table ${string_tables})
    cmake_path(GET table PARENT_PATH language)
    cmake_path(GET language FILENAME language)
    list(APPEND system_resources
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle_resources}/${language}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_resources}/${language}
        COMMAND ${CMAKE_COMMAND} -E copy ${localized}/${language}/Localizable.strings ${bundle_resources}/${language}
        COMMAND ${compile_interface} ${bundle_resources}/${language}/VantrelPref.${compiled}
                ${localized}/${language}/VantrelPref.xib)
endforeach()

set(resources_stamp ${CMAKE_CURRENT_BINARY_DIR}/resources.stamp)
add_custom_command(
    OUTPUT ${resources_stamp}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/localize.py ${localizations} ${localized}
            ${interface_file} ${string_tables}
    ${system_resources}
    COMMAND ${CMAKE_COMMAND} -E touch ${resources_stamp}
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/localize.py ${interface_file} ${string_tables} ${icon_drawing} ${archiver}
    COMMENT "Localising the interface" VERBATIM)
add_custom_target(pane_resources DEPENDS ${resources_stamp})
add_dependencies(pane pane_resources)
