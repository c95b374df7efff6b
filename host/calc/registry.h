#pragma once

// Registries: what plug-ins register, by name without regard to case.

#include "host/values/text.h"

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

// Returns the folded form of a name: two names are the same when their folded forms are.
inline std::u16string foldName(std::u16string_view name) {
    return foldCase(name);
}

// Thrown when a call failed inside the plug-in. what() says how, without the name of the function or step.
class ExternalFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Base class of the items of a registry.
class Registered {
  public:
    explicit Registered(std::u16string name) : name_(std::move(name)) {}
    virtual ~Registered() = default;
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

    const std::u16string& name() const { return name_; }

    // Whether the item is registered. Once it is not, it must not be called any more.
    bool registered() const { return registered_; }

  private:
    template <class Item>
    friend class Registry;

    std::u16string name_;
    bool registered_ = false;
};

// Registered items by name.
template <class Item>
class Registry {
  public:
    using Pointer = std::shared_ptr<Item>;
    using Items = std::map<std::u16string, Pointer, std::less<>>;

    // Adds an item. Returns false, and changes nothing, when the name is taken.
    bool add(const Pointer& item) {
        const bool added = items_.emplace(foldName(item->name()), item).second;
        item->registered_ = item->registered_ || added;
        return added;
    }

    void remove(const Pointer& item) {
        const auto found = items_.find(foldName(item->name()));
        if (found != items_.end() && found->second == item) {
            item->registered_ = false;
            items_.erase(found);
        }
    }

    // Returns the item with a folded name; null when there is none.
    Pointer find(std::u16string_view key) const {
        const auto found = items_.find(key);
        return found == items_.end() ? nullptr : found->second;
    }

    // Returns all items, ordered by folded name.
    const Items& all() const { return items_; }

  private:
    Items items_;
};

} // namespace host
