# lldp_library(NAME FOLDER [DEPS...]): one shared library for one folder.
#
# The folder is seen by others as <Folder>/..., through an include directory that holds a link to
# that folder and nothing else. A target therefore can include only what it links: an arrow that
# points upward does not compile.
# One place for all presets: the compiler cache then knows a file again whatever builds it.
set(LLDP_VIEWS ${PROJECT_SOURCE_DIR}/build/include)

function(lldp_library name folder)
   get_filename_component(leaf ${folder} NAME)
   file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
   list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
   add_library(${name} SHARED ${sources})
   lldp_include(${name} ${folder} ${leaf})
   target_link_libraries(${name} PUBLIC ${ARGN} lldp_options)
endfunction()

function(lldp_include name folder leaf)
   set(view ${LLDP_VIEWS}/${name})
   file(MAKE_DIRECTORY ${view})
   file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${view}/${leaf} SYMBOLIC)
   target_include_directories(${name} PUBLIC ${view})
endfunction()
