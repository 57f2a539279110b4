# Helpers that keep each folder's CMakeLists.txt to a list of files and a link line.
include(GoogleTest OPTIONAL)

# kv_add_library(<name> SOURCES <files...> [HEADERS <files...>] [LINK <targets...>])
# One static library for one folder. Every header is also compiled alone, so that none leans on its includer.
function(kv_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES} ${ARG_HEADERS})
    target_include_directories(${name} PUBLIC "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE kv_flags)

    set(checks)
    file(RELATIVE_PATH folder "${CMAKE_SOURCE_DIR}" "${CMAKE_CURRENT_SOURCE_DIR}")
    foreach(header IN LISTS ARG_HEADERS)
        set(check "${CMAKE_CURRENT_BINARY_DIR}/alone/${header}.cpp")
        file(CONFIGURE OUTPUT "${check}" CONTENT "#include \"${folder}/${header}\"\n")
        list(APPEND checks "${check}")
    endforeach()
    if(checks AND KV_BUILD_TESTS)
        add_library(${name}_headers_alone OBJECT ${checks})
        target_link_libraries(${name}_headers_alone PRIVATE ${name} kv_flags)
    endif()
endfunction()

# kv_add_test(<name> SOURCES <files...> LINK <targets...> [ENVIRONMENT <name=value>])
# One test program for one folder, each of its cases a test of its own.
function(kv_add_test name)
    cmake_parse_arguments(ARG "" "ENVIRONMENT" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} kv_flags GTest::gtest_main)
    set(properties TIMEOUT 300)
    if(ARG_ENVIRONMENT)
        list(APPEND properties ENVIRONMENT "${ARG_ENVIRONMENT}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# kv_bundle_resources(<target> <bundle folder> [files...])
# What a plug-in's bundle carries beside its binary. The factory patterns become the user's library where none is
# installed.
function(kv_bundle_resources target bundle)
    file(GLOB_RECURSE patterns CONFIGURE_DEPENDS RELATIVE "${CMAKE_SOURCE_DIR}"
        "${CMAKE_SOURCE_DIR}/Loops/*/*.mid" "${CMAKE_SOURCE_DIR}/Loops/*/*.txt")
    set(copies)
    foreach(file IN LISTS patterns ARGN)
        set(name "${file}")
        if(NOT file MATCHES "^Loops/")
            cmake_path(GET file FILENAME name)
        endif()
        set(copy "${bundle}/Contents/Resources/${name}")
        add_custom_command(
            OUTPUT "${copy}"
            COMMAND "${CMAKE_COMMAND}" -E copy "${CMAKE_SOURCE_DIR}/${file}" "${copy}"
            DEPENDS "${CMAKE_SOURCE_DIR}/${file}"
            VERBATIM)
        list(APPEND copies "${copy}")
    endforeach()
    add_custom_target(${target} ALL DEPENDS ${copies})
endfunction()
