#pragma once

// What plug-ins register under names: case does not count in them.

#include "host/values/text.h"

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

// The form of a name that decides whether two names are the same.
inline std::u16string foldName(std::u16string_view name) {
    return foldCase(name);
}

// What a call that failed inside the plug-in throws: the message says how, without the name of what was
// called.
class ExternalFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A thing with a name that can stand in a registry.
class Registered {
  public:
    explicit Registered(std::u16string name) : name_(std::move(name)) {}
    virtual ~Registered() = default;
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

    const std::u16string& name() const { return name_; }

    // False once the plug-in has unregistered it; whoever still holds it must not call it any more.
    bool registered() const { return registered_; }

  private:
    template <class Item>
    friend class Registry;

    std::u16string name_;
    bool registered_ = false;
};

// Registered things by name.
template <class Item>
class Registry {
  public:
    using Pointer = std::shared_ptr<Item>;
    using Items = std::map<std::u16string, Pointer, std::less<>>;

    // Answers false, and changes nothing, when the name is taken.
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

    // [key] is a folded name; null when there is none.
    Pointer find(std::u16string_view key) const {
        const auto found = items_.find(key);
        return found == items_.end() ? nullptr : found->second;
    }

    // All of them, ordered by their folded name.
    const Items& all() const { return items_; }

  private:
    Items items_;
};

} // namespace host
