# compile_together(target sources...): gives a target sources that are compiled as one, in Objective-C++. Each compiled
# file would have tables of its own for the selectors, classes and texts that it uses, and would read AppKit's headers
# once more, which takes longer than all of ours. (CMake's UNITY_BUILD does this for Objective-C++ from 3.29 on.)
function(compile_together target)
    foreach(source ${ARGN})
        cmake_path(ABSOLUTE_PATH source)
        string(APPEND imports "#import \"${source}\"\n")
    endforeach()
    set(together ${CMAKE_CURRENT_BINARY_DIR}/${target}.mm)
    file(CONFIGURE OUTPUT ${together} CONTENT "${imports}")
    target_sources(${target} PRIVATE ${together})
endfunction()
