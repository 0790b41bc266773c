# add_form_template(TARGET): mrktxtmsg.oft beside the DLL, written by packaging/form/ with a compiler of the machine
# that builds.
find_program(NATIVE_CXX NAMES g++ clang++ c++ REQUIRED DOC "C++ compiler for programs that run while building")

function(add_form_template target)
  set(folder ${PROJECT_SOURCE_DIR}/packaging/form)
  set(generator ${CMAKE_CURRENT_BINARY_DIR}/make_template)
  set(file ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/mrktxtmsg.oft)
  set(sources ${folder}/make_template.cpp ${folder}/compound_file.cpp)
  add_custom_command(OUTPUT ${generator}
    COMMAND ${NATIVE_CXX} -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -o ${generator} ${sources}
    DEPENDS ${sources} ${folder}/compound_file.h
    VERBATIM)
  add_custom_command(OUTPUT ${file} COMMAND ${generator} ${file} DEPENDS ${generator} VERBATIM)
  add_custom_target(form_template ALL DEPENDS ${file})
  add_dependencies(${target} form_template)
endfunction()
