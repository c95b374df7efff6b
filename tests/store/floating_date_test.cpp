// Days are the same in every time zone: in which zone a book was written, by this version or the one before,
// and in which it is read.

#include "frameworks/AddressBook/store/file/repair.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <ctime>
#include <limits>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kZones[] = {"UTC",           "America/New_York", "Pacific/Honolulu",  "Asia/Kathmandu",
                                  "Europe/Berlin", "Pacific/Auckland", "Pacific/Kiritimati"};

// A local moment.
Date moment(int year, int month, int day, int hour = 12, int minute = 0) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_isdst = -1;
    return Date{static_cast<double>(std::mktime(&parts)) - kReferenceDate};
}

Value list(const Value& value) {
    return MultiValue{{{"E", "label", value}}, {}};
}

class FloatingDateTest : public Scratch {
  protected:
    ~FloatingDateTest() override { moveTo("UTC"); }

    // Makes of a new book one of the version before days floated.
    void makeVersion5() const { execute(folder() / kFileName, downgradeTo(5)); }
};

TEST_F(FloatingDateTest, ShowsTheSameClockEverywhere) {
    for (const char* zone : kZones) {
        moveTo(zone);
        for (const int year : {1604, 1899, 1975, 2024, 9999}) {
            EXPECT_EQ(momentOf(noonOf(year, {2, 28})), moment(year, 2, 28)) << zone << year;
            EXPECT_EQ(clockAt(moment(year, 2, 28)), noonOf(year, {2, 28})) << zone << year;
        }
        EXPECT_EQ(clockAt(Date{moment(1975, 5, 2, 23, 59).seconds + 0.5})->seconds,
                  noonOf(1975, {5, 2}).seconds + 43140.5);
    }
    EXPECT_FALSE(clockAt(Date{std::numeric_limits<double>::quiet_NaN()}));
    EXPECT_FALSE(clockAt(Date{1e300}));
    EXPECT_EQ(momentOf(FloatingDate{1e300}), Date{1e300});
}

TEST_F(FloatingDateTest, IsABirthdayAndWhatIsGivenAsNoon) {
    moveTo("America/New_York");
    EXPECT_EQ(storedDate("ABDate", moment(1975, 5, 2)), Value(noonOf(1975, {5, 2})));
    EXPECT_EQ(storedDate("ABDate", moment(1975, 5, 2, 11, 59)), Value(moment(1975, 5, 2, 11, 59)));
    const FloatingDate evening{noonOf(1975, {5, 2}).seconds + 11 * 3600};
    EXPECT_EQ(storedDate("Birthday", moment(1975, 5, 2, 23)), Value(evening));
    // The clock shows half past one twice; the second time it stays a moment.
    const Date first = moment(2024, 11, 3, 0, 30);
    EXPECT_EQ(storedDate("Birthday", Date{first.seconds + 7200}), Value(Date{first.seconds + 7200}));
    EXPECT_EQ(storedDate("Birthday", Date{1e300}), Value(Date{1e300}));
}

TEST_F(FloatingDateTest, IsFoundInEveryZone) {
    Store store(folder());
    const std::string ida =
        addPerson(store, {{"Birthday", noonOf(1975, {5, 2})}, {"ABDate", list(noonOf(2001, {12, 31}))}});
    const std::string late = addPerson(store, {{"Birthday", noonOf(1975, {5, 3})}});
    flushIndexes(store);
    for (const char* zone : kZones) {
        moveTo(zone);
        const auto born = [&](Comparison comparison, Date date) {
            return found(store, query("Birthday", comparison, date));
        };
        EXPECT_THAT(born(Comparison::equal, moment(1975, 5, 2)), ElementsAre(ida)) << zone;
        EXPECT_THAT(born(Comparison::lessThan, moment(1975, 5, 3)), ElementsAre(ida)) << zone;
        EXPECT_THAT(born(Comparison::lessThanOrEqual, moment(1975, 5, 2)), ElementsAre(ida)) << zone;
        EXPECT_THAT(born(Comparison::greaterThan, moment(1975, 5, 2)), ElementsAre(late)) << zone;
        EXPECT_THAT(born(Comparison::greaterThanOrEqual, moment(1975, 5, 2, 13)), ElementsAre(late)) << zone;
        EXPECT_THAT(found(store, query("ABDate", Comparison::withinIntervalAroundToday, days(0)),
                          moment(2001, 12, 31, 23, 59)),
                    ElementsAre(ida))
            << zone;
        EXPECT_THAT(found(store, query("ABDate", Comparison::withinIntervalAroundTodayYearless, days(0)),
                          moment(2026, 1, 1, 0)),
                    IsEmpty())
            << zone;
        EXPECT_THAT(store.check(), IsEmpty()) << zone;
    }
}

