// Writes its words, one a line, and "open" with the numbers of the files that
// it was started with, to the file named by its first word; ends with the code
// named by its second.

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>

int main(int count, char **words)
{
    if (count < 3)
        return 99;
    std::FILE *out = std::fopen(words[1], "w");
    if (!out)
        return 98;
    for (int i = 3; i < count; ++i)
        std::fprintf(out, "%s\n", words[i]);
    std::fprintf(out, "open");
    for (int file = 0; file < 256; ++file)
        if (file != fileno(out) && fcntl(file, F_GETFD) >= 0)
            std::fprintf(out, " %d", file);
    std::fprintf(out, "\n");
    std::fclose(out);
    return std::atoi(words[2]);
}
