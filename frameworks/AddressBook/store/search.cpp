// Searching. Each condition is answered as an ascending list of rows, from the index that serves it;
// compounds join the lists. An index only has to find every record that may match: what decides is always the
// Matcher.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/access_path.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>

namespace addressbook {
namespace {

using Rows = std::vector<RowId>;

// So many records are rather looked at one by one than searching a further condition of a plan, by Plan.
constexpr std::size_t kFewForPath[] = {0, 20, 20, 200, 500, 2'000, 2'000, 20'000, 20'000};
// Where more than a handful are left, the values that a condition asks for may be fewer still. An index gives
// at least so many rows in the time that it takes to look at one record; the search gives up when there are
// more.
constexpr std::size_t kHandful = 4;
constexpr std::size_t kIndexRowsForRecord = 4;

Rows sorted(Rows rows) {
    if (!std::is_sorted(rows.begin(), rows.end()))
        std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

Rows united(const Rows& a, const Rows& b) {
    Rows both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    return both;
}

// Adds the time it lives.
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

void bind(sql::Statement& statement, const Value& value) {
    if (const auto* whole = value.as<std::int64_t>())
        statement.bindInteger(*whole);
    else if (const auto* real = value.as<double>())
        statement.bindReal(*real);
    else if (const auto* date = value.as<Date>())
        statement.bindReal(date->seconds);
    else if (const auto* text = value.as<std::string>())
        statement.bindText(*text);
    else if (const auto* bytes = value.as<Bytes>())
        statement.bindBlob({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

// A record in the database as conditions look at it.
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

// One condition, and in [step] what was done for it.
class ConditionSearch {
  public:
    ConditionSearch(Store::Impl& impl, const Condition& condition, Date now, SearchStep& step)
        : impl_(impl), matcher_(condition, now), condition_(condition),
          lookup_(chooseAccessPath(impl, matcher_)), step_(step) {
        step_.path = lookup_.path;
        step_.indexRows = lookup_.rows;
    }

    // What is dear about a negative comparison is the list of all others.
    AccessPath path() const {
        return matcher_.negative() ? std::max(lookup_.path, AccessPath::scan) : lookup_.path;
    }

    // Whether findWithin() keeps to its limit: with a label or a key SQLite passes over rows by itself.
    bool countsRows() const {
        const AccessPath mine = path();
        const bool looksUpValues = mine == AccessPath::exact || mine == AccessPath::prefix ||
                                   mine == AccessPath::range || mine == AccessPath::interval;
        return looksUpValues && !condition_.label && !condition_.key;
    }

    Rows find() { return *findWithin(std::numeric_limits<std::int64_t>::max()); }

    // Nothing when the index of values has more than so many rows to look at.
    std::optional<Rows> findWithin(std::int64_t mostRows) {
        if (matcher_.neverMatches())
            return Rows();
        std::optional<Rows> found = positive(mostRows);
        if (!found)
            return std::nullopt;
        Rows hits = upToDate(sorted(std::move(*found)));
        if (!matcher_.negative())
            return hits;
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
    Value termValue(const sql::Statement& statement, int type) const;

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

// What the indexes found, corrected by the values that they do not know yet.
Rows ConditionSearch::upToDate(Rows hits) {
    const Backlog& backlog = impl_.backlog();
    if (backlog.empty() || lookup_.property == 0)
        return hits;
    const auto first = backlog.lower_bound({lookup_.property, 0});
    const auto last = backlog.lower_bound({lookup_.property + 1, 0});
    Rows stale;
    Rows now;
    for (auto one = first; one != last; ++one) {
        stale.push_back(one->first.record);
        if (verify(stale.back()))
            now.push_back(stale.back());
    }
    Rows fresh;
    std::set_difference(hits.begin(), hits.end(), stale.begin(), stale.end(), std::back_inserter(fresh));
    return united(fresh, now);
}

// The term's value when it is whole and one that the Matcher can judge by itself.
Value ConditionSearch::termValue(const sql::Statement& statement, int type) const {
    static const int kInteger = static_cast<int>(Value(std::int64_t{}).index());
    static const int kReal = static_cast<int>(Value(double{}).index());
    static const int kDate = static_cast<int>(Value(Date{}).index());
    if (!statement.isNumber(2))
        return {};
    if (type == kInteger)
        return statement.integer(2);
    if (type == kReal)
        return statement.real(2);
    return type == kDate ? Value(Date{statement.real(2)}) : Value();
}

std::optional<Rows> ConditionSearch::terms(std::int64_t mostRows) {
    static const int kText = static_cast<int>(Value(std::string()).index());
    static const int kDictionary = static_cast<int>(Value(Dictionary()).index());

    const std::string exact(matcher_.wantedText() ? beginning(*matcher_.wantedText(), kTermBytes)
                                                  : std::string_view());
    const bool numeric = isNumeric(condition_.value);
    const bool caseCounts = !matcher_.facts().ignoresCase;
    const AccessPath path = lookup_.path;
    // What the index finds is then what is wanted, text for text.
    const bool covered = matcher_.wantedText() && lookup_.folded.size() <= kTermBytes &&
                         matcher_.wantedText()->size() <= kTermBytes &&
                         (path == AccessPath::exact || (path == AccessPath::prefix && !caseCounts));
    std::string sql = covered ? "SELECT record, type FROM term WHERE property = ?"
                              : "SELECT record, type, folded, exact, key FROM term WHERE property = ?";
    switch (path) {
    case AccessPath::exact:
        sql += numeric || !caseCounts ? " AND folded = ?" : " AND folded = ? AND exact = ?";
        break;
    case AccessPath::prefix:
    case AccessPath::interval:
        sql += " AND folded >= ? AND folded < ?";
        break;
    case AccessPath::range:
        // Numbers sort before text.
        sql += matcher_.facts().operation == Operation::less          ? " AND folded < ?"
               : matcher_.facts().operation == Operation::lessOrEqual ? " AND folded <= ?"
               : matcher_.facts().operation == Operation::greater     ? " AND folded > ? AND folded < ''"
                                                                      : " AND folded >= ? AND folded < ''";
        break;
    default:
        break;
    }
    if (condition_.label)
        sql += " AND (label = 0 OR label = ?)";
    if (condition_.key)
        sql += " AND (key = 0 OR key = ?)";

    const TermWord label = termWord(condition_.label ? &*condition_.label : nullptr);
    const TermWord key = termWord(condition_.key ? &*condition_.key : nullptr);
    Rows hits;
    Rows candidates;
    for (const Span& span : lookup_.spans) {
        auto statement = impl_.db.prepareText(sql);
        statement.bindInteger(lookup_.property);
        bind(statement, span.low);
        if (path == AccessPath::exact && !numeric && caseCounts)
            statement.bindText(exact);
        bind(statement, span.high);
        for (const TermWord* word : {condition_.label ? &label : nullptr, condition_.key ? &key : nullptr}) {
            if (word == nullptr)
                continue;
            if (const auto* text = std::get_if<std::string>(word))
                statement.bindText(*text);
            else
                statement.bindInteger(std::get<std::int64_t>(*word));
        }
        while (statement.step()) {
            if (++step_.indexRows > mostRows)
                return std::nullopt;
            const RowId row = statement.integer(0);
            const auto type = static_cast<int>(statement.integer(1));
            if (covered) {
                if (type == kText || (path == AccessPath::prefix && type == (kText | kCutTerm)))
                    hits.push_back(row);
                else
                    candidates.push_back(row);
                continue;
            }
            const bool noField = statement.isNumber(4) && statement.integer(4) == 0;
            if (type == kEmptyList || (condition_.key && noField && type == kDictionary))
                continue;
            if (condition_.value.empty()) {
                hits.push_back(row);
            } else if (type == kText) {
                const bool meets =
                    matcher_.wantedText() && matcher_.meetsText(statement.text(3), statement.text(2));
                if (meets)
                    hits.push_back(row);
                else if (condition_.value.as<Dictionary>() != nullptr)
                    candidates.push_back(row);
            } else if (const Value value = termValue(statement, type); !value.empty()) {
                if (matcher_.meets(value))
                    hits.push_back(row);
                else if (condition_.value.as<Dictionary>() != nullptr)
                    candidates.push_back(row);
            } else {
                candidates.push_back(row);
            }
        }
    }
    hits = sorted(std::move(hits));
    Rows verified;
    for (const RowId row : sorted(std::move(candidates)))
        if (!std::binary_search(hits.begin(), hits.end(), row) && verify(row))
            verified.push_back(row);
    hits.insert(hits.end(), verified.begin(), verified.end());
    return hits;
}

Rows ConditionSearch::trigrams() {
    const TrigramNeedle& needle = lookup_.needle;
    std::string phrase = "\"";
    for (const char c : needle.text) {
        phrase.push_back(c);
        if (c == '"')
            phrase.push_back(c);
    }
    phrase.push_back('"');
    const bool exact = needle.exact && matcher_.facts().ignoresCase && !condition_.label && !condition_.key;
    Rows found;
    auto statement = impl_.db.prepare("SELECT rowid FROM trigram WHERE trigram MATCH ? ORDER BY rowid");
    statement.bindText(phrase);
    while (statement.step()) {
        ++step_.indexRows;
        if (statement.integer(0) % kMostProperties != lookup_.property)
            continue;
        const RowId row = statement.integer(0) / kMostProperties;
        if (exact || verify(row))
            found.push_back(row);
    }
    return found;
}

// Unique ids that are packed are found by looking them up; the few others are looked at.
Rows ConditionSearch::uids() {
    const bool lookUp = lookup_.path == AccessPath::uid;
    Rows found;
    if (lookUp) {
        ++step_.indexRows;
        if (const auto row = impl_.record(*condition_.value.as<std::string>());
            row && row->kind == condition_.kind)
            found.push_back(row->id);
    }
    // Asked for the kind as well, SQLite would look through all records of it.
    auto statement =
        impl_.db.prepare(lookUp ? "SELECT id, uid, kind FROM record WHERE uid >= '' AND uid < x''"
                                : "SELECT id, uid, kind FROM record WHERE kind = ?");
    if (!lookUp)
        statement.bindInteger(static_cast<int>(condition_.kind));
    while (statement.step()) {
        ++step_.indexRows;
        if (impl_.kindIn(statement, 2) == condition_.kind && matcher_.anyMeets(impl_.uidIn(statement, 1)))
            found.push_back(statement.integer(0));
    }
    return found;
}

Rows ConditionSearch::everyRow() {
    auto statement = impl_.db.prepare("SELECT id FROM record WHERE kind = ? ORDER BY id");
    statement.bindInteger(static_cast<int>(condition_.kind));
    Rows rows;
    while (statement.step())
        rows.push_back(statement.integer(0));
    return rows;
}

bool ConditionSearch::verify(RowId row) {
    ++step_.records;
    return matcher_.anyMeets(impl_.value(row, condition_.property));
}

// A query's conditions made ready, in the same shape.
class QuerySearch {
  public:
    QuerySearch(Store::Impl& impl, const Query& query, Date now) : impl_(impl), query_(query), now_(now) {
        step_.query = &query;
        if (const auto* compound = std::get_if<Query::Compound>(&query.node)) {
            all_ = compound->join == Query::Join::all;
            for (const Query& child : compound->children)
                children_.push_back(std::make_unique<QuerySearch>(impl, child, now));
            std::stable_sort(children_.begin(), children_.end(),
                             [](const auto& a, const auto& b) { return a->path() < b->path(); });
        } else {
            condition_.emplace(impl, std::get<Condition>(query.node), now, step_);
        }
    }
    QuerySearch(const QuerySearch&) = delete;
    QuerySearch& operator=(const QuerySearch&) = delete;

    // The plan that says how dear the whole is.
    AccessPath path() const {
        if (condition_)
            return condition_->path();
        if (children_.empty())
            return all_ ? AccessPath::scan : AccessPath::nothing;
        return all_ ? children_.front()->path() : children_.back()->path();
    }

    Rows find() {
        const Stopwatch watch(step_.time);
        step_.execution = SearchStep::Execution::searched;
        Rows rows = condition_ ? condition_->find() : join();
        step_.hits = static_cast<std::int64_t>(rows.size());
        return rows;
    }

    // What find() did.
    SearchStep steps() const {
        SearchStep step = step_;
        if (step.execution == SearchStep::Execution::searched)
            for (const auto& child : children_)
                step.parts.push_back(child->steps());
        return step;
    }

  private:
    Rows join() {
        if (children_.empty())
            return all_ ? everyRecord() : Rows();
        Rows rows = children_.front()->find();
        for (auto child = std::next(children_.begin()); child != children_.end(); ++child)
            rows = all_ ? (*child)->filter(std::move(rows)) : united(rows, (*child)->find());
        return rows;
    }

    // Those of [rows] that match: looked at one by one when they are few, unless a search is quicker.
    Rows filter(Rows rows) {
        const bool few = rows.size() <= kFewForPath[static_cast<int>(path())];
        if (const auto mine = few ? findAtMost(rows.size()) : find()) {
            Rows both;
            std::set_intersection(rows.begin(), rows.end(), mine->begin(), mine->end(),
                                  std::back_inserter(both));
            return both;
        }
        if (rows.empty())
            return rows;
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

    // What find() answers, if that is quicker than looking at so many records.
    std::optional<Rows> findAtMost(std::size_t records) {
        if (records <= kHandful || !condition_ || !condition_->countsRows())
            return std::nullopt;
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
        while (statement.step())
            rows.push_back(statement.integer(0));
        step_.everyone = static_cast<std::int64_t>(rows.size());
        return rows;
    }

    Store::Impl& impl_;
    const Query& query_;
    Date now_;
    bool all_ = true;
    SearchStep step_;
    std::optional<ConditionSearch> condition_;
    std::vector<std::unique_ptr<QuerySearch>> children_; // cheapest first
};

} // namespace

std::vector<RowId> Store::search(const Query& query, Date now) const {
    const ReadTransaction transaction(*this);
    return QuerySearch(*impl_, query, now).find();
}

SearchStep Store::explain(const Query& query, Date now) const {
    const ReadTransaction transaction(*this);
    QuerySearch search(*impl_, query, now);
    search.find();
    return search.steps();
}

} // namespace addressbook
