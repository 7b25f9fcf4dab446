# What every target of this project is compiled with.
add_library(vxtools_settings INTERFACE)
target_compile_features(vxtools_settings INTERFACE cxx_std_20)
target_compile_options(vxtools_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wformat=2 -Wno-format-nonliteral
    -fno-semantic-interposition -fno-plt
    # Results are the same on every machine: no contraction of a*b + c.
    -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # g++ 12 sees overlaps in the library's own string concatenation (its bug 105329).
    target_compile_options(vxtools_settings INTERFACE -Wno-restrict)
endif()
if(VX_SANITIZE)
    target_compile_options(vxtools_settings INTERFACE
        -fsanitize=${VX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vxtools_settings INTERFACE -fsanitize=${VX_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Instrumented code confuses this analysis of g++ 12.
        target_compile_options(vxtools_settings INTERFACE
            -Wno-maybe-uninitialized -Wno-stringop-overflow)
    endif()
endif()
