#include "session/name_table.h"

#include "tests/support/test.h"

using namespace vx;
using session::NameTable;

namespace {

using Model = std::map<std::string, int>;

void expectAgreement(NameTable<int> &table, const Model &model)
{
    Model walked;
    for (auto &entry : table)
        walked[entry.name] = entry.record;
    EXPECT_EQ(walked, model);
    for (auto &[name, value] : model)
        EXPECT_TRUE(table.find(name) && *table.find(name) == value) << name;
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
    test::Random random(6101);
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
        }
        ASSERT_EQ(table.find(name) != nullptr, model.contains(name)) << name << " at step " << step;
        ASSERT_EQ(table.size(), model.size());
        if (step % 5000 == 0)
            expectAgreement(table, model);
    }
}

TEST(NameTable, IsAsItWasWhenMemoryEndsDuringAnAdd)
{
    const std::string added = "a name that does not fit into a short string";
    // The first name makes the slots, the ninth lets them grow.
    for (int names : {0, 3, 8}) {
        NameTable<int> table;
        Model model;
        for (int i = 0; i < names; ++i)
            table.at("name " + std::to_string(i)) = model["name " + std::to_string(i)] = i;
        auto add = [&] {
            try {
                table.at(added) = -1;
            } catch (const std::bad_alloc &) {
            }
        };
        test::eachRefusal(fault::Kind::allocation, nullptr, add, [&](bool refused) {
            if (!refused)
                model[added] = -1;
            expectAgreement(table, model);
        });
    }
}

}
