// Which header includes which: a source written for these headers must also compile with a host's own ones,
// and the other way round.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

using Included = std::map<std::string, std::set<std::string>>;

TEST(HeadersTest, EachBringsInWhatHostsOwnBringIn) {
    const std::regex include("^#include [<\"](?:FMWrapper/)?(FMX\\w+\\.h)[>\"]");
    Included included;
    for (const auto& header : std::filesystem::directory_iterator(SDK_HEADERS)) {
        std::set<std::string>& names = included[header.path().filename().string()];
        std::ifstream file(header.path());
        for (std::string line; std::getline(file, line);) {
            std::smatch match;
            if (std::regex_search(line, match, include)) {
                names.insert(match[1]);
            }
        }
    }
    const std::set<std::string> client = {"FMXClient.h"};
    EXPECT_EQ(included, (Included{{"FMXExtern.h", {}},
                                  {"FMXClient.h", {"FMXExtern.h"}},
                                  {"FMXTypes.h", client},
                                  {"FMXText.h", client},
                                  {"FMXTextStyle.h", client},
                                  {"FMXFixPt.h", client},
                                  {"FMXDateTime.h", client},
                                  {"FMXBinaryData.h", {"FMXClient.h", "FMXTypes.h"}},
                                  {"FMXData.h", {"FMXClient.h", "FMXTextStyle.h"}},
                                  {"FMXCalcEngine.h", client}}));
}

} // namespace
