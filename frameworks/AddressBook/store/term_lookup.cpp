#include "frameworks/AddressBook/store/term_lookup.h"

#include "frameworks/AddressBook/values/text.h"

namespace addressbook {
namespace {

void bindValue(sql::Statement& statement, const Value& value) {
    if (const auto* whole = value.as<std::int64_t>()) {
        statement.bindInteger(*whole);
    } else if (const auto* real = value.as<double>()) {
        statement.bindReal(*real);
    } else if (const auto* date = value.as<Date>()) {
        statement.bindReal(date->seconds);
    } else if (const auto* day = value.as<FloatingDate>()) {
        statement.bindReal(day->seconds);
    } else if (const auto* text = value.as<std::string>()) {
        statement.bindText(*text);
    } else if (const auto* bytes = value.as<Bytes>()) {
        statement.bindBlob({reinterpret_cast<const char*>(bytes->data()), bytes->size()});
    }
}

// The columns of the statement. The last three are there only when hits must be judged by their values.
enum Column : int { kRecord, kType, kFolded, kExact, kKey };

// Returns the number or date in a row, for the Matcher to judge; no value for a row of any other type.
Value numberIn(const sql::Statement& row, TermType type) {
    if (!row.isNumber(kFolded)) {
        return {};
    }
    switch (type) {
    case TermType::integer:
        return row.integer(kFolded);
    case TermType::real:
        return row.real(kFolded);
    case TermType::date:
        return Date{row.real(kFolded)};
    case TermType::floatingDate:
        return FloatingDate{row.real(kFolded)};
    default:
        return {};
    }
}

bool isWhole(const std::optional<std::string>& text) {
    return text && text->size() <= kTermBytes;
}

} // namespace

TermLookup::TermLookup(sql::Connection& connection, const Matcher& matcher, const IndexLookup& lookup)
    : connection_(connection), matcher_(matcher), condition_(matcher.condition()), lookup_(lookup),
      comparesExact_(lookup.path == AccessPath::exact && !isNumeric(condition_.value) &&
                     !matcher.facts().ignoresCase),
      covered_(isWhole(matcher.wantedText()) && lookup.folded.size() <= kTermBytes &&
               (lookup.path == AccessPath::exact ||
                (isOfBeginnings(lookup.path) && matcher.facts().ignoresCase))) {}

std::string TermLookup::sql() const {
    std::string sql = covered_ ? "SELECT record, type FROM term WHERE property = ?"
                               : "SELECT record, type, folded, exact, key FROM term WHERE property = ?";
    switch (lookup_.path) {
    case AccessPath::exact:
        sql += comparesExact_ ? " AND folded = ? AND exact = ?" : " AND folded = ?";
        break;
    case AccessPath::prefix:
    case AccessPath::ending:
    case AccessPath::interval:
        sql += " AND folded >= ? AND folded < ?";
        break;
    case AccessPath::range:
        // SQLite sorts numbers before text, so that `folded < ''` ends the numbers.
        sql += matcher_.facts().operation == Operation::less          ? " AND folded < ?"
               : matcher_.facts().operation == Operation::lessOrEqual ? " AND folded <= ?"
               : matcher_.facts().operation == Operation::greater     ? " AND folded > ? AND folded < ''"
                                                                      : " AND folded >= ? AND folded < ''";
        break;
    default:
        break;
    }
    if (condition_.label) {
        sql += " AND (label = 0 OR label = ?)";
    }
    if (condition_.key) {
        sql += " AND (key = 0 OR key = ?)";
    }
    return sql;
}

// Binds the parameters of sql(), in its order. The statement must not outlive this object and [span].
void TermLookup::bind(sql::Statement& statement, const Span& span) const {
    const bool ofEndings = lookup_.path == AccessPath::ending;
    statement.bindInteger(ofEndings ? endingsOf(lookup_.property) : lookup_.property);
    bindValue(statement, span.low);
    if (comparesExact_) {
        statement.bindText(beginning(*matcher_.wantedText(), kTermBytes));
    }
    bindValue(statement, span.high);
    for (const auto* word : {&condition_.label, &condition_.key}) {
        if (*word) {
            bindWord(statement, **word);
        }
    }
}

TermLookup::Verdict TermLookup::judgeCovered(TermType type) const {
    const bool wholeOrBeginning =
        type == TermType::text || (type == TermType::cutText && isOfBeginnings(lookup_.path));
    return wholeOrBeginning ? Verdict::hit : Verdict::candidate;
}

// Whether a text, in the two forms that its row holds, meets the condition.
bool TermLookup::meetsText(std::string_view exact, std::string_view folded) const {
    return lookup_.path == AccessPath::ending ? matcher_.meetsText(reversed(exact), reversed(folded))
                                              : matcher_.meetsText(exact, folded);
}

TermLookup::Verdict TermLookup::judge(const sql::Statement& row, TermType type) const {
    const bool isNoField = row.isNumber(kKey) && row.integer(kKey) == 0;
    if (type == TermType::emptyList || (condition_.key && isNoField && type == TermType::dictionary)) {
        return Verdict::miss;
    }
    if (condition_.value.empty()) {
        return Verdict::hit;
    }
    // Terms have only a dictionary's fields, so that a wanted dictionary has to be compared in the record.
    const Verdict otherwise =
        condition_.value.as<Dictionary>() != nullptr ? Verdict::candidate : Verdict::miss;
    if (type == TermType::text) {
        const bool meets = matcher_.wantedText() && meetsText(row.text(kExact), row.text(kFolded));
        return meets ? Verdict::hit : otherwise;
    }
    if (const Value number = numberIn(row, type); !number.empty()) {
        return matcher_.meets(number) ? Verdict::hit : otherwise;
    }
    return Verdict::candidate;
}

std::optional<TermRows> TermLookup::run(std::int64_t mostRows, std::int64_t& indexRows) const {
    TermRows rows;
    const std::string text = sql();
    for (const Span& span : lookup_.spans) {
        auto statement = connection_.prepareText(text);
        bind(statement, span);
        while (statement.step()) {
            if (++indexRows > mostRows) {
                return std::nullopt;
            }
            const auto type = static_cast<TermType>(statement.integer(kType));
            const Verdict verdict = covered_ ? judgeCovered(type) : judge(statement, type);
            if (verdict != Verdict::miss) {
                (verdict == Verdict::hit ? rows.hits : rows.candidates).push_back(statement.integer(kRecord));
            }
        }
    }
    return rows;
}

} // namespace addressbook
