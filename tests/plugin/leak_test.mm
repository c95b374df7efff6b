// Memory over many calls. A few hundred of each function here; make test-leaks makes a million, of some functions if asked.

#import "plugin/shell/error_state.h"
#include "tests/plugin/good_calls.h"
#include "tests/plugin/host_double.h"
#include "tests/support/rounds.h"
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <malloc.h>
#include <sqlite3.h>
#include <sstream>
#include <vector>

namespace {

// What the memory in use may grow by, however many calls are made: caches of the address book that are not full yet,
// and the allocator's own.
constexpr std::ptrdiff_t kMostGrowth = std::ptrdiff_t{128} * 1024; // bytes

// Some functions are called a hundredth as often: after a save the book begins anew, which takes a hundred times as
// long as other calls, and others write into the log.
constexpr int kSlowness = 100;

long callsOfEach() {
    const char* wanted = std::getenv("VELOCARD_CALLS");
    return wanted != nullptr ? std::atol(wanted) : support::rounds(200);
}

// Whether a function is among those that are asked for, by their numbers; all are when none is.
bool isWanted(short function) {
    const char* wanted = std::getenv("VELOCARD_FUNCTIONS");
    std::istringstream numbers(wanted != nullptr ? wanted : "");
    const std::vector<short> functions{std::istream_iterator<short>(numbers), {}};
    return functions.empty() || std::find(functions.begin(), functions.end(), function) != functions.end();
}

// Bytes of memory in use; 0 under the address sanitizer, which has an allocator of its own. What SQLite uses is not
// counted: its cache of pages grows with the book up to a bound of its own.
std::ptrdiff_t memoryInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::ptrdiff_t>(info.uordblks + info.hblkhd) - sqlite3_memory_used();
}

class LeakTest : public GoodCallsTest {
  protected:
    static bool isSlow(const GoodCall& good) {
        HandlerFunction* const all[] = {Do_KORU_Save, Do_KORU_Delete, Do_KORU_ClearAll, Do_KORU_Display,
                                        Do_KORU_Reload};
        return std::find(std::begin(all), std::end(all), good.handler) != std::end(all);
    }
    // Whether the call asks only, so that it can be repeated as it is.
    static bool asks(const GoodCall& good) {
        HandlerFunction* const all[] = {Do_KORU_Version,
                                        Do_KORU_GetLastError,
                                        Do_KORU_OpenFirstRecord,
                                        Do_KORU_OpenNextRecord,
                                        Do_KORU_Open,
                                        Do_KORU_GetValueForProperty,
                                        Do_KORU_GetValueForUID,
                                        Do_KORU_OpenFirstMVProperty,
                                        Do_KORU_OpenNextMVProperty,
                                        Do_KORU_GetLabelForUID,
                                        Do_KORU_CompareProperty,
                                        Do_KORU_GetListOfValues,
                                        Do_KORU_GetFirstParentID,
                                        Do_KORU_GetNextParentID,
                                        Do_KORU_GetFirstMemberID,
                                        Do_KORU_GetNextMemberID,
                                        Do_KORU_GetFirstSubgroupID,
                                        Do_KORU_GetNextSubgroupID,
                                        Do_KORU_GetCustomField,
                                        Do_KORU_GetImage};
        return std::find(std::begin(all), std::end(all), good.handler) != std::end(all);
    }

    void repeat(const GoodCall& good, long calls) {
        prepare(good);
        for (long call = 0; call < calls; ++call) {
            const Pool pool;
            if (!asks(good)) {
                prepare(good);
            }
            const OwnedExprEnv environment;
            const OwnedDataVect arguments = argumentsOf(good);
            const OwnedData result;
            ASSERT_EQ(good.handler(good.id(), *environment, *arguments, *result), 0);
            host_double::reset(); // its record of what was made
        }
    }
};

TEST_F(LeakTest, MemoryStaysAsItIsHoweverOftenAFunctionIsCalled) {
    bool called = false;
    for (const GoodCall& good : calls()) {
        if (!isWanted(good.id())) {
            continue;
        }
        called = true;
        SCOPED_TRACE("function " + std::to_string(good.id()));
        const long count = isSlow(good) ? callsOfEach() / kSlowness + 2 : callsOfEach();
        repeat(good, std::min(count, 1000L)); // what is made once, and what fills caches
        const Objects objects = livingObjects();
        const int hostObjects = host_double::livingObjects();
        const std::ptrdiff_t before = memoryInUse();
        repeat(good, count);
        EXPECT_EQ(livingObjects(), objects);
        EXPECT_EQ(host_double::livingObjects(), hostObjects);
        EXPECT_LE(memoryInUse() - before, kMostGrowth);
        if (std::getenv("VELOCARD_CALLS") != nullptr) {
            printf("function %d: %ld calls, %+td bytes\n", good.id(), count, memoryInUse() - before);
        }
    }
    EXPECT_TRUE(called) << "There is no such function";
}

} // namespace
