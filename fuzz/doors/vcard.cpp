// A file of vCards. What is read can be written in both versions, and is then read as it was.

#include "frameworks/AddressBook/vcard/vcard.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"

#include <cstdint>

namespace {

using namespace addressbook::vcard;

void roundTrip(const Card& card, WrittenVersion version) {
    const std::string written = write(card, version);
    Reader reader{std::string_view(written)};
    const auto read = reader.next();
    fuzz::claim(read && std::holds_alternative<Card>(*read), "a card that was written can be read");
    const Card& again = std::get<Card>(*read);
    fuzz::claim(again.skipped.empty(), "all lines of a card that was written can be read");
    fuzz::claim(!reader.next(), "a card that was written is one card");
    fuzz::claim(write(again, version) == written, "a card that was written, read and written is as before");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    // The first line names a character set for what is no UTF-8; mostly it is empty.
    const std::string charset(input.until('\n'));
    Reader reader(input.rest(), {charset, !charset.empty() && charset.size() % 2 == 0});
    while (const auto read = reader.next()) {
        if (const auto* card = std::get_if<Card>(&*read)) {
            roundTrip(*card, WrittenVersion::v3);
            roundTrip(*card, WrittenVersion::v4);
        }
    }
    return 0;
}
