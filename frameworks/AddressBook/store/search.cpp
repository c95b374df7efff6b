// Store::search(). Each condition yields an ascending list of rows, by its access path; compounds join the
// lists. An index only has to find every record that may match: the Matcher decides which do.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/access_path.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/store/term_lookup.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

namespace addressbook {
namespace {

using Rows = std::vector<RowId>;

// Reading a record costs about as much as kIndexRowsForRecord rows of the index: with more than kHandful
// candidates the index is tried, and given up beyond that budget.
constexpr std::size_t kHandful = 4;
constexpr std::size_t kIndexRowsForRecord = 4;

Rows sorted(Rows rows) {
    if (!std::is_sorted(rows.begin(), rows.end())) {
        std::sort(rows.begin(), rows.end());
    }
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

Rows united(const Rows& a, const Rows& b) {
    Rows both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    return both;
}

// Adds its lifetime to a duration.
class Stopwatch {
  public:
    explicit Stopwatch(std::chrono::nanoseconds& time) : time_(time) {}
    ~Stopwatch() { time_ += Clock::now() - start_; }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

  private:
    using Clock = std::chrono::steady_clock;
    std::chrono::nanoseconds& time_;
    Clock::time_point start_ = Clock::now();
};

// Whether what a condition finds may change although the book does not: with the day or the time zone.
bool hangsOnClock(const Condition& condition) {
    const Operation operation = factsOf(condition.comparison).operation;
    const Value& wanted = condition.value;
    return operation == Operation::around || operation == Operation::ahead ||
           !(wanted.empty() || wanted.as<std::string>() != nullptr || wanted.as<std::int64_t>() != nullptr ||
             wanted.as<double>() != nullptr);
}

// A record in the database, for matches().
class StoredRecord final : public RecordView {
  public:
    StoredRecord(const Store::Impl& impl, const RecordRow& row) : impl_(impl), row_(row) {}
    Kind kind() const override { return row_.kind; }
    const Value& value(std::string_view property) const override {
        return value_ = impl_.valueOf(row_, property);
    }

  private:
    const Store::Impl& impl_;
    const RecordRow& row_;
    mutable Value value_;
};

// The search for one condition. Reports in [step] what it did.
class ConditionSearch {
  public:
    ConditionSearch(Store::Impl& impl, const Condition& condition, Date now, SearchStep& step)
        : impl_(impl), matcher_(condition, now), condition_(condition),
          lookup_(chooseAccessPath(impl, matcher_)), step_(step) {
        step_.path = lookup_.path;
        step_.indexRows = lookup_.rows;
    }

    // Returns the access path by which the cost is judged: a negative comparison lists all records, which
    // costs as much as a scan.
    AccessPath path() const {
        return matcher_.negative() ? std::max(lookup_.path, AccessPath::scan) : lookup_.path;
    }

    // Whether findWithin() can keep to its limit. With a label or a key it cannot, as SQLite skips rows that
    // are not counted.
    bool countsRows() const {
        const AccessPath mine = path();
        const bool looksUpValues = mine == AccessPath::exact || isOfBeginnings(mine) ||
                                   mine == AccessPath::range || mine == AccessPath::interval;
        return looksUpValues && !condition_.label && !condition_.key;
    }

    Rows find() { return *findWithin(std::numeric_limits<std::int64_t>::max()); }

    // Returns the records that meet the condition; nothing when that would take more than [mostRows] rows of
    // the index of values.
    std::optional<Rows> findWithin(std::int64_t mostRows) {
        if (matcher_.neverMatches()) {
            return Rows();
        }
        std::optional<Rows> found = positive(mostRows);
        if (!found) {
            return std::nullopt;
        }
        Rows hits = upToDate(sorted(std::move(*found)));
        if (!matcher_.negative()) {
            return hits;
        }
        Rows all = everyRow();
        step_.everyone = static_cast<std::int64_t>(all.size());
        Rows rest;
        std::set_difference(all.begin(), all.end(), hits.begin(), hits.end(), std::back_inserter(rest));
        return rest;
    }

  private:
    std::optional<Rows> positive(std::int64_t mostRows);
    Rows upToDate(Rows hits);
    std::optional<Rows> terms(std::int64_t mostRows);
    Rows trigrams();
    Rows uids();
    Rows everyRow();
    bool verify(RowId row);

    Store::Impl& impl_;
    Matcher matcher_;
    const Condition& condition_;
    const IndexLookup lookup_;
    SearchStep& step_;
};

std::optional<Rows> ConditionSearch::positive(std::int64_t mostRows) {
    switch (lookup_.path) {
    case AccessPath::nothing:
        return Rows();
    case AccessPath::uid:
    case AccessPath::everyUid:
        return uids();
    case AccessPath::trigram:
        return trigrams();
    default:
        return terms(mostRows);
    }
}

// Returns [hits] corrected by the backlog: of its properties the current values are checked.
Rows ConditionSearch::upToDate(Rows hits) {
    const Backlog& backlog = impl_.backlog();
    if (backlog.empty() || lookup_.property == 0) {
        return hits;
    }
    const auto first = backlog.lower_bound({lookup_.property, 0});
    const auto last = backlog.lower_bound({lookup_.property + 1, 0});
    Rows stale;
    Rows now;
    for (auto one = first; one != last; ++one) {
        stale.push_back(one->first.record);
        if (verify(stale.back())) {
            now.push_back(stale.back());
        }
    }
    Rows fresh;
    std::set_difference(hits.begin(), hits.end(), stale.begin(), stale.end(), std::back_inserter(fresh));
    return united(fresh, now);
}

// Returns the hits in the index of values, and those of its candidates whose records match; nothing when that
// would take more than [mostRows] rows.
std::optional<Rows> ConditionSearch::terms(std::int64_t mostRows) {
    auto found = TermLookup(impl_.db, matcher_, lookup_).run(mostRows, step_.indexRows);
    if (!found) {
        return std::nullopt;
    }
    const Rows hits = sorted(std::move(found->hits));
    Rows all = hits;
    for (const RowId row : sorted(std::move(found->candidates))) {
        if (!std::binary_search(hits.begin(), hits.end(), row) && verify(row)) {
            all.push_back(row);
        }
    }
    return all;
}

Rows ConditionSearch::trigrams() {
    const TrigramNeedle& needle = lookup_.needle;
    std::string phrase = "\"";
    for (const char c : needle.text) {
        phrase.push_back(c);
        if (c == '"') {
            phrase.push_back(c);
        }
    }
    phrase.push_back('"');
    const bool exact = needle.exact && matcher_.facts().ignoresCase && !condition_.label && !condition_.key;
    Rows found;
    auto statement = impl_.db.prepare("SELECT rowid FROM trigram WHERE trigram MATCH ? ORDER BY rowid");
    statement.bindText(phrase);
    while (statement.step()) {
        ++step_.indexRows;
        if (statement.integer(0) % kMostProperties != lookup_.property) {
            continue;
        }
        const RowId row = statement.integer(0) / kMostProperties;
        if (exact || verify(row)) {
            found.push_back(row);
        }
    }
    return found;
}

// Returns the hits among unique ids. Packed ones are looked up, if they can be; the few others, which sort
// apart as text, are compared one by one.
Rows ConditionSearch::uids() {
    const bool lookUp = lookup_.path == AccessPath::uid;
    Rows found;
    if (lookUp) {
        ++step_.indexRows;
        if (const auto row = impl_.record(*condition_.value.as<std::string>());
            row && row->kind == condition_.kind) {
            found.push_back(row->id);
        }
    }
    // The kind is compared below: in the statement it would make SQLite read all records of the kind.
    auto statement =
        impl_.db.prepare(lookUp ? "SELECT id, uid, kind FROM record WHERE uid >= '' AND uid < x''"
                                : "SELECT id, uid, kind FROM record WHERE kind = ?");
    if (!lookUp) {
        statement.bindInteger(static_cast<int>(condition_.kind));
    }
    while (statement.step()) {
        ++step_.indexRows;
        if (impl_.kindIn(statement, 2) == condition_.kind &&
            matcher_.anyMeets(impl_.uidIn(statement, 1).text())) {
            found.push_back(statement.integer(0));
        }
    }
    return found;
}

Rows ConditionSearch::everyRow() {
    auto statement = impl_.db.prepare("SELECT id FROM record WHERE kind = ? ORDER BY id");
    statement.bindInteger(static_cast<int>(condition_.kind));
    Rows rows;
    while (statement.step()) {
        rows.push_back(statement.integer(0));
    }
    return rows;
}

bool ConditionSearch::verify(RowId row) {
    ++step_.records;
    return matcher_.anyMeets(impl_.value(row, condition_.property));
}

// The search for a query: a tree of the shape of the query, with a ConditionSearch for each condition.
class QuerySearch {
  public:
    QuerySearch(Store::Impl& impl, const Query& query, Date now) : impl_(impl), query_(query), now_(now) {
        step_.query = &query;
        if (const auto* known = impl.knownSearch(query)) {
            known_ = known;
        } else if (const auto* compound = std::get_if<Query::Compound>(&query.resolved().node)) {
            all_ = compound->join == Query::Join::all;
            for (const Query* part : parts(*compound)) {
                children_.push_back(std::make_unique<QuerySearch>(impl, *part, now));
            }
            std::stable_sort(children_.begin(), children_.end(),
                             [](const auto& a, const auto& b) { return a->path() < b->path(); });
        } else {
            condition_.emplace(impl, std::get<Condition>(query.resolved().node), now, step_);
        }
    }
    QuerySearch(const QuerySearch&) = delete;
    QuerySearch& operator=(const QuerySearch&) = delete;

    // Returns the access path by which the cost of the whole is judged.
    AccessPath path() const {
        if (known_ != nullptr) {
            return AccessPath::nothing;
        }
        if (condition_) {
            return condition_->path();
        }
        if (children_.empty()) {
            return all_ ? AccessPath::scan : AccessPath::nothing;
        }
        return all_ ? children_.front()->path() : children_.back()->path();
    }

    Rows find() {
        const Stopwatch watch(step_.time);
        step_.execution = SearchStep::Execution::searched;
        Rows rows = known_ != nullptr ? *known_ : condition_ ? condition_->find() : join();
        step_.hits = static_cast<std::int64_t>(rows.size());
        return rows;
    }

    // Returns what find() did.
    SearchStep steps() const {
        SearchStep step = step_;
        if (step.execution == SearchStep::Execution::searched) {
            for (const auto& child : children_) {
                step.parts.push_back(child->steps());
            }
        }
        return step;
    }

  private:
    // Returns the children of a compound, and in place of each shared one that is joined alike and is not
    // known yet its own children: a search that was joined step by step is as deep as it is long.
    std::vector<const Query*> parts(const Query::Compound& compound) const {
        std::vector<const Query*> found;
        std::vector<const Query::Compound*> open{&compound};
        while (!open.empty()) {
            const Query::Compound& one = *open.back();
            open.pop_back();
            for (const Query& child : one.children) {
                const auto* inner = std::holds_alternative<Query::Shared>(child.node)
                                        ? std::get_if<Query::Compound>(&child.resolved().node)
                                        : nullptr;
                if (inner != nullptr && inner->join == compound.join && impl_.knownSearch(child) == nullptr) {
                    open.push_back(inner);
                } else {
                    found.push_back(&child);
                }
            }
        }
        return found;
    }

    Rows join() {
        if (children_.empty()) {
            return all_ ? everyRecord() : Rows();
        }
        Rows rows = children_.front()->find();
        for (auto child = std::next(children_.begin()); child != children_.end(); ++child) {
            if (all_) {
                rows = (*child)->filter(std::move(rows));
            } else {
                const Rows more = (*child)->find();
                rows.insert(rows.end(), more.begin(), more.end());
            }
        }
        return all_ ? rows : sorted(std::move(rows));
    }

    // Returns those of [rows] that match. Reads the records when they are few, unless a look-up is quicker.
    Rows filter(Rows rows) {
        const bool few = rows.size() <= fewRecordsFor(path());
        if (const auto mine = few ? findAtMost(rows.size()) : find()) {
            Rows both;
            std::set_intersection(rows.begin(), rows.end(), mine->begin(), mine->end(),
                                  std::back_inserter(both));
            return both;
        }
        if (rows.empty()) {
            return rows;
        }
        const Stopwatch watch(step_.time);
        step_.execution = SearchStep::Execution::verified;
        step_.records = static_cast<std::int64_t>(rows.size());
        rows.erase(std::remove_if(rows.begin(), rows.end(),
                                  [&](RowId row) {
                                      const auto record = impl_.record(row);
                                      return !record || !matches(query_, StoredRecord(impl_, *record), now_);
                                  }),
                   rows.end());
        step_.hits = static_cast<std::int64_t>(rows.size());
        return rows;
    }

    // Returns the result of find() if that is quicker than reading this many records, else nothing.
    std::optional<Rows> findAtMost(std::size_t records) {
        if (records <= kHandful || !condition_ || !condition_->countsRows()) {
            return std::nullopt;
        }
        const Stopwatch watch(step_.time);
        auto rows = condition_->findWithin(static_cast<std::int64_t>(records * kIndexRowsForRecord));
        if (rows) {
            step_.execution = SearchStep::Execution::searched;
            step_.hits = static_cast<std::int64_t>(rows->size());
        }
        return rows;
    }

    Rows everyRecord() {
        auto statement = impl_.db.prepare("SELECT id FROM record ORDER BY id");
        Rows rows;
        while (statement.step()) {
            rows.push_back(statement.integer(0));
        }
        step_.everyone = static_cast<std::int64_t>(rows.size());
        return rows;
    }

    Store::Impl& impl_;
    const Query& query_;
    Date now_;
    bool all_ = true;
    SearchStep step_;
    const Rows* known_ = nullptr; // the result of the last search, where that is asked for
    std::optional<ConditionSearch> condition_;
    std::vector<std::unique_ptr<QuerySearch>> children_; // cheapest first
};

} // namespace

const std::vector<RowId>* Store::Impl::knownSearch(const Query& query) {
    const auto* shared = std::get_if<Query::Shared>(&query.node);
    const bool known = shared != nullptr && lastSearch && lastSearch->query == *shared &&
                       lastSearch->dataVersion == db.dataVersion();
    return known ? &lastSearch->rows : nullptr;
}

void Store::Impl::keepSearch(const Query& query, const std::vector<RowId>& rows) {
    const auto* shared = std::get_if<Query::Shared>(&query.node);
    if (shared == nullptr || !std::holds_alternative<Query::Compound>((*shared)->node)) {
        return; // nothing that will be a part of another one, or is found as quickly again
    }
    const auto& compound = std::get<Query::Compound>((*shared)->node);
    const bool staysTrue =
        std::all_of(compound.children.begin(), compound.children.end(), [&](const Query& child) {
            return knownSearch(child) != nullptr || !anyCondition(child, hangsOnClock);
        });
    if (staysTrue) {
        lastSearch = LastSearch{*shared, rows, db.dataVersion()};
    }
}

std::vector<RowId> Store::search(const Query& query, Date now) const {
    const ReadTransaction transaction(*this);
    Rows rows = QuerySearch(*impl_, query, now).find();
    impl_->keepSearch(query, rows);
    return rows;
}

SearchStep Store::explain(const Query& query, Date now) const {
    const ReadTransaction transaction(*this);
    impl_->lastSearch.reset();
    QuerySearch search(*impl_, query, now);
    search.find();
    return search.steps();
}

} // namespace addressbook
