#include <cstdio>
#include <cstring>

// Calls what stack protector and fortify have to watch.
int main(int argc, char **argv)
{
    char text[16];
    std::strcpy(text, argv[argc - 1]);
    return std::puts(text);
}
