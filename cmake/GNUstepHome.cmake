# gnustep_home(name): sets `name` to a folder of the caller's own, with a configuration file GNUstep.conf that makes
# GNUstep keep a user's Defaults and Library there. GNUstep ignores $HOME; a program that is run with this file in
# GNUSTEP_CONFIG_FILE never touches the real home.
function(gnustep_home name)
    set(home ${CMAKE_CURRENT_BINARY_DIR}/${name})
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tests/gnustep-home.sh ${home} COMMAND_ERROR_IS_FATAL ANY)
    set(${name} ${home} PARENT_SCOPE)
endfunction()
