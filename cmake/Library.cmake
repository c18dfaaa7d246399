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
   lldp_precompile(${name} "${sources}")
   if(LLDP_SANITIZE)
      target_compile_options(${name} PRIVATE -fsanitize=fuzzer-no-link)  # the fuzzer sees its branches
   endif()
endfunction()

# lldp_precompile(NAME SOURCES [HEADERS...]): what comes from outside and stands in nearly every source
# is read once. Only for the preset `sanitize`, whose compiler takes longest; the others find a source
# that forgets an include.
function(lldp_precompile name sources)
   list(LENGTH sources count)
   if(NOT LLDP_SANITIZE OR count LESS 10)
      return()
   endif()
   target_precompile_headers(${name} PRIVATE
      <algorithm> <array> <cstdint> <cstring> <functional> <map> <memory> <optional> <ostream> <set>
      <span> <sstream> <string> <string_view> <type_traits> <utility> <vector>
      <boost/container_hash/hash.hpp> <boost/describe.hpp> <boost/intrusive/set.hpp>
      <fmt/format.h> <nlohmann/json.hpp> ${ARGN})
   # For the compiler cache.
   target_compile_options(${name} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
endfunction()

function(lldp_include name folder leaf)
   set(view ${LLDP_VIEWS}/${name})
   file(MAKE_DIRECTORY ${view})
   file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${view}/${leaf} SYMBOLIC)
   target_include_directories(${name} PUBLIC ${view})
endfunction()
