# The wrong choice: the package is for Windows.
set(CMAKE_C_COMPILER gcc)
