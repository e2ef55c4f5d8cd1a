# The interface file, the string tables and the icon, as each system wants them, in the bundle's Resources folder.
# Expects the target `pane` and `bundle_resources`, the folder.
set(resources ${CMAKE_CURRENT_SOURCE_DIR}/Resources)
set(interface_file ${resources}/VantrelPref.xib)
set(icon_drawing ${resources}/Vantrel.svg)
file(GLOB string_tables CONFIGURE_DEPENDS ${resources}/*.lproj/Localizable.strings)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(RSVG_CONVERT rsvg-convert REQUIRED)

if(APPLE)
    find_program(IBTOOL ibtool REQUIRED)
    find_program(ICONUTIL iconutil REQUIRED)
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

    # An interface file in each language: tables of texts for a single one are read from macOS 10.8 on.
    set(localized ${CMAKE_CURRENT_BINARY_DIR}/localized)
    foreach(table ${string_tables})
        cmake_path(GET table PARENT_PATH language)
        cmake_path(GET language FILENAME language)
        list(APPEND system_resources
            COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_resources}/${language}
            COMMAND ${CMAKE_COMMAND} -E copy ${localized}/${language}/Localizable.strings ${bundle_resources}/${language}
            COMMAND ${IBTOOL} --errors --warnings --output-format human-readable-text --target-device mac
                    --minimum-deployment-target ${CMAKE_OSX_DEPLOYMENT_TARGET}
                    --compile ${bundle_resources}/${language}/VantrelPref.nib ${localized}/${language}/VantrelPref.xib)
    endforeach()
    set(localizations macos)
else()
    set(system_resources
        COMMAND ${RSVG_CONVERT} -w 48 -h 48 -o ${bundle_resources}/Vantrel.png ${icon_drawing})
    set(localized ${bundle_resources})
    set(localizations gnustep)
endif()

set(resources_stamp ${CMAKE_CURRENT_BINARY_DIR}/resources.stamp)
add_custom_command(
    OUTPUT ${resources_stamp}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/localize.py ${localizations} ${localized}
            ${interface_file} ${string_tables}
    ${system_resources}
    COMMAND ${CMAKE_COMMAND} -E touch ${resources_stamp}
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/localize.py ${interface_file} ${string_tables} ${icon_drawing}
    COMMENT "Localising the interface" VERBATIM)
add_custom_target(pane_resources DEPENDS ${resources_stamp})
add_dependencies(pane pane_resources)
