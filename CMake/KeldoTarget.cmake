# keldo_target(TARGET): the language level, warnings and sanitizers that all our targets share.
# They are private to the target, so that a project which takes this one in keeps its own.
function(keldo_target target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                             -Wnon-virtual-dtor -Woverloaded-virtual)
    # g++ 12 sees overlaps in "text" + std::string that can't be (its bug 105651).
    target_compile_options(${target} PRIVATE
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>,$<NOT:$<CONFIG:Debug>>>:-Wno-restrict>)
    # A program loads no library that it makes no use of.
    if(NOT APPLE)
        target_link_options(${target} PRIVATE -Wl,--as-needed)
    endif()
    if(KELDO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(KELDO_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${KELDO_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=undefined)
        target_link_options(${target} PUBLIC -fsanitize=${KELDO_SANITIZE})
    endif()
endfunction()
