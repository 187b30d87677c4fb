# How every target of the house is compiled and linked.

add_library(lumora_options INTERFACE)
target_include_directories(lumora_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(lumora_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wconversion -Wno-sign-conversion
    -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
    -Werror -Werror=format -Werror=conditionally-supported
    -ffunction-sections -fdata-sections)
if(LUMORA_SANITIZE)
    target_compile_options(lumora_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_compile_definitions(lumora_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(lumora_options INTERFACE -fsanitize=address,undefined)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_definitions(lumora_options INTERFACE _FORTIFY_SOURCE=2)
endif()

# The MySQL client API and what it needs, as archives: a request is a process, and each shared
# library that the loader maps costs more than many a page (docs/architecture.md has the figures).
set(MARIADB_INCLUDE /usr/include/mariadb)
set(MARIADB_LIBRARIES libmariadb.a libssl.a libcrypto.a libz.a)

# What draws charts. FreeType reads PNG pictures and packed fonts, so it stands before their readers.
set(CHART_INCLUDE /usr/include/freetype2)
set(CHART_LIBRARIES libfreetype.a libpng.a libz.a libbrotlidec.a libbrotlicommon.a)

# The precompiled header that every library shares.
if(NOT EXISTS ${CMAKE_BINARY_DIR}/pch.cpp)
    file(WRITE ${CMAKE_BINARY_DIR}/pch.cpp "")
endif()
add_library(lumora_pch STATIC ${CMAKE_BINARY_DIR}/pch.cpp)
target_link_libraries(lumora_pch PRIVATE lumora_options)
target_precompile_headers(lumora_pch PRIVATE
    <cstdarg> <cstdint> <cstdio> <cstdlib> <cstring> <memory> <string> <string_view> <vector>)

# lumora_library(folder [lower folder ...]): the static library of src/<folder>.
function(lumora_library folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
    list(REMOVE_ITEM sources ${CMAKE_SOURCE_DIR}/src/portal/main.cpp)
    add_library(lumora_${folder} STATIC ${sources})
    set_target_properties(lumora_${folder} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(lumora_${folder} PUBLIC lumora_options)
    target_precompile_headers(lumora_${folder} REUSE_FROM lumora_pch)
    foreach(lower ${ARGN})
        target_link_libraries(lumora_${folder} PUBLIC lumora_${lower})
    endforeach()
endfunction()

# lumora_program(target): link options of a program of ours.
function(lumora_program target)
    target_link_options(${target} PRIVATE -pie -Wl,--gc-sections -Wl,-z,relro,-z,now)
    if(NOT LUMORA_SANITIZE)
        target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
    endif()
endfunction()
