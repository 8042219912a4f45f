# VELMORA_SANITIZE is a comma-separated list handed to -fsanitize= for every target.
set(VELMORA_SANITIZE "" CACHE STRING "Sanitizers to build with (address,undefined or thread)")
if(VELMORA_SANITIZE)
  add_compile_options(-fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VELMORA_SANITIZE})
endif()
