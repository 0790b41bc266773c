# add_pictures(TARGET RC): the bitmaps that TARGET's resource script RC names, drawn by packaging/pictures/ with a
# compiler of the machine that builds.
find_program(NATIVE_CXX NAMES g++ clang++ c++ REQUIRED DOC "C++ compiler for programs that run while building")

function(add_pictures target script)
  set(folder ${PROJECT_SOURCE_DIR}/packaging/pictures)
  set(generator ${CMAKE_CURRENT_BINARY_DIR}/draw_pictures)
  set(drawn ${CMAKE_CURRENT_BINARY_DIR}/pictures)
  set(sources ${folder}/draw_pictures.cpp ${folder}/canvas.cpp)
  set(bitmaps "")
  foreach(name banner wizard1 wizard2 wizard3 wizard4)
    foreach(resolution 96 144)
      list(APPEND bitmaps ${drawn}/${name}_${resolution}.bmp)
    endforeach()
  endforeach()
  file(MAKE_DIRECTORY ${drawn})
  add_custom_command(OUTPUT ${generator}
    COMMAND ${NATIVE_CXX} -std=c++20 -O1 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -o ${generator} ${sources}
    DEPENDS ${sources} ${folder}/canvas.h
    VERBATIM)
  add_custom_command(OUTPUT ${bitmaps} COMMAND ${generator} ${drawn} DEPENDS ${generator} VERBATIM)
  add_custom_target(${target}_pictures DEPENDS ${bitmaps})
  add_dependencies(${target} ${target}_pictures)
  target_include_directories(${target} PRIVATE ${drawn})
  set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS "${bitmaps}")
endfunction()
