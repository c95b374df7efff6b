// book_server PEOPLE: a CardDAV server that answers from memory, with so many people in its book "friends". Prints its
// address; then, for each line on standard input, how many requests came since the one before.

#include "tests/carddav/book_server.h"

#include <array>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

std::string card(const std::string& uid, int number) {
    const std::string count = std::to_string(number);
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nN:Person " + count +
           ";Number;;;\r\nFN:Number Person " + count + "\r\nTEL;TYPE=CELL:+45 " +
           std::to_string(10'000'000 + number) + "\r\nEMAIL;TYPE=INTERNET,WORK:person" + count +
           "@example.com\r\nADR;TYPE=HOME:;;Vej " + count + ";Aarhus;;8000;Denmark\r\nEND:VCARD\r\n";
}

} // namespace

int main(int count, char** arguments) {
    const int people = count == 2 ? std::atoi(arguments[1]) : 0;
    carddav_test::BookServer server;
    for (int number = 0; number < people; ++number) {
        std::array<char, 40> uid{};
        std::snprintf(uid.data(), uid.size(), "%08X-0000-4000-8000-000000000000",
                      static_cast<unsigned>(number));
        server.put(std::string(carddav_test::BookServer::kFriends) + uid.data() + ".vcf",
                   card(uid.data(), number));
    }
    std::cout << server.url() << std::endl;
    std::size_t before = 0;
    for (std::string line; std::getline(std::cin, line);) {
        const std::size_t now = server.received().size();
        std::cout << now - before << std::endl;
        before = now;
    }
}
