# JUCE's modules, compiled once into one library that every target with a window, a device or a plug-in format links.
find_package(JUCE CONFIG REQUIRED)

add_library(kv_juce STATIC EXCLUDE_FROM_ALL)
target_link_libraries(kv_juce PRIVATE
    juce::juce_audio_basics
    juce::juce_audio_devices
    juce::juce_audio_formats
    juce::juce_audio_processors
    juce::juce_audio_utils
    juce::juce_core
    juce::juce_data_structures
    juce::juce_events
    juce::juce_graphics
    juce::juce_gui_basics
    juce::juce_gui_extra)
target_compile_definitions(kv_juce
    PUBLIC
        JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1
        JUCE_STANDALONE_APPLICATION=0
        JUCE_DISPLAY_SPLASH_SCREEN=0
        JUCE_REPORT_APP_USAGE=0
        JUCE_DISABLE_JUCE_VERSION_PRINTING=1
        JUCE_USE_CURL=0
        JUCE_USE_FLAC=0
        JUCE_USE_OGGVORBIS=0
        JUCE_WEB_BROWSER=0
        JUCE_PLUGINHOST_LV2=1
        JUCE_PLUGINHOST_VST3=1
        JUCE_JACK=1
        JUCE_ALSA=1
        JUCE_MODAL_LOOPS_PERMITTED=1
        DONT_SET_USING_JUCE_NAMESPACE=1
    INTERFACE
        $<TARGET_PROPERTY:kv_juce,COMPILE_DEFINITIONS>)
# Its headers are the system's, so that our warnings stay ours.
target_include_directories(kv_juce SYSTEM INTERFACE $<TARGET_PROPERTY:kv_juce,INCLUDE_DIRECTORIES>)
target_compile_options(kv_juce PRIVATE -w)
# Its own slips, such as an index before a table while it decodes a mouse pointer, are not ours to mend.
if(KV_SANITIZE MATCHES "undefined")
    target_compile_options(kv_juce PRIVATE -fno-sanitize=undefined)
endif()
# The modules link these by name, and a static library keeps no link line of its own.
target_link_libraries(kv_juce INTERFACE png jpeg z freetype asound Threads::Threads ${CMAKE_DL_LIBS} rt)
target_compile_features(kv_juce PUBLIC cxx_std_20)
