#include "frameworks/AddressBook/objc/property_name.h"

#include "frameworks/AddressBook/model/book.h"
#include "frameworks/AddressBook/objc/bridge.h"
#include "frameworks/AddressBook/values/text.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace addressbook {
namespace {

// What is known, found by the address of the constant, and then right when the text is: a library that has
// been unloaded may leave its place to another one. A slot that is taken stays so until the process ends.
constexpr std::size_t kSlots = 256;
using Slot = std::atomic<const PropertyName::Known*>;
constinit std::array<Slot, kSlots> slots{};

Slot& slotOf(NSString* constant) {
    return slots[reinterpret_cast<std::uintptr_t>(constant) / alignof(void*) % kSlots];
}

void remember(Slot& slot, std::string_view name) {
    auto known = std::make_unique<const PropertyName::Known>(PropertyName::Known{
        std::string(name), {publicType(Kind::person, name), publicType(Kind::group, name)}});
    const PropertyName::Known* none = nullptr;
    if (slot.compare_exchange_strong(none, known.get(), std::memory_order_release)) {
        known.release(); // NOLINT(bugprone-unused-return-value): the slot has it
    }
}

} // namespace

PropertyName::PropertyName(NSString* name) {
    const auto constant = constantBytes(name);
    if (constant) {
        known_ = slotOf(name).load(std::memory_order_acquire);
        if (known_ != nullptr && known_->text == *constant) {
            text_ = known_->text;
            return;
        }
    }
    if (known_ == nullptr && constant && isAscii(*constant)) {
        remember(slotOf(name), *constant);
    }
    known_ = nullptr;
    copy_ = textFrom(name);
    text_ = copy_;
}

int PropertyName::publicType(Kind kind) const {
    return known_ != nullptr ? known_->types[kind == Kind::person ? 0 : 1]
                             : addressbook::publicType(kind, text_);
}

} // namespace addressbook
