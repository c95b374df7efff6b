#pragma once

// Calls of the plug-in interface with arguments that an input chooses. A few objects of each class live as long as an
// input; every argument is one of them, or one that the host keeps inside another object and lends to the plug-in.

#include "fuzz/support/input.h"
#include "host/wrapper/interface.h"

#include <array>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

namespace fuzz {

// The objects of an input, and its arguments.
class Interface {
  public:
    explicit Interface(Input& chosen) : input(chosen) {}

    template <class Class>
    using Slots = std::array<std::unique_ptr<Class>, 3>;

    // Returns the next slot that the input chooses.
    template <class Class>
    std::unique_ptr<Class>& slot() {
        auto& slots = std::get<Slots<Class>>(objects_);
        return slots[input.number<uint8_t>() % slots.size()];
    }
    template <class Class>
    Slots<Class>& slots() {
        return std::get<Slots<Class>>(objects_);
    }

    // Returns the object that a method is called for; null now and then, which the host must answer with an error.
    template <class Class>
    Class* self() {
        const auto choice = input.number<uint8_t>();
        auto& all = slots<Class>();
        return choice == 0xFF ? nullptr : all[choice % all.size()].get();
    }

    // Returns an object that may be read: one of ours, or one inside another.
    template <class Class>
    const Class& readable() {
        const auto choice = input.number<uint8_t>();
        auto& all = slots<Class>();
        if (choice < 0x80) {
            return *all[choice % all.size()];
        }
        fmx::_fmxcpt failed;
        const Class& found = lent(static_cast<const Class*>(nullptr), choice, failed);
        return failed.code == 0 ? found : *all[0];
    }

    // Returns an argument of a type.
    template <class Type>
    Type argument() {
        using Value = std::remove_cvref_t<Type>;
        if constexpr (std::is_same_v<Value, fmx::_fmxcpt>) {
            block = fmx::_fmxcpt();
            return block;
        } else if constexpr (std::is_same_v<Type, bool>) {
            return (input.number<uint8_t>() & 1U) != 0;
        } else if constexpr (std::is_same_v<Type, fmx::ExtPluginType>) {
            return answer;
        } else if constexpr (std::is_arithmetic_v<Type>) {
            return input.number<Type>();
        } else if constexpr (std::is_arithmetic_v<Value>) {
            return std::get<Value>(answers_);
        } else if constexpr (std::is_const_v<std::remove_reference_t<Type>>) {
            return readable<Value>();
        } else {
            return *slot<Value>();
        }
    }

    // Returns what stands for a stream that was begun, or seldom for none.
    fmx::uint32 stream();

    // A function that is registered as the plug-in's: answers its first argument.
    static fmx::errcode answer(short id, const fmx::ExprEnv& environment, const fmx::DataVect& arguments,
                               fmx::Data& result);

    Input& input;
    fmx::_fmxcpt block;             // of the last call
    std::vector<fmx::uint32> begun; // what stands for streams that are added in pieces

  private:
    const fmx::Text& lent(const fmx::Text*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::FixPt& lent(const fmx::FixPt*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::DateTime& lent(const fmx::DateTime*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::BinaryData& lent(const fmx::BinaryData*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::Data& lent(const fmx::Data*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::DataVect& lent(const fmx::DataVect*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::Locale& lent(const fmx::Locale*, unsigned choice, fmx::_fmxcpt& failed);
    const fmx::Color& lent(const fmx::Color*, unsigned choice, fmx::_fmxcpt& failed);
    template <class Class>
    const Class& lent(const Class*, unsigned choice, fmx::_fmxcpt& /*failed*/) {
        auto& all = slots<Class>();
        return *all[choice % all.size()];
    }

    template <class Class>
    static Slots<Class> made(Class* (*constructor)(fmx::_fmxcpt&)) {
        fmx::_fmxcpt failed;
        Slots<Class> slots;
        for (auto& slot : slots) {
            slot.reset(constructor(failed));
        }
        return slots;
    }

    std::tuple<Slots<fmx::BinaryData>, Slots<fmx::CharacterStyle>, Slots<fmx::Color>, Slots<fmx::Data>,
               Slots<fmx::DataVect>, Slots<fmx::DateTime>, Slots<fmx::ExprEnv>, Slots<fmx::FixPt>,
               Slots<fmx::Locale>, Slots<fmx::QuadChar>, Slots<fmx::RowVect>, Slots<fmx::Text>>
        objects_{made<fmx::BinaryData>(FM_BinaryData_Constructor1),
                 made<fmx::CharacterStyle>(FM_CharacterStyle_Constructor1),
                 made<fmx::Color>(FM_Color_Constructor1),
                 made<fmx::Data>(FM_Data_Constructor1),
                 made<fmx::DataVect>(FM_DataVect_Constructor1),
                 made<fmx::DateTime>(FM_DateTime_Constructor1),
                 made<fmx::ExprEnv>(FM_ExprEnv_Constructor1),
                 made<fmx::FixPt>([](fmx::_fmxcpt& failed) { return FM_FixPt_Constructor1(0, 16, failed); }),
                 made<fmx::Locale>([](fmx::_fmxcpt& failed) { return FM_Locale_Constructor1(1, failed); }),
                 made<fmx::QuadChar>(FM_QuadChar_Constructor1),
                 made<fmx::RowVect>(FM_RowVect_Constructor1),
                 made<fmx::Text>(FM_Text_Constructor1)};
    std::tuple<fmx::int16, fmx::uint16> answers_; // by reference
};

// A call that an input makes.
using InterfaceCall = void (*)(Interface&);

namespace detail {

template <class Class, class Result, class... Parameters>
void method(Interface& calls, Result (*function)(void*, Parameters...) noexcept) {
    Class* const self = calls.self<Class>();
    std::tuple<Parameters...> arguments{calls.argument<Parameters>()...};
    std::apply([&](auto&... each) { (void)function(self, each...); }, arguments);
}
template <class Class, class Result, class... Parameters>
void method(Interface& calls, Result (*function)(const void*, Parameters...) noexcept) {
    const Class* const self = calls.self<Class>();
    std::tuple<Parameters...> arguments{calls.argument<Parameters>()...};
    std::apply([&](auto&... each) { (void)function(self, each...); }, arguments);
}
template <class Result, class... Parameters>
Result plain(Interface& calls, Result (*function)(Parameters...) noexcept) {
    std::tuple<Parameters...> arguments{calls.argument<Parameters>()...};
    return std::apply([&](auto&... each) -> Result { return function(each...); }, arguments);
}

} // namespace detail

// Calls a method of a class.
template <class Class, auto kFunction>
void method(Interface& calls) {
    detail::method<Class>(calls, kFunction);
}

// Calls a function that has no object.
template <auto kFunction>
void function(Interface& calls) {
    (void)detail::plain(calls, kFunction);
}

// Makes an object in the place of another, which is deleted; none when the call fails.
template <class Class, auto kConstructor>
void make(Interface& calls) {
    auto& slot = calls.slot<Class>();
    if (Class* const made = detail::plain(calls, kConstructor)) {
        slot.reset(made);
    }
}

} // namespace fuzz
