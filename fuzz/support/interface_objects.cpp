#include "fuzz/support/interface_objects.h"

namespace fuzz {

namespace {

// Returns a value in a list.
const void* valueIn(Interface& calls, unsigned choice, fmx::_fmxcpt& failed) {
    auto& lists = calls.slots<fmx::DataVect>();
    return &FM_DataVect_At(lists[choice % lists.size()].get(), choice / 4 % 4, failed);
}

} // namespace

fmx::errcode Interface::answer(short /*id*/, const fmx::ExprEnv& /*environment*/,
                               const fmx::DataVect& arguments, fmx::Data& result) {
    if (!arguments.IsEmpty()) {
        result.SetAsText(arguments.AtAsText(0), arguments.At(0).GetLocale());
    }
    return 0;
}

fmx::uint32 Interface::stream() {
    const auto choice = input.number<uint8_t>();
    return begun.empty() || choice == 0xFF ? choice : begun[choice % begun.size()];
}

const fmx::Data& Interface::lent(const fmx::Data*, unsigned choice, fmx::_fmxcpt& failed) {
    return *static_cast<const fmx::Data*>(valueIn(*this, choice, failed));
}

const fmx::DataVect& Interface::lent(const fmx::DataVect*, unsigned choice, fmx::_fmxcpt& failed) {
    auto& rows = slots<fmx::RowVect>();
    return FM_RowVect_At(rows[choice % rows.size()].get(), 0, failed);
}

const fmx::Text& Interface::lent(const fmx::Text*, unsigned choice, fmx::_fmxcpt& failed) {
    auto& lists = slots<fmx::DataVect>();
    return choice % 2 == 0 ? FM_Data_GetAsText(slots<fmx::Data>()[choice / 2 % 3].get(), failed)
                           : FM_DataVect_AtAsText(lists[choice / 2 % 3].get(), choice / 8 % 4, failed);
}

const fmx::FixPt& Interface::lent(const fmx::FixPt*, unsigned choice, fmx::_fmxcpt& failed) {
    auto& lists = slots<fmx::DataVect>();
    return choice % 2 == 0 ? FM_Data_GetAsNumber(slots<fmx::Data>()[choice / 2 % 3].get(), failed)
                           : FM_DataVect_AtAsNumber(lists[choice / 2 % 3].get(), choice / 8 % 4, failed);
}

const fmx::DateTime& Interface::lent(const fmx::DateTime*, unsigned choice, fmx::_fmxcpt& failed) {
    const auto& data = slots<fmx::Data>()[choice / 4 % 3];
    switch (choice % 4) {
    case 0:
        return FM_Data_GetAsDate(data.get(), failed);
    case 1:
        return FM_Data_GetAsTime(data.get(), failed);
    case 2:
        return FM_Data_GetAsTimeStamp(data.get(), failed);
    default:
        return FM_DataVect_AtAsTimeStamp(slots<fmx::DataVect>()[choice / 4 % 3].get(), choice / 16 % 4,
                                         failed);
    }
}

const fmx::BinaryData& Interface::lent(const fmx::BinaryData*, unsigned choice, fmx::_fmxcpt& failed) {
    return FM_Data_GetBinaryData(slots<fmx::Data>()[choice % 3].get(), failed);
}

const fmx::Locale& Interface::lent(const fmx::Locale*, unsigned choice, fmx::_fmxcpt& failed) {
    return FM_Data_GetLocale(slots<fmx::Data>()[choice % 3].get(), failed);
}

const fmx::Color& Interface::lent(const fmx::Color*, unsigned choice, fmx::_fmxcpt& failed) {
    const auto& styles = slots<fmx::CharacterStyle>();
    return choice % 4 == 3 ? FM_Color_Black() : FM_CharacterStyle_GetColor(styles[choice % 4].get(), failed);
}

} // namespace fuzz
