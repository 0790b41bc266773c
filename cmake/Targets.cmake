# How this project's targets are made: what every one of them is compiled with, and helpers that collect a
# folder's sources, so that a new file needs no change in any CMakeLists.txt.

add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(project_options INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror>
  # GCC 12 sees overlapping copies in std::basic_string::replace that are none (its bug 105329).
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # A source that is compiled with others looks like a header to GCC, which warns of unnamed namespaces in headers.
  target_compile_options(project_options INTERFACE -Wno-subobject-linkage)
endif()
if(WIN32)
  # Windows 2000 is the oldest system that the add-in runs on: a newer function does not compile by accident.
  target_compile_definitions(project_options INTERFACE UNICODE _UNICODE WINVER=0x0500 _WIN32_WINNT=0x0500)
endif()

# Fills VARIABLE with the sources that lie directly in the given folders (relative to the caller's).
function(folder_sources variable)
  set(patterns "")
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    if(WIN32)
      list(APPEND patterns ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.rc ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.def)
    endif()
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()

# add_folder_library(NAME FOLDERS folder... [LINK target...]): a static library. Folders without a source (yet, or
# because they hold headers only) make an interface library, so that those who link it need not care.
function(add_folder_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "FOLDERS;LINK")
  folder_sources(sources ${arg_FOLDERS})
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC project_options ${arg_LINK})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE project_options ${arg_LINK})
  endif()
endfunction()

# add_folder_program(NAME FOLDERS folder... [DLL|WINDOWED] [LINK target...]): a program or DLL of the product; none
# while its folders are empty.
function(add_folder_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "DLL;WINDOWED" "" "FOLDERS;LINK")
  folder_sources(sources ${arg_FOLDERS})
  if(NOT sources)
    return()
  endif()
  if(arg_DLL)
    add_library(${name} SHARED ${sources})
    set_target_properties(${name} PROPERTIES PREFIX "")
    # Exports by their plain names: the .def file says DllGetClassObject, 32-bit code says DllGetClassObject@12.
    target_link_options(${name} PRIVATE $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:-Wl,--enable-stdcall-fixup>)
  else()
    add_executable(${name} ${sources})
    set_target_properties(${name} PROPERTIES WIN32_EXECUTABLE ${arg_WINDOWED})
  endif()
  target_link_libraries(${name} PRIVATE project_options ${arg_LINK})
endfunction()
