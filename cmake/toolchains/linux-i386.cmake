# 32-bit x86 by this machine's compiler; its programs run as they are. The system's headers are those of both widths, which only
# gcc-multilib says by itself, and that cannot be installed beside the cross compilers.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc -m32)
set(CMAKE_CXX_COMPILER g++ -m32)
set(CMAKE_C_FLAGS_INIT "-idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_CXX_FLAGS_INIT "-idirafter /usr/include/x86_64-linux-gnu")
