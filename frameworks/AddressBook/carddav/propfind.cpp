#include "frameworks/AddressBook/carddav/propfind.h"

#include "frameworks/AddressBook/carddav/requests.h"

namespace addressbook::carddav {

Request propfind(const std::string& url, int depth, std::initializer_list<std::string_view> properties) {
    return {"PROPFIND",
            url,
            {"Depth: " + std::to_string(depth), "Content-Type: application/xml; charset=utf-8"},
            propfindBody(properties),
            {},
            16UL * 1024 * 1024};
}

Resources readResources(Client& client, Request request) {
    Resources read;
    MultistatusReader reader([&](Resource&& resource) { read.resources.push_back(std::move(resource)); });
    request.receive = [&](std::string_view bytes) { reader.feed(bytes); };
    read.url = client.perform(std::move(request)).url;
    reader.finish();
    return read;
}

} // namespace addressbook::carddav
