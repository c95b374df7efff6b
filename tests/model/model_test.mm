#include "tests/model/plugin_runner.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

// Random calls of all functions, against a second telling of what they should do. VELOCARD_MODEL_SEED gives
// the first seed and VELOCARD_MODEL_SEQUENCES the number of sequences; each has the seed of its place.

namespace model {
namespace {

unsigned long long setting(const char* name, unsigned long long usual) {
    const char* text = std::getenv(name);
    return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

// A stamp of this test run.
bool isRecent(const Civil& stamp) {
    std::tm time{};
    time.tm_year = stamp.year - 1900;
    time.tm_mon = stamp.month - 1;
    time.tm_mday = stamp.day;
    time.tm_hour = stamp.hour;
    time.tm_min = stamp.minute;
    time.tm_sec = stamp.second;
    const std::time_t now = std::time(nullptr);
    const std::time_t then = timegm(&time);
    return then <= now && now - then < 3600;
}

bool isUuid(const std::string& text) {
    return text.size() == 36 && text.find_first_not_of("0123456789ABCDEF-") == std::string::npos;
}

// One sequence of calls, made and compared one by one.
class Sequence {
  public:
    explicit Sequence(std::uint64_t seed) : seed_(seed), generator_(seed, model_) { resetPlugin(); }

    // False at the first difference, which is then reported.
    bool run() {
        while (const auto call = generator_.preparation()) {
            if (!make(*call)) {
                return false;
            }
        }
        for (int left = 5 + generator_.number(26); left > 0; --left) {
            if (!make(generator_.next())) {
                return false;
            }
        }
        std::string difference = differenceOfBooks(model_);
        if (difference.empty() && seed_ % 4 == 0) { // opening the database takes its time
            difference = differenceOfDatabases(model_);
        }
        return difference.empty() || report(difference);
    }

  private:
    bool make(const Call& call) {
        lines_.push_back(line(call));
        Expected expected = model_.call(*call.function, call.arguments);
        const Answered answered = callPlugin(*call.function, call.arguments);
        if (const std::string problem = compare(expected, answered); !problem.empty()) {
            return report(problem);
        }
        for (const char* what : {"NUM", "TEXT"}) {
            const Function& lastError = functionNamed("KORU_GetLastError");
            Expected wanted = model_.call(lastError, {what});
            const std::string problem = compare(wanted, callPlugin(lastError, {what}));
            if (!problem.empty()) {
                return report("KORU_GetLastError ( \"" + std::string(what) + "\" ): " + problem);
            }
        }
        const std::string difference = differenceOfStates(model_.state);
        return difference.empty() || report(difference);
    }

    // Empty when the answer is as it should be; what the model cannot know it learns.
    std::string compare(Expected& expected, const Answered& answered) {
        using Kind = Expected::Kind;
        if (expected.orException && answered.text == "!!ERROR!!") {
            model_.raised();
            return {};
        }
        if (answered.escaped || expected.kind == Kind::escapes) {
            return answered.escaped && expected.kind == Kind::escapes ? "" : "a platform exception, or none";
        }
        switch (expected.kind) {
        case Kind::date:
            return answered.date && answered.stamp == expected.date ? "" : "another date: " + answered.text;
        case Kind::moment:
            return answered.date && isRecent(answered.stamp) ? "" : "not a time of now";
        case Kind::newRecord:
        case Kind::newEntry:
            if (!answered.text.ends_with(expected.text) ||
                !isUuid(answered.text.substr(0, answered.text.size() - expected.text.size())) ||
                names_.contains(answered.text)) {
                return "no new identifier: " + answered.text;
            }
            expected.learn(answered.text);
            generator_.learn(answered.text);
            names_[answered.text] = "$$r" + std::to_string(lines_.size());
            lines_.back() = "Let ( " + names_[answered.text] + " = " + lines_.back() + " ; " +
                            names_[answered.text] + " )";
            return {};
        case Kind::dictionary:
            for (const std::string& part : expected.parts) {
                if (answered.text.find(part) == std::string::npos) {
                    return "no \"" + part + "\" in " + answered.text;
                }
            }
            return {};
        default:
            return !answered.date && answered.text == expected.text
                       ? ""
                       : "it answered \"" + answered.text + "\" instead of \"" + expected.text + "\"";
        }
    }

    // The call as a calculation.
    std::string line(const Call& call) const {
        std::string text = call.function->name;
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            const auto name = names_.find(call.arguments[i]);
            text += i == 0 ? " ( " : " ; ";
            text += name != names_.end() ? name->second : "\"" + call.arguments[i] + "\"";
        }
        return text + (call.arguments.empty() ? "" : " )");
    }

    bool report(const std::string& problem) {
        std::string text = "seed " + std::to_string(seed_) + ", the last call: " + problem +
                           "\n(VELOCARD_MODEL_SEED=" + std::to_string(seed_) +
                           " VELOCARD_MODEL_SEQUENCES=1 runs only this; in a new address book:)\n";
        for (const std::string& each : lines_) {
            text += each + "\n";
        }
        ADD_FAILURE() << text;
        return false;
    }

    std::uint64_t seed_;
    Model model_;
    Generator generator_;
    std::vector<std::string> lines_;
    std::map<std::string, std::string> names_; // identifiers, as the printed calculations call them
};

TEST(Model, HasTheFunctionsOfThePlugin) {
    EXPECT_EQ(differenceOfTables(), "");
}

TEST(Model, AgreesWithThePlugin) {
    const auto seed = setting("VELOCARD_MODEL_SEED", 1);
    const auto count = setting("VELOCARD_MODEL_SEQUENCES", 10000);
    const auto patience = setting("VELOCARD_MODEL_FAILURES", 1);
    unsigned long long failures = 0;
    for (unsigned long long i = 0; i < count && failures < patience; ++i) {
        failures += Sequence(seed + i).run() ? 0 : 1;
    }
}

} // namespace
} // namespace model
