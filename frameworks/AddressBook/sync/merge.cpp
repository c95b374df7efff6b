#include "frameworks/AddressBook/sync/merge.h"

#include "frameworks/AddressBook/sync/merge_list.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/edit_card.h"

#include <algorithm>
#include <map>
#include <set>
#include <type_traits>
#include <utility>

namespace addressbook::sync {

namespace {

using vcard::Card;

const Value& valueOf(const Card& card, const std::string& property) {
    static const Value kNone;
    const auto found = card.values.find(property);
    return found == card.values.end() ? kNone : found->second;
}

// Whether only this address book has the property.
bool isLocal(std::string_view property) {
    return property == property::kUid || property == property::kCreation ||
           property == property::kModification || property == property::kDistribution;
}

// A list of texts as one of entries, so that each is looked at alone; no value is an empty list.
MultiValue asList(const Value& value) {
    if (const auto* list = value.as<MultiValue>()) {
        return *list;
    }
    MultiValue list;
    if (const auto* array = value.as<Array>()) {
        for (const Value& each : *array) {
            list.entries.push_back({{}, {}, each});
        }
    }
    return list;
}

class CardMerger {
  public:
    CardMerger(const Card& base, const Card& local, const Card& remote, Side winner)
        : base_(base), local_(local), remote_(remote), winner_(winner) {}

    Merged run() {
        Card card = local_;
        if (card.uid.empty()) {
            card.uid = remote_.uid;
        }
        std::set<std::string> properties;
        for (const Card* each : {&local_, &remote_}) {
            for (const auto& [property, value] : each->values) {
                properties.insert(property);
            }
        }
        for (const std::string& property : properties) {
            if (isLocal(property)) {
                continue;
            }
            if (Value value = merge(property); value.empty()) {
                card.values.erase(property);
            } else {
                card.values[property] = std::move(value);
            }
        }
        card.memberUids = mergeNames(base_.memberUids, local_.memberUids, remote_.memberUids, vcard::uuidOf);
        card.categories = mergeNames(base_.categories, local_.categories, remote_.categories,
                                     [](std::string_view name) { return std::string(name); });
        return {std::move(card), std::move(conflicts_)};
    }

  private:
    Value merge(const std::string& property) {
        const Value& before = valueOf(base_, property);
        const Value& here = valueOf(local_, property);
        const Value& there = valueOf(remote_, property);
        const auto isOf = [&](const auto& type) {
            using Type = std::remove_cvref_t<decltype(type)>;
            return std::ranges::all_of(
                std::initializer_list<const Value*>{&before, &here, &there},
                [](const Value* each) { return each->empty() || each->template as<Type>(); });
        };
        if (isOf(MultiValue())) {
            MultiValue list =
                mergeLists(asList(before), asList(here), asList(there), winner_, property, conflicts_);
            return list.entries.empty() ? Value() : Value(std::move(list));
        }
        if (property == property::kUnknownLines && isOf(Array())) {
            return mergeLines(before, here, there);
        }
        if (here == there || there == before) {
            return here;
        }
        if (here == before || here.empty()) { // what was removed here and changed there stays
            return there;
        }
        if (!there.empty()) {
            const bool localWins = winner_ == Side::local;
            conflicts_.push_back(
                {property, localWins ? Side::remote : Side::local, {}, localWins ? there : here});
            return localWins ? here : there;
        }
        return here;
    }

    // Lines are there or not: one that another took the place of is a line removed and one added.
    static Value mergeLines(const Value& before, const Value& here, const Value& there) {
        const auto count = [](const Value& lines) {
            std::map<std::string, int> counts;
            if (const auto* array = lines.as<Array>()) {
                for (const Value& line : *array) {
                    if (const auto* text = line.as<std::string>()) {
                        ++counts[*text];
                    }
                }
            }
            return counts;
        };
        std::map<std::string, int> base = count(before), local = count(here), remote = count(there), left;
        for (const auto* side : {&local, &remote}) {
            for (const auto& [line, ignored] : *side) {
                const int was = base[line], is = local[line], other = remote[line];
                left[line] = is == was ? other : other == was ? is : std::max(is, other);
            }
        }
        Array lines;
        for (const Value* side : {&there, &here}) { // the server's order, which its text has
            if (const auto* array = side->as<Array>()) {
                for (const Value& line : *array) {
                    if (const auto* text = line.as<std::string>(); text && left[*text] > 0) {
                        --left[*text];
                        lines.push_back(line);
                    }
                }
            }
        }
        return lines.empty() ? Value() : Value(std::move(lines));
    }

    // Names are a set.
    template <typename Key>
    static std::vector<std::string> mergeNames(const std::vector<std::string>& before,
                                               const std::vector<std::string>& here,
                                               const std::vector<std::string>& there, const Key& key) {
        const auto keys = [&](const std::vector<std::string>& names) {
            std::set<std::string> set;
            for (const std::string& name : names) {
                set.insert(key(name));
            }
            return set;
        };
        const std::set<std::string> base = keys(before), local = keys(here), remote = keys(there);
        std::vector<std::string> result;
        for (const std::string& name : here) {
            if (const std::string id = key(name); remote.contains(id) || !base.contains(id)) {
                result.push_back(name);
            }
        }
        for (const std::string& name : there) {
            if (const std::string id = key(name); !local.contains(id) && !base.contains(id)) {
                result.push_back(name);
            }
        }
        return result;
    }

    const Card& base_;
    const Card& local_;
    const Card& remote_;
    Side winner_;
    std::vector<Conflict> conflicts_;
};

} // namespace

Merged merge(const std::optional<Card>& base, const std::optional<Card>& local,
             const std::optional<Card>& remote, Side winner) {
    if (local && remote) {
        Card none;
        none.kind = local->kind;
        return CardMerger(base ? *base : none, *local, *remote, winner).run();
    }
    const std::optional<Card>& left = local ? local : remote;
    const bool deleted = left && base && vcard::sayTheSame(*base, *left);
    return {deleted ? std::nullopt : left, {}};
}

} // namespace addressbook::sync
