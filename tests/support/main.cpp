#include <gtest/gtest.h>

// The C library's newlocale() loses its copy of LOCPATH, which the tests are run with.
extern "C" [[gnu::visibility("default")]] const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:__argz_add_sep\n";
}

// The C library guards its time zone with a lock that the sanitizer does not see.
extern "C" [[gnu::visibility("default")]] const char *__tsan_default_suppressions();
extern "C" const char *__tsan_default_suppressions()
{
    return "race:tzset_internal\n";
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
