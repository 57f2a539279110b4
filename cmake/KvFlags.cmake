# The one interface target that every target of ours links: language, warnings, visibility, sanitizers.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(KV_CCACHE ccache)
if(KV_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER "${KV_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${KV_CCACHE}")
endif()

find_package(Threads REQUIRED)

add_library(kv_flags INTERFACE)
target_compile_features(kv_flags INTERFACE cxx_std_20)
target_compile_options(kv_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(kv_flags INTERFACE -Wthread-safety -Wthread-safety-beta)
endif()
# GCC 12 sees overlapping copies in "a" + string + "b" once it inlines them, and there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(kv_flags INTERFACE -Wno-restrict)
endif()
target_link_libraries(kv_flags INTERFACE Threads::Threads)

set(KV_SANITIZE "" CACHE STRING "Value for -fsanitize=, for example address,undefined")
if(KV_SANITIZE)
    add_compile_options(-fsanitize=${KV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # Host and effect are built apart and meet through abstract interfaces only: neither has the other's type records.
    add_compile_options(-fno-sanitize=vptr)
    # GCC's flow warnings see through the checks that it has itself put in, and then warn of what cannot happen.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(kv_flags INTERFACE -Wno-stringop-overflow -Wno-array-bounds -Wno-maybe-uninitialized)
    endif()
    add_link_options(-fsanitize=${KV_SANITIZE})
    add_compile_definitions(KV_SANITIZED=1)
endif()

# Fuzzers need every library of ours to report the paths that an input takes.
if(KV_BUILD_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
