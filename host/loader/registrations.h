#pragma once

// What plug-ins have registered of one kind, functions or steps.

#include "host/calc/registry.h"
#include "host/loader/plugin_handler.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace host {

// In the order of their registration. What stands here stands in the registry, too, where the language looks
// it up.
template <class Item, class Base>
class Registrations {
  public:
    using Pointer = std::shared_ptr<Item>;
    using Items = std::vector<Pointer>;

    explicit Registrations(Registry<Base>& registry) : registry_(registry) {}
    ~Registrations() { removeAllBut({}); }
    Registrations(const Registrations&) = delete;
    Registrations& operator=(const Registrations&) = delete;

    const Items& items() const { return items_; }

    // Null when there is none.
    Pointer find(const PluginHandler::Identity& identity) const {
        const auto found = std::find_if(items_.begin(), items_.end(), [&](const Pointer& item) {
            return item->registration().handler.identity() == identity;
        });
        return found == items_.end() ? nullptr : *found;
    }

    // Whether anything has that name.
    bool hasName(std::u16string_view name) const { return registry_.find(foldName(name)) != nullptr; }

    // Its identity and its name are free.
    void add(const Pointer& item) {
        registry_.add(item);
        items_.push_back(item);
    }

    void remove(const Pointer& item) {
        registry_.remove(item);
        std::erase(items_, item);
    }

    void removeAllBut(const Items& kept) {
        const Items now = items_;
        for (const Pointer& item : now) {
            if (std::find(kept.begin(), kept.end(), item) == kept.end()) {
                remove(item);
            }
        }
    }

  private:
    Registry<Base>& registry_;
    Items items_;
};

} // namespace host
