#include "tests/model/comparison.h"

#include <ctime>
#include <gtest/gtest.h>

namespace model {
namespace {

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
    return then <= now + 1 && now - then < 3600; // the system has a coarse clock and a fine one
}

bool isUuid(const std::string& text) {
    return text.size() == 36 && text.find_first_not_of("0123456789ABCDEF-") == std::string::npos;
}

// A text as a calculation writes it; what is long or no text is only described.
std::string inQuotes(const std::string& text) {
    if (text.size() > 200) {
        return "\"" + text.substr(0, 20) + "\" /* and so on, " + std::to_string(text.size()) + " bytes */";
    }
    std::string result = "\"";
    for (const char c : text) {
        result += c == '\0'  ? std::string("\" & HexDecode ( \"00\" ) & \"")
                  : c == '"' ? "\\\""
                             : std::string(1, c);
    }
    return result + "\"";
}

} // namespace

// Returns how a result differs from the expected one; empty when it does not. The model learns new
// identifiers.
std::string Comparison::compare(Expected& expected, const Answered& answered) {
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
        return answered.date && answered.stamp == expected.date ? ""
                                                                : "another date: " + inQuotes(answered.text);
    case Kind::moment:
        return answered.date && isRecent(answered.stamp)
                   ? ""
                   : (answered.date ? "not a time of now" : "no time: " + inQuotes(answered.text));
    case Kind::newRecord:
    case Kind::newEntry:
        if (!answered.text.ends_with(expected.text) ||
            !isUuid(answered.text.substr(0, answered.text.size() - expected.text.size())) ||
            names_.contains(answered.text)) {
            return "no new identifier: " + inQuotes(answered.text);
        }
        expected.learn(answered.text);
        if (learned) {
            learned(answered.text);
        }
        names_[answered.text] = "$$r" + std::to_string(lines_.size());
        lines_.back() =
            "Let ( " + names_[answered.text] + " = " + lines_.back() + " ; " + names_[answered.text] + " )";
        return {};
    case Kind::dictionary:
        for (const std::string& part : expected.parts) {
            if (answered.text.find(part) == std::string::npos) {
                return "no \"" + part + "\" in " + inQuotes(answered.text);
            }
        }
        return {};
    default:
        return !answered.date && answered.text == expected.text
                   ? ""
                   : "it answered " + inQuotes(answered.text) + " instead of " + inQuotes(expected.text);
    }
}

std::string Comparison::line(const Function& function, const Arguments& arguments) const {
    std::string text = function.name;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto name = names_.find(arguments[i]);
        text += i == 0 ? " ( " : " ; ";
        text += name != names_.end() ? name->second : inQuotes(arguments[i]);
    }
    return text + (arguments.empty() ? "" : " )");
}

bool Comparison::report(const std::string& problem) {
    std::string text = title_ + ", the last call: " + problem + "\nIn a new address book:\n";
    for (const std::string& each : lines_) {
        text += each + "\n";
    }
    ADD_FAILURE() << text;
    return false;
}

bool Comparison::make(const Function& function, const Arguments& arguments) {
    lines_.push_back(line(function, arguments));
    Expected expected = model_.call(function, arguments);
    const Answered answered = callPlugin(function, arguments);
    answer_ = answered.text;
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

bool Comparison::books() {
    const std::string difference = differenceOfBooks(model_);
    return difference.empty() || report(difference);
}

bool Comparison::databases() {
    const std::string difference = differenceOfDatabases(model_);
    return difference.empty() || report(difference);
}

} // namespace model
