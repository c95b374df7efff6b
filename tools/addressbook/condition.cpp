// In this order: short names of comparisons, tokens, the parser, conditions as text.

#include "tools/addressbook/condition.h"

#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/values/comparison.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace addressbook::tool {
namespace {

// A short name for a frequent comparison.
struct ShortName {
    std::string_view name;
    Comparison comparison;
};
constexpr std::array kShortNames{
    ShortName{"=", Comparison::equal},
    ShortName{"!=", Comparison::notEqual},
    ShortName{"<", Comparison::lessThan},
    ShortName{"<=", Comparison::lessThanOrEqual},
    ShortName{">", Comparison::greaterThan},
    ShortName{">=", Comparison::greaterThanOrEqual},
    ShortName{"is", Comparison::equalCaseInsensitive},
    ShortName{"contains", Comparison::containsSubStringCaseInsensitive},
    ShortName{"beginsWith", Comparison::prefixMatchCaseInsensitive},
    ShortName{"doesNotContain", Comparison::doesNotContainSubStringCaseInsensitive},
    ShortName{"isNot", Comparison::notEqualCaseInsensitive},
    ShortName{"endsWith", Comparison::suffixMatchCaseInsensitive},
};

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr const char* kComparisonWord = "a comparison, as contains or =";
constexpr std::string_view kSigns = "=!<>";

struct Token {
    enum class Kind { end, word, quoted, sign };
    Kind kind = Kind::end;
    std::string text; // without quotes
    std::size_t column = 1;
};

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isQuote(char c) {
    return c == '"' || c == '\'';
}

[[noreturn]] void fail(std::size_t column, const std::string& message) {
    throw std::invalid_argument("column " + std::to_string(column) + ": " + message);
}

class Tokens {
  public:
    explicit Tokens(std::string_view text) : text_(text) { advance(); }

    const Token& next() const { return token_; }
    Token take() {
        Token taken = token_;
        advance();
        return taken;
    }
    // Takes the next token if it is this word or sign; returns whether it was.
    bool take(std::string_view word) {
        const bool taken = is(word);
        if (taken) {
            advance();
        }
        return taken;
    }
    bool is(std::string_view word) const {
        return (token_.kind == Token::Kind::word || token_.kind == Token::Kind::sign) &&
               fold(token_.text) == word;
    }
    [[noreturn]] void failExpecting(const std::string& what, const std::string& hint = "") const {
        std::string message = "expected " + what + ", not ";
        message += token_.kind == Token::Kind::end ? "the end" : '"' + token_.text + '"';
        fail(token_.column, message + hint);
    }

  private:
    void advance() {
        while (at_ < text_.size() && isSpace(text_[at_])) {
            ++at_;
        }
        token_ = {Token::Kind::end, "", countCharacters(text_.substr(0, at_)) + 1};
        if (at_ == text_.size()) {
            return;
        }
        const char first = text_[at_];
        if (isQuote(first)) {
            quoted(first);
        } else if (first == '(' || first == ')') {
            token_.kind = Token::Kind::sign;
            token_.text = text_[at_++];
        } else if (isSign(first)) {
            run(Token::Kind::sign, isSign);
        } else {
            run(Token::Kind::word,
                [](char c) { return !isSpace(c) && !isQuote(c) && !isSign(c) && c != '(' && c != ')'; });
        }
    }

    static bool isSign(char c) { return kSigns.find(c) != std::string_view::npos; }

    template <typename Belongs>
    void run(Token::Kind kind, Belongs belongs) {
        token_.kind = kind;
        while (at_ < text_.size() && belongs(text_[at_])) {
            token_.text += text_[at_++];
        }
    }

    void quoted(char quote) {
        token_.kind = Token::Kind::quoted;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == quote) {
                ++at_;
                return;
            }
            char c = text_[at_];
            if (c == '\\' && at_ + 1 < text_.size()) {
                c = text_[++at_];
                c = c == 'n' ? '\n' : c == 't' ? '\t' : c;
            }
            token_.text += c;
        }
        fail(countCharacters(text_) + 1, std::string("expected the closing ") + quote +
                                             " of the text in column " + std::to_string(token_.column));
    }

    std::string_view text_;
    std::size_t at_ = 0;
    Token token_;
};

