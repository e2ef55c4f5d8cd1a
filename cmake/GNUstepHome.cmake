# gnustep_home(name): sets `name` to a folder of the caller's own, with a configuration file GNUstep.conf that makes
# GNUstep keep a user's Defaults and Library there. GNUstep ignores $HOME; a program that is run with this file in
# GNUSTEP_CONFIG_FILE never touches the real home.
function(gnustep_home name)
    set(home ${CMAKE_CURRENT_BINARY_DIR}/${name})
    file(READ /etc/GNUstep/GNUstep.conf system_configuration)
    file(WRITE ${home}/GNUstep.conf "${system_configuration}
GNUSTEP_USER_CONFIG_FILE=${home}/none
GNUSTEP_USER_DEFAULTS_DIR=${home}/Defaults
GNUSTEP_USER_DIR_LIBRARY=${home}/Library
")
    set(${name} ${home} PARENT_SCOPE)
endfunction()
