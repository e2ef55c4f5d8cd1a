# Targets that install the pane for the current user, where the settings host looks for it, and take it away again. The
# folder is asked for when they run: a redirected GNUstep installs into its own.
set(user_bundles "$(${GNUSTEP_CONFIG} --variable=GNUSTEP_USER_LIBRARY)/Bundles")

add_custom_target(uninstall-user
    COMMAND sh -c "rm -rf \"${user_bundles}/Vantrel.prefPane\"" VERBATIM)
add_custom_target(install-user
    COMMAND sh -c "mkdir -p \"${user_bundles}\" && rm -rf \"${user_bundles}/Vantrel.prefPane\" && \
cp -R \"${PROJECT_BINARY_DIR}/Vantrel.prefPane\" \"${user_bundles}\" && echo \"Installed in ${user_bundles}\"" VERBATIM)
add_dependencies(install-user pane)
