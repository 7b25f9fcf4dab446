#include "session/name_table.h"

#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/os/fault.h"

using namespace vx;
using session::NameTable;

namespace {

using Model = std::map<std::string, int>;

Model contents(NameTable<int> &table)
{
    Model all;
    for (auto &entry : table)
        all[entry.name] = entry.record;
    return all;
}

/** Short names of two letters, so that they come again, and long ones that differ in one byte. */
std::string someName(std::mt19937 &random)
{
    std::string name(random() % 2 ? random() % 8 : 8 + random() % 20, 'a');
    for (size_t n = name.empty() ? 0 : 2; n > 0; --n)
        name[random() % name.size()] = static_cast<char>('a' + random() % 3);
    return name;
}

TEST(NameTable, AgreesWithAModelUnderRandomOperations)
{
    constexpr unsigned seed = 6101;
    RecordProperty("seed", static_cast<int>(seed));
    std::mt19937 random(seed);
    NameTable<int> table;
    Model model;
    for (int step = 0; step < 200000; ++step) {
        std::string name = someName(random);
        // Phases in which the table fills and in which it empties.
        bool filling = step / 20000 % 2 == 0;
        auto dice = random() % 10;
        if (dice < (filling ? 4u : 1u)) {
            table.at(name) = step;
            model[name] = step;
        } else if (dice < 5) {
            table.erase(name);
            model.erase(name);
        } else {
            auto expected = model.find(name);
            int *found = table.find(name);
            ASSERT_EQ(found != nullptr, expected != model.end()) << name << " at step " << step;
            if (found) {
                ASSERT_EQ(*found, expected->second) << name << " at step " << step;
            }
        }
        ASSERT_EQ(table.size(), model.size());
    }
    EXPECT_EQ(contents(table), model);
}

TEST(NameTable, AWalkGoesOnWhileNamesAreAdded)
{
    NameTable<int> table;
    table.at("0") = 0;
    int visited = 0;
    for (auto &entry : table) {
        EXPECT_EQ(entry.name, std::to_string(visited)); // oldest first
        EXPECT_EQ(entry.record, visited);
        if (++visited < 5000)
            table.at(std::to_string(visited)) = visited;
    }
    EXPECT_EQ(visited, 5000);
}

TEST(NameTable, IsAsItWasWhenMemoryEndsDuringAnAdd)
{
    const std::string added = "a name that does not fit into a short string";
    // The first name makes the slots, the ninth lets them grow.
    for (int names : {0, 3, 8}) {
        bool refused = true;
        for (int64_t nth = 1; refused; ++nth) {
            SCOPED_TRACE(testing::Message() << names << " names, allocation " << nth);
            NameTable<int> table;
            for (int i = 0; i < names; ++i)
                table.at("name " + std::to_string(i)) = i;
            Model before = contents(table);
            fault::refuse(fault::Kind::allocation, nth);
            try {
                table.at(added) = -1;
                refused = false;
            } catch (const std::bad_alloc &) {
            }
            fault::refuse(fault::Kind::allocation, 0);
            EXPECT_TRUE(nth > 2 || refused) << "an entry and its name at least";
            EXPECT_EQ(table.find(added) == nullptr, refused);
            if (!refused)
                before[added] = -1;
            EXPECT_EQ(contents(table), before);
            for (auto &[name, value] : before)
                EXPECT_TRUE(table.find(name) && *table.find(name) == value) << name;
        }
    }
}

}
