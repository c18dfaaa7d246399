# lldp_embed_lua(TARGET FOLDER): the scripts of a folder as Redis::Script objects, one for each
# <name>.lua: its text, and the SHA-1 by which the server knows it once it has run it.
function(lldp_embed_lua target folder)
   file(GLOB scripts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.lua)
   set(definitions "")
   foreach(script IN LISTS scripts)
      get_filename_component(name ${script} NAME_WE)
      file(READ ${script} text)
      file(SHA1 ${script} sha)
      string(APPEND definitions "const Script ${name}Script{\"${sha}\", R\"lua(${text})lua\"};\n")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${script})
   endforeach()
   set(source ${PROJECT_BINARY_DIR}/embedded/${target}-scripts.cpp)
   file(CONFIGURE OUTPUT ${source} @ONLY CONTENT
        "#include \"Redis/Script.h\"\n\nnamespace Redis {\n\n@definitions@\n}  // namespace Redis\n")
   target_sources(${target} PRIVATE ${source})
endfunction()
