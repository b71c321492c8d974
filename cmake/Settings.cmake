# orvikqzds_settings(<target>): how our own sources are compiled.
function(orvikqzds_settings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(ORVIKQZDS_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    # readdir() and stat() fail on large file systems without 64-bit offsets.
    target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        # The x87 keeps extra bits: with SSE2 floats behave as they do on x86-64.
        target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
    set_target_properties(${target} PROPERTIES CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF)
endfunction()
