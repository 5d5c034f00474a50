# Warnings are errors in our own code; third-party headers come in as SYSTEM includes.
add_compile_options(-Wall -Wextra -Werror -Wno-error=deprecated-declarations)
