#include "frameworks/AddressBook/sync/merge_list.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace addressbook::sync {

namespace {

using Index = std::optional<std::size_t>;
using Entries = std::vector<Entry>;

bool sameEntry(const Entry& left, const Entry& right) {
    return left.label == right.label && left.value == right.value;
}

bool sameEntries(const Entries& left, const Entries& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), sameEntry);
}

// Pairs each entry of [base] that has no partner yet with the first free entry of [now] for which [same] holds.
template <typename Same>
void pairUp(const Entries& base, const Entries& now, std::vector<Index>& partner, std::vector<bool>& taken,
            const Same& same) {
    for (std::size_t at = 0; at < base.size(); ++at) {
        for (std::size_t other = 0; !partner[at] && other < now.size(); ++other) {
            if (!taken[other] && same(base[at], now[other])) {
                partner[at] = other;
                taken[other] = true;
            }
        }
    }
}

// One entry of the result: where it stands on each side.
struct Item {
    Index base, local, remote;
    Entry entry;
    Index on(Side side) const { return side == Side::local ? local : remote; }
};

// What became of the entries of [base] on a side: the partner of each, and which entries are new.
struct Fates {
    std::vector<Index> partner;
    std::vector<bool> taken;
    Fates(const Entries& base, const Entries& now) : partner(base.size()), taken(now.size()) {
        pairUp(base, now, partner, taken, sameEntry);
        pairUp(base, now, partner, taken,
               [](const Entry& left, const Entry& right) { return left.value == right.value; });
        pairUp(base, now, partner, taken,
               [](const Entry& left, const Entry& right) { return left.label == right.label; });
    }
};

class ListMerger {
  public:
    ListMerger(const MultiValue& base, const MultiValue& local, const MultiValue& remote, Side winner)
        : base_(base), local_(local), remote_(remote), winner_(winner) {}

    MultiValue run(const std::string& property, std::vector<Conflict>& conflicts) {
        const Fates here(base_.entries, local_.entries), there(base_.entries, remote_.entries);
        for (std::size_t at = 0; at < base_.entries.size(); ++at) {
            mergeEntry(at, here.partner[at], there.partner[at], property, conflicts);
        }
        addNew(here, there);
        order();
        MultiValue result;
        for (Item& item : items_) {
            result.entries.push_back(std::move(item.entry));
        }
        if (const Index primary = primaryItem()) {
            result.primary = result.entries[*primary].identifier;
        }
        return result;
    }

  private:
    void mergeEntry(std::size_t at, Index here, Index there, const std::string& property,
                    std::vector<Conflict>& conflicts) {
        const Entry& before = base_.entries[at];
        const Entry* local = here ? &local_.entries[*here] : nullptr;
        const Entry* remote = there ? &remote_.entries[*there] : nullptr;
        const bool localChanged = local && !sameEntry(*local, before);
        const bool remoteChanged = remote && !sameEntry(*remote, before);
        if ((!local && !remoteChanged) || (!remote && !localChanged)) {
            return; // removed
        }
        Item item{at, here, there, local ? *local : *remote};
        if (remoteChanged && !localChanged) {
            item.entry.label = remote->label;
            item.entry.value = remote->value;
        } else if (remoteChanged && !sameEntry(*local, *remote)) {
            const bool apart = (local->value == before.value && remote->label == before.label) ||
                               (local->label == before.label && remote->value == before.value);
            const Entry& wins = winner_ == Side::local ? *local : *remote;
            item.entry.label = !apart                         ? wins.label
                               : local->label == before.label ? remote->label
                                                              : local->label;
            item.entry.value = !apart                         ? wins.value
                               : local->value == before.value ? remote->value
                                                              : local->value;
            if (!apart) {
                const Entry& loser = winner_ == Side::local ? *remote : *local;
                conflicts.push_back({property, winner_ == Side::local ? Side::remote : Side::local,
                                     loser.label, loser.value});
            }
        }
        items_.push_back(std::move(item));
    }

    // Adds what is new on either side, once what is new on both.
    void addNew(const Fates& here, const Fates& there) {
        std::vector<bool> both(remote_.entries.size());
        for (std::size_t at = 0; at < local_.entries.size(); ++at) {
            if (here.taken[at]) {
                continue;
            }
            Item item{{}, at, {}, local_.entries[at]};
            for (std::size_t other = 0; !item.remote && other < remote_.entries.size(); ++other) {
                if (!there.taken[other] && !both[other] && sameEntry(item.entry, remote_.entries[other])) {
                    item.remote = other;
                    both[other] = true;
                }
            }
            items_.push_back(std::move(item));
        }
        for (std::size_t at = 0; at < remote_.entries.size(); ++at) {
            if (!there.taken[at] && !both[at]) {
                items_.push_back({{}, {}, at, remote_.entries[at]});
            }
        }
    }

    // Puts the items into the order of one side; those that it does not have stand behind what they follow on the
    // other.
    void order() {
        const bool localAsBefore = sameEntries(local_.entries, base_.entries);
        const bool remoteAsBefore = sameEntries(remote_.entries, base_.entries);
        const Side first = localAsBefore ? Side::remote : remoteAsBefore ? Side::local : winner_;
        const Side second = first == Side::local ? Side::remote : Side::local;
        std::vector<Item> placed, rest;
        for (Item& item : items_) {
            (item.on(first) ? placed : rest).push_back(std::move(item));
        }
        const auto by = [](Side side) {
            return [side](const Item& left, const Item& right) { return *left.on(side) < *right.on(side); };
        };
        std::sort(placed.begin(), placed.end(), by(first));
        std::sort(rest.begin(), rest.end(), by(second));
        for (Item& item : rest) {
            auto place = placed.begin();
            Index before; // the nearest that stands before it on its side
            for (auto at = placed.begin(); at != placed.end(); ++at) {
                if (at->on(second) && *at->on(second) < *item.on(second) &&
                    (!before || *before < *at->on(second))) {
                    before = at->on(second);
                    place = at + 1;
                }
            }
            placed.insert(place, std::move(item));
        }
        items_ = std::move(placed);
    }

    // Returns the index of the item that is primary; nothing when the list does not say.
    Index primaryItem() const {
        const auto itemOf = [&](const MultiValue& list, Index Item::* place) -> Index {
            const auto entry = std::find_if(list.entries.begin(), list.entries.end(), [&](const Entry& each) {
                return each.identifier == list.primary;
            });
            for (std::size_t at = 0; at < items_.size() && entry != list.entries.end(); ++at) {
                if (items_[at].*place == static_cast<std::size_t>(entry - list.entries.begin())) {
                    return at;
                }
            }
            return std::nullopt;
        };
        const Index before = itemOf(base_, &Item::base);
        const Index here = itemOf(local_, &Item::local), there = itemOf(remote_, &Item::remote);
        return here == before ? there : there == before ? here : winner_ == Side::local ? here : there;
    }

    const MultiValue& base_;
    const MultiValue& local_;
    const MultiValue& remote_;
    Side winner_;
    std::vector<Item> items_;
};

} // namespace

MultiValue mergeLists(const MultiValue& base, const MultiValue& local, const MultiValue& remote, Side winner,
                      const std::string& property, std::vector<Conflict>& conflicts) {
    return ListMerger(base, local, remote, winner).run(property, conflicts);
}

} // namespace addressbook::sync
