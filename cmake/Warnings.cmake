# Every target of the tree is compiled with these; a warning is an error.
if(MSVC)
  add_compile_options(/W4 /WX /permissive- /utf-8 /EHsc)
else()
  add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Werror)
endif()
