# The lower floor of plugin/ that everybody uses: error parameters, system errors, document path.
set(plugin_common_sources
    ${CMAKE_SOURCE_DIR}/plugin/document_path.cpp
    ${CMAKE_SOURCE_DIR}/plugin/error_params.cpp
    ${CMAKE_SOURCE_DIR}/plugin/system_error.cpp)
