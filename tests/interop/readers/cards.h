#pragma once

// What the readers in C++ share: the cards of a file, and printing what is seen in them.

#include <nlohmann/json.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace interop {

using Json = nlohmann::ordered_json;

// Prints a JSON array of what [seen] makes of each card in a file that addressbook has written.
template <typename Seen>
int printCards(int count, char** arguments, Seen seen) {
    if (count != 2) {
        std::cerr << "usage: " << arguments[0] << " FILE\n";
        return 2;
    }
    std::ifstream file(arguments[1], std::ios::binary);
    if (!file) {
        std::cerr << arguments[1] << ": cannot be read\n";
        return 1;
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string end = "\r\nEND:VCARD\r\n";
    Json cards = Json::array();
    for (std::size_t from = 0, to = 0; (to = text.find(end, from)) != std::string::npos; from = to) {
        to += end.size();
        cards.push_back(seen(text.substr(from, to - from)));
    }
    std::cout << cards.dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
    return 0;
}

} // namespace interop