TEST_F(FloatingDateTest, ReplacesMomentsOfTheVersionBefore) {
    for (const char* written : kZones) {
        for (const char* read : kZones) {
            moveTo(written);
            std::filesystem::remove_all(folder());
            std::string ida;
            std::string nobody;
            {
                Store store(folder());
                ida = addPerson(store, {{"Birthday", moment(1975, 5, 2)},
                                        {"ABDate", list(moment(2001, 6, 9))},
                                        {"met", moment(2001, 6, 9, 12, 1)}});
                nobody = addPerson(store, {{"Birthday", moment(1604, 1, 2)}, {"Last", text("Nobody")}});
                flushIndexes(store);
                saveRecords(store, {updated(ida, {{"Birthday", moment(1975, 5, 3)}})}); // in the backlog
            }
            makeVersion5();
            moveTo(read);
            Store store(folder());
            const std::string zones = std::string(written) + " to " + read;
            const auto value = [&](const std::string& uid, const char* property) {
                return store.value(store.find(uid)->row, property);
            };
            // Of what is noon 11 hours and less behind UTC and more than 12 ahead of it, one is right.
            const bool told = std::string_view(written) != "Pacific/Honolulu" &&
                              std::string_view(written) != "Pacific/Kiritimati";
            if (told || written == read) {
                EXPECT_EQ(value(ida, "Birthday"), Value(noonOf(1975, {5, 3}))) << zones;
                EXPECT_EQ(value(nobody, "Birthday"), Value(noonOf(1604, {1, 2}))) << zones;
            }
            if (written == read) {
                EXPECT_EQ(value(ida, "ABDate"), list(noonOf(2001, {6, 9}))) << zones;
                EXPECT_NE(value(ida, "met").as<Date>(), nullptr);
            }
            EXPECT_THAT(store.check(), IsEmpty()) << zones;
            const Value birthday = value(ida, "Birthday");
            EXPECT_THAT(
                found(store, query("Birthday", Comparison::equal, momentOf(*birthday.as<FloatingDate>()))),
                ElementsAre(ida))
                << zones;
            flushIndexes(store);
            EXPECT_THAT(store.check(), IsEmpty()) << zones;
        }
    }
}

TEST_F(FloatingDateTest, KeepsATimeThatIsNoonNowhere) {
    moveTo("Europe/Berlin");
    std::string ida;
    {
        Store store(folder());
        ida = addPerson(store, {{"Birthday", moment(1975, 5, 2, 23, 10)}});
    }
    makeVersion5();
    const Store store(folder(), Store::Access::readOnly); // brings it up to date all the same
    EXPECT_EQ(store.value(store.find(ida)->row, "Birthday"),
              Value(FloatingDate{noonOf(1975, {5, 2}).seconds + 40200}));
}

// What the indexes hold of the values is then unknown, which the first search says.
TEST_F(FloatingDateTest, LeavesADamagedBacklogForRepair) {
    std::string ida;
    {
        Store store(folder());
        ida = addPerson(store, {{"Birthday", moment(1975, 5, 2)}});
    }
    makeVersion5();
    execute(folder() / kFileName, "UPDATE change SET replaced = x'0501'");
    const Store store(folder());
    EXPECT_EQ(store.value(store.find(ida)->row, "Birthday"), Value(noonOf(1975, {5, 2})));
    EXPECT_THROW(found(store, query("Birthday", Comparison::equal, noonOf(1975, {5, 2}))), StoreError);
    EXPECT_TRUE(repair(folder()).needed);
    EXPECT_THAT(found(Store(folder()), query("Birthday", Comparison::equal, noonOf(1975, {5, 2}))),
                testing::ElementsAre(ida));
}

TEST_F(FloatingDateTest, LeavesDamagedRecordsForRepair) {
    {
        Store store(folder());
        addPerson(store, {{"Birthday", moment(1975, 5, 2)}});
        addPerson(store, {{"Birthday", moment(1975, 5, 2)}});
        flushIndexes(store);
    }
    makeVersion5();
    execute(folder() / kFileName,
            "UPDATE record SET card = CAST(substr(card, 1, length(card) - 1) || 'x' AS BLOB) "
            "WHERE id = 1");
    const Store store(folder());
    EXPECT_EQ(store.value(RowId{2}, "Birthday"), Value(noonOf(1975, {5, 2})));
    EXPECT_THAT(store.check(), testing::Not(IsEmpty()));
}

} // namespace
} // namespace addressbook::test
