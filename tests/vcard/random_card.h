#pragma once

// Random cards, for properties that must hold for any.

#include "tests/vcard/support.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace addressbook::vcard {

// Makes cards that are different each time, from a fixed seed.
class RandomCard {
  public:
    explicit RandomCard(unsigned seed) : random_(seed) {}

    Card card() {
        Card card;
        card.uid = uuidOf(text()) + ":ABPerson";
        for (const BuiltInProperty& each : builtInProperties()) {
            if (each.scope == Scope::group || below(3) == 0) {
                continue;
            }
            if (Value value = make(each); !value.empty()) {
                card.values[std::string(each.name)] = std::move(value);
            }
        }
        card.values[std::string(property::kLast)] = trimmed();
        if (below(2)) {
            card.values[std::string(property::kPersonFlags)] = std::int64_t{below(2) ? 1 : 33};
        }
        if (below(2)) {
            card.values[std::string(property::kImage)] = bytes();
        }
        return card;
    }

    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

    // Returns [card] with some of its properties and entries changed, removed, added and moved.
    Card changed(Card card) {
        const Card other = this->card();
        for (const BuiltInProperty& each : builtInProperties()) {
            const std::string name(each.name);
            auto* list = card.values.contains(name) ? card.values[name].as<MultiValue>() : nullptr;
            if (each.scope == Scope::group || below(4)) {
                continue;
            }
            if (list && below(4)) {
                std::vector<Entry>& entries = list->entries;
                const std::size_t at = below(entries.size());
                const std::size_t what = below(4);
                if (what == 0 && entries.size() > 1 && entries[at].identifier != list->primary) {
                    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(at));
                } else if (what == 1) {
                    entries[at].label = label();
                } else if (what == 2) {
                    std::swap(entries.front(), entries.back());
                    list->primary = entries.back().identifier;
                } else if (const Value more = make(each); !more.empty()) {
                    for (const Entry& entry : more.as<MultiValue>()->entries) {
                        entries.push_back(entry);
                    }
                }
                if (entries.front().identifier == list->primary) {
                    list->primary.clear(); // which the first is anyway
                }
            } else if (other.values.contains(name)) {
                card.values[name] = other.values.at(name);
            } else if (name != property::kLast) {
                card.values.erase(name);
            }
        }
        return card;
    }

  private:
    // Characters that reading and writing must treat with care, and some that they need not.
    std::string text() {
        static const std::vector<std::string> kParts{"a",         "Z",   ",",        ";",
                                                     ":",         "\\",  "\"",       "\n",
                                                     "=",         "n",   "N",        "^",
                                                     ".",         "+",   "-",        "\t",
                                                     " ",         "'",   "\xC3\xA9", "\xF0\x9F\x9A\xA3",
                                                     "item1",     "\\n", "TYPE=",    "BEGIN:VCARD",
                                                     "END:VCARD", "=3D"};
        std::string result = "x"; // text at the ends of components is trimmed on reading
        for (std::size_t left = below(30); left > 0; --left) {
            result += kParts[below(kParts.size())];
        }
        return result + "y";
    }

    std::string trimmed() { return text(); }

    Bytes bytes() {
        Bytes result(1 + below(300));
        for (std::uint8_t& byte : result) {
            byte = static_cast<std::uint8_t>(below(256));
        }
        return result;
    }

    FloatingDate day() {
        const std::string year = std::to_string(below(5) ? 1900 + below(150) : kNoYear);
        return parseDay(year + "-0" + std::to_string(1 + below(9)) + "-1" + std::to_string(below(10)), 0)
            .value();
    }

    std::string label() {
        static const std::vector<std::string> kLabels{"_$!<Home>!$_",
                                                      "_$!<Work>!$_",
                                                      "_$!<Other>!$_",
                                                      "iPhone",
                                                      "_$!<Mobile>!$_",
                                                      "_$!<HomeFAX>!$_",
                                                      "_$!<Pager>!$_",
                                                      "HOME",
                                                      "_$!<HomePage>!$_",
                                                      "pref",
                                                      "_$!<Spouse>!$_",
                                                      "fax",
                                                      "",
                                                      "voice",
                                                      "boat",
                                                      "_$!<OtherFAX>!$_",
                                                      "_$!<Anniversary>!$_",
                                                      "_$!<Manager>!$_"};
        return below(3) ? kLabels[below(kLabels.size())] : text();
    }

    Value entryValue(std::string_view property, int type) {
        if (type == static_cast<int>(Type::date)) {
            return day();
        }
        if (type == static_cast<int>(Type::string)) {
            return text();
        }
        Dictionary fields;
        if (property == property::kAddress) {
            for (const char* key : {"Street", "City", "State", "ZIP", "Country"}) {
                fields[key] = text();
            }
        }
        if (property == property::kAddress && below(2)) {
            fields["CountryCode"] = std::string("dk");
        }
        if (property == property::kInstantMessage) {
            fields = {{"InstantMessageService", below(2) ? std::string("Skype") : text()},
                      {"InstantMessageUsername", text()}};
        }
        if (property == property::kSocialProfile) {
            fields = {{"url", text()},
                      {"username", std::string("some body")},
                      {"serviceName", std::string("bird")}};
        }
        return fields;
    }

    Value make(const BuiltInProperty& each) {
        const bool kept = each.name == property::kUid || each.name == property::kCreation ||
                          each.name == property::kModification || each.name == property::kHomePage ||
                          each.name == property::kPersonFlags;
        if (kept) {
            return {}; // the framework's own, or not in vCards
        }
        if (each.type == static_cast<int>(Type::date)) {
            return day();
        }
        if (each.type == static_cast<int>(Type::string)) {
            return text();
        }
        MultiValue list;
        for (std::size_t left = 1 + below(4); left > 0; --left) {
            list.entries.push_back({newUuid(), label(), entryValue(each.name, each.type & 0xFF)});
        }
        if (const std::size_t chosen = below(list.entries.size()); chosen > 0) {
            list.primary = list.entries[chosen].identifier;
        }
        return list;
    }

    std::mt19937 random_;
};

} // namespace addressbook::vcard
