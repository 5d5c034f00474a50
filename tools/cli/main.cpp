// tarabix-cli: the program's model, player and output layer without a window.
#include <cstdio>
#include <cstring>

namespace {

int usage(std::FILE* out)
{
    std::fputs("usage: tarabix-cli COMMAND [ARGS]\n"
               "  version        print the program's version\n",
               out);
    return out == stdout ? 0 : 2;
}

}  // namespace

int main(int argc, char* argv[])
{
    if (argc < 2)
        return usage(stderr);
    const char* command = argv[1];
    if (!std::strcmp(command, "help") || !std::strcmp(command, "--help"))
        return usage(stdout);
    if (!std::strcmp(command, "version")) {
        std::puts("Tarabix 1.4");
        return 0;
    }
    std::fprintf(stderr, "tarabix-cli: unknown command '%s'\n", command);
    return usage(stderr);
}
