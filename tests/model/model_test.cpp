#include "tests/model/comparison.h"
#include "tests/support/rounds.h"

#include <cstdlib>
#include <gtest/gtest.h>

// Random calls of all functions, against a second telling of what they should do. VELOCARD_MODEL_SEED gives
// the first seed and VELOCARD_MODEL_SEQUENCES the number of sequences; each has the seed of its place.

namespace model {
namespace {

unsigned long long setting(const char* name, unsigned long long usual) {
    const char* text = std::getenv(name);
    return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

// One sequence; false at the first difference, which is then reported.
bool runSequence(std::uint64_t seed) {
    const std::string number = std::to_string(seed);
    Comparison comparison("seed " + number + " (VELOCARD_MODEL_SEED=" + number +
                          " VELOCARD_MODEL_SEQUENCES=1 runs only this)");
    Generator generator(seed, comparison.model());
    comparison.learned = [&](const std::string& id) { generator.learn(id); };
    while (const auto call = generator.preparation()) {
        if (!comparison.make(*call->function, call->arguments)) {
            return false;
        }
    }
    for (int left = 5 + generator.number(26); left > 0; --left) {
        const Call call = generator.next();
        if (!comparison.make(*call.function, call.arguments)) {
            return false;
        }
    }
    // Opening the database takes its time, so it is looked at less often.
    return comparison.books() && (seed % 5 != 0 || comparison.databases());
}

TEST(ModelTest, HasTheFunctionsOfThePlugin) {
    EXPECT_EQ(differenceOfTables(), "");
}

// The sequences in four parts, which may run side by side.
constexpr unsigned kParts = 4;
class AgreementTest : public testing::TestWithParam<unsigned> {};

TEST_P(AgreementTest, OfModelAndPlugin) {
    const auto seed = setting("VELOCARD_MODEL_SEED", 1);
    const auto count = setting("VELOCARD_MODEL_SEQUENCES", support::rounds(10000));
    for (unsigned long long i = GetParam(); i < count; i += kParts) {
        if (!runSequence(seed + i)) {
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Model, AgreementTest, testing::Range(0U, kParts));

} // namespace
} // namespace model