struct Property {
    std::string name;
    Kind kind = Kind::person;
};

// Returns all names of properties with their meanings: the framework's, those of fields.h, and those that
// users added.
std::vector<std::pair<std::string, Property>> properties(const Store& store) {
    std::vector<std::pair<std::string, Property>> known;
    const auto add = [&](std::string_view name, std::string_view property, Kind kind) {
        known.push_back({std::string(name), {std::string(property), kind}});
    };
    for (const BuiltInProperty& one : builtInProperties()) {
        add(one.name, one.name, one.scope == Scope::group ? Kind::group : Kind::person);
    }
    for (const Field& field : allFields(store)) {
        if (!field.property.empty()) {
            add(field.name, field.property, Kind::person);
        }
    }
    for (const PropertyDefinition& own : store.definitions()) {
        if (own.kind == Kind::group) {
            add(own.name, own.name, own.kind);
        }
    }
    return known;
}

// Returns the row of [known] whose name is [word] in any letter case.
template <typename Rows, typename Name>
auto named(const Rows& known, std::string_view word, Name name) {
    const std::string wanted = fold(word);
    return std::find_if(known.begin(), known.end(),
                        [&](const auto& row) { return fold(name(row)) == wanted; });
}

template <typename Rows, typename Name>
std::string suggestion(const Rows& known, std::string_view word, Name name) {
    const std::string wanted = fold(word);
    std::string nearest;
    std::size_t least = 4;
    for (const auto& row : known) {
        if (const std::size_t changes = distance(wanted, fold(name(row)));
            changes < least && changes < word.size()) {
            least = changes;
            nearest = name(row);
        }
    }
    return nearest.empty() ? "" : "; did you mean " + nearest + '?';
}

class Parser {
  public:
    Parser(std::string_view text, const Store& store) : tokens_(text), properties_(properties(store)) {}

    Query whole() {
        Query query = search();
        if (tokens_.next().kind != Token::Kind::end) {
            tokens_.failExpecting("\"and\", \"or\" or the end");
        }
        return query;
    }

  private:
    Query search() {
        return joined(Query::Join::any, "or",
                      [this] { return joined(Query::Join::all, "and", [this] { return part(); }); });
    }

    template <typename Part>
    Query joined(Query::Join join, std::string_view word, Part part) {
        Query first = part();
        if (!tokens_.is(word)) {
            return first;
        }
        Query::Compound compound{join, {std::move(first)}};
        while (tokens_.take(word)) {
            compound.children.push_back(part());
        }
        return {compound};
    }

    Query part() {
        if (!tokens_.take("(")) {
            return {condition()};
        }
        Query query = search();
        if (!tokens_.take(")")) {
            tokens_.failExpecting("\"and\", \"or\" or \")\"");
        }
        return query;
    }

    Condition condition() {
        const Property property = this->property();
        Condition condition;
        condition.kind = property.kind;
        condition.property = property.name;
        if (tokens_.take("key")) {
            condition.key = word("the name of a field, as City").text;
        }
        if (tokens_.take("label")) {
            condition.label = label();
        }
        condition.comparison = comparison(condition);
        condition.value = value();
        return condition;
    }

    Token word(const std::string& what) {
        if (tokens_.next().kind != Token::Kind::word && tokens_.next().kind != Token::Kind::quoted) {
            tokens_.failExpecting(what);
        }
        return tokens_.take();
    }

    Property property() {
        const std::size_t column = tokens_.next().column;
        const Token token = word("a property, as Last, or \"(\"");
        const auto name = [](const auto& row) { return row.first; };
        const auto found = named(properties_, token.text, name);
        if (found == properties_.end()) {
            fail(column, "expected a property; none is named \"" + token.text + '"' +
                             suggestion(properties_, token.text, name));
        }
        return found->second;
    }

    // Reads a label. A word without quotes means the built-in label of that name, if there is one.
    std::string label() {
        const Token token = word("a label, as Home");
        if (token.kind == Token::Kind::quoted) {
            return token.text;
        }
        std::string capital = token.text;
        if (capital.front() >= 'a' && capital.front() <= 'z') {
            capital.front() = static_cast<char>(capital.front() - 'a' + 'A');
        }
        for (const std::string& each : {token.text, capital}) {
            if (std::string known = "_$!<" + each + ">!$_"; wordCode(known) != 0) {
                return known;
            }
        }
        return token.text;
    }

