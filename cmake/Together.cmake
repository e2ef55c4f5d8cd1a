# compile_together(target sources...): gives a target Objective-C++ sources that are compiled as one. Each compiled file
# would have tables of its own for the selectors, classes and texts that it uses, and would read AppKit's headers once
# more, which takes longer than all of ours. (CMake's UNITY_BUILD does this for Objective-C++ from 3.29 on.)
function(compile_together target)
    list(TRANSFORM ARGN REPLACE "(.+)" "#import \"${CMAKE_CURRENT_SOURCE_DIR}/\\1\"")
    list(JOIN ARGN "\n" imports)
    set(together ${CMAKE_CURRENT_BINARY_DIR}/${target}.mm)
    file(CONFIGURE OUTPUT ${together} CONTENT "${imports}\n")
    target_sources(${target} PRIVATE ${together})
endfunction()
