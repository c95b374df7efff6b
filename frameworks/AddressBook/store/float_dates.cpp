#include "frameworks/AddressBook/store/float_dates.h"

#include "frameworks/AddressBook/store/backlog_codec.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/property.h"

#include <cmath>

namespace addressbook {
namespace {

constexpr double kHour = 3600;
constexpr double kDay = 24 * kHour;
// Since this year all clocks differ from UTC by whole quarters of an hour, but for a few in far places.
constexpr std::int64_t kZones = 1920;
// So many changes are kept in memory before the index is told.
constexpr std::size_t kMostChanges = 20'000;

// The day of which a moment is noon somewhere on earth; nothing when it is none.
std::optional<FloatingDate> noonSomewhere(Date date) {
    const auto day = utcDay(date);
    if (!day) {
        return std::nullopt;
    }
    const double midnight = utcMidnight(static_cast<double>(*day));
    const double ofDay = date.seconds - midnight;
    if (yearOf(*day) >= kZones && std::fmod(ofDay, kHour / 4) != 0) {
        return std::nullopt;
    }
    // Noon where clocks are more than 12 hours ahead of UTC lies on its day before, in the hours in which it
    // is noon on the few islands that are as far behind.
    return FloatingDate{midnight + (ofDay > 22 * kHour ? kDay : 0) + kDay / 2};
}

// What a moment that an earlier version stored becomes.
Value floated(std::string_view property, Date date) {
    Value here = storedDate(property, date);
    const auto* clock = here.as<FloatingDate>();
    if (clock == nullptr || isNoon(*clock)) {
        return here;
    }
    const auto noon = noonSomewhere(date); // only a birthday comes here
    return noon ? Value(*noon) : here;
}

// Makes days of a value's moments; false when there are none.
bool floatIn(std::string_view property, Value& value) {
    if (const auto* date = value.as<Date>()) {
        value = floated(property, *date);
        return value.as<FloatingDate>() != nullptr;
    }
    bool changed = false;
    if (auto* list = value.as<MultiValue>()) {
        for (Entry& entry : list->entries) {
            changed |= entry.value.as<Date>() != nullptr && floatIn(property, entry.value);
        }
    }
    return changed;
}

// A value of a property that was stored as moments and is stored as days.
struct Change {
    PropertyRef ref;
    Value before, after;
};

class DateFloater {
  public:
    explicit DateFloater(sql::Connection& connection) : connection_(connection), index_(connection, {}) {
        auto statement =
            connection.prepare("SELECT replaced FROM change WHERE replaced IS NOT NULL ORDER BY id");
        while (statement.step()) {
            try {
                decodeBacklog(statement.blob(0), backlog_);
            } catch (const DamagedRecord&) { // the first search says so
                continue;
            }
        }
    }

    void run() {
        std::int64_t last = 0;
        while (const auto record = next(last)) {
            last = record->id;
            floatRecord(*record);
        }
        flush();
    }

  private:
    struct Record {
        std::int64_t id = 0;
        std::int64_t kind = 0;
        std::string card;
    };

    std::optional<Record> next(std::int64_t last) {
        auto statement =
            connection_.prepare("SELECT id, kind, card FROM record WHERE id > ? ORDER BY id LIMIT 1");
        statement.bindInteger(last);
        if (!statement.step()) {
            return std::nullopt;
        }
        return Record{statement.integer(0), statement.integer(1), std::string(statement.blob(2))};
    }

    void floatRecord(const Record& record) {
        std::map<std::string, std::string> values;
        const std::size_t known = changes_.size();
        try {
            visitProperties(record.card, [&](std::string_view name, std::string_view bytes) {
                Value value = decodeValue(bytes);
                Value before = value;
                const bool changed = floatIn(name, value);
                values.emplace(name, changed ? encodeValue(value) : bytes);
                if (changed && !isInternal(name)) {
                    changes_.push_back({{propertyOf(record.kind, name), record.id}, before, value});
                }
            });
        } catch (const DamagedRecord&) {
            changes_.resize(known);
            return;
        }
        if (changes_.size() == known) {
            return;
        }
        const std::string card = encodeRecord(values);
        connection_.prepare("UPDATE record SET card = ? WHERE id = ?")
            .bindBlob(card)
            .bindInteger(record.id)
            .exec();
        if (changes_.size() >= kMostChanges) {
            flush();
        }
    }

    std::int64_t propertyOf(std::int64_t kind, std::string_view name) {
        auto statement = connection_.prepare("SELECT id FROM property WHERE kind = ? AND name = ?");
        statement.bindInteger(kind).bindText(name);
        return statement.firstNumber();
    }

    // Of what waits in the backlog the index holds another value, and gets this one when it is brought up to
    // date.
    void flush() {
        std::erase_if(changes_, [this](const Change& change) { return backlog_.contains(change.ref); });
        for (const Change& change : changes_) {
            index_.remove(change.ref.record, change.ref.property, encodeValue(change.before));
        }
        for (const Change& change : changes_) {
            index_.add(change.ref.record, change.ref.property, encodeValue(change.after));
        }
        index_.flush();
        changes_.clear();
    }

    sql::Connection& connection_;
    IndexWriter index_;
    Backlog backlog_;
    std::vector<Change> changes_; // that the index does not know yet
};

} // namespace

void floatDates(sql::Connection& connection) {
    DateFloater(connection).run();
}

} // namespace addressbook