    Comparison comparison(const Condition& condition) {
        const std::string what = condition.label ? kComparisonWord
                                 : condition.key ? std::string("\"label\" or ") + kComparisonWord
                                                 : std::string("\"key\", \"label\" or ") + kComparisonWord;
        const Token& token = tokens_.next();
        if (token.kind == Token::Kind::end || token.kind == Token::Kind::quoted) {
            tokens_.failExpecting(what);
        }
        std::string_view text = token.text;
        if (text.size() > 3 && fold(text).starts_with("kab")) {
            text.remove_prefix(3);
        }
        const auto nameOf = [](const auto& row) { return std::string(row.name); };
        const auto take = [this](Comparison found) {
            tokens_.take();
            return found;
        };
        if (const auto row = named(comparisons(), text, nameOf); row != comparisons().end()) {
            return take(row->comparison);
        }
        if (const auto row = named(kShortNames, text, nameOf); row != kShortNames.end()) {
            return take(row->comparison);
        }
        std::string hint = suggestion(kShortNames, text, nameOf);
        if (hint.empty()) {
            hint = suggestion(comparisons(), text, nameOf);
        }
        tokens_.failExpecting(what, hint);
    }

    Value value() {
        static const std::string what = "a value (text in quotes, a number, a date as 2026-01-31, or nil)";
        if (tokens_.next().kind == Token::Kind::quoted) {
            return tokens_.take().text;
        }
        if (tokens_.take("nil")) {
            return {};
        }
        if (tokens_.next().kind != Token::Kind::word) {
            tokens_.failExpecting(what);
        }
        const std::string& text = tokens_.next().text;
        Value value;
        if (std::int64_t whole = 0; reads(text, whole)) {
            value = whole;
        } else if (double real = 0; reads(text, real) && std::isfinite(real)) {
            value = real;
        } else if (const auto day = text.size() == 10 ? vcard::parseDay(text, kNoYear) : std::nullopt) {
            value = momentOf(*day);
        } else {
            tokens_.failExpecting(what);
        }
        tokens_.take();
        if (value.as<Date>() == nullptr && (tokens_.is("days") || tokens_.is("day"))) {
            const auto* whole = value.as<std::int64_t>();
            if (whole == nullptr || *whole < -INT32_MAX || *whole > INT32_MAX) {
                tokens_.failExpecting("a whole number before it");
            }
            value = *whole * kSecondsPerDay;
            tokens_.take();
        }
        return value;
    }

    template <typename Number>
    static bool reads(std::string_view text, Number& number) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        return error == std::errc() && end == text.data() + text.size();
    }

    Tokens tokens_;
    std::vector<std::pair<std::string, Property>> properties_;
};

std::string quotedText(std::string_view text) {
    std::string out = "\"";
    for (const char c : escaped(text)) {
        out.append(c == '"' ? "\\" : "").push_back(c);
    }
    return out + '"';
}

std::string wantedText(const Value& value) {
    if (const auto* text = value.as<std::string>()) {
        return quotedText(*text);
    }
    if (value.as<Date>() != nullptr) {
        return vcard::dayText(value).value_or("");
    }
    return value.empty() ? "nil" : valueText(value);
}

} // namespace

Query parseSearch(std::string_view text, const Store& store) {
    return Parser(text, store).whole();
}

std::string conditionText(const Condition& condition) {
    const bool plain = condition.property.find_first_of(" \t\"'()=!<>\\") == std::string::npos;
    std::string text = plain ? condition.property : quotedText(condition.property);
    if (condition.key) {
        text += " key " + quotedText(*condition.key);
    }
    if (condition.label) {
        text += " label " + quotedText(*condition.label);
    }
    text += ' ';
    text += factsOf(condition.comparison).name;
    return text + ' ' + wantedText(condition.value);
}

std::string shortComparisons() {
    std::string text;
    for (const ShortName& row : kShortNames) {
        text += (text.empty() ? "" : ", ") + std::string(row.name);
    }
    return text + " (those in letters ignore case)";
}

} // namespace addressbook::tool
