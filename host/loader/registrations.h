#pragma once

// The functions, or the steps, that plug-ins have registered.

#include "host/calc/registry.h"
#include "host/loader/plugin_handler.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace host {

// A list in the order of registration. Every item is also in the registry, where the language looks names up;
// the destructor removes all of them there.
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

    // Returns the item with this identity; null when there is none.
    Pointer find(const PluginHandler::Identity& identity) const {
        const auto found = std::find_if(items_.begin(), items_.end(), [&](const Pointer& item) {
            return item->registration().handler.identity() == identity;
        });
        return found == items_.end() ? nullptr : *found;
    }

    // Whether the registry has an item of that name.
    bool hasName(std::u16string_view name) const { return registry_.find(foldName(name)) != nullptr; }

    // Adds an item. Its identity and name must not be taken.
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
