#include "tests/platform/table_bytes.h"

#include <random>

#include <gtest/gtest.h>

using namespace example;

namespace {

ParameterTable tableOf(size_t rows)
{
    constexpr unsigned seed = 904;
    std::mt19937 random(seed);
    ParameterTable table;
    for (size_t i = 0; i < rows; ++i)
        table.push_back({"p" + std::to_string(i), std::string(random() % 40, '+'), i % 2 ? "mm" : "",
                         static_cast<double>(random()) / 7});
    return table;
}

TEST(ParameterTableFile, GivesBackWhatWasWritten)
{
    for (size_t rows : {0u, 1u, 3u, 1000u}) {
        ParameterTable table = tableOf(rows), back = tableOf(2);
        EXPECT_EQ(read(written(table), back), ReadResult::done);
        EXPECT_EQ(back, table);
    }
    std::FILE *full = std::fopen("/dev/full", "wb");
    EXPECT_FALSE(writeTable(full, tableOf(3)));
    std::fclose(full);
    EXPECT_FALSE(writeTable(stderr, {{std::string(1001, 'x'), "", "", 0}}));
}

TEST(ParameterTableFile, AnyCutOrAlteredByteIsToldAndChangesNothing)
{
    const ParameterTable table = tableOf(3), before = tableOf(1);
    const std::string whole = written(table);
    constexpr size_t mark = 4, version = 8;
    for (size_t at = 1; at < whole.size(); ++at) {
        ParameterTable back = before;
        EXPECT_NE(read(whole.substr(0, at), back), ReadResult::done) << at;
        EXPECT_EQ(back, before);
    }
    for (size_t at = 0; at < whole.size(); ++at)
        for (unsigned bit : {1u, 2u, 128u}) {
            std::string altered = whole;
            altered[at] = static_cast<char>(static_cast<unsigned char>(altered[at]) ^ bit);
            ParameterTable back = before;
            bool newer = at >= mark && at < version && !(at == version - 1 && bit == 1); // that makes it 0
            ReadResult expected = at < mark ? ReadResult::noTable
                                  : newer   ? ReadResult::newerVersion
                                            : ReadResult::damaged;
            EXPECT_EQ(read(altered, back), expected) << at;
            EXPECT_EQ(back, before);
            EXPECT_STRNE(textOf(expected), textOf(ReadResult::done));
        }
}

}
