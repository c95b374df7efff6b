#include "frameworks/AddressBook/carddav/dns.h"

#include <resolv.h>

#include <algorithm>
#include <array>
#include <functional>

namespace addressbook::carddav {
namespace {

// The answer of this machine's name servers; empty when there is none.
std::string query(const std::string& name, int type) {
    constexpr std::size_t kMaxMessage = 64UL * 1024;
    constexpr int kSeconds = 3;
    std::string message(kMaxMessage, '\0');
    struct __res_state state{};
    if (res_ninit(&state) != 0) {
        return {};
    }
    state.retrans = kSeconds;
    state.retry = 2;
    const int length =
        res_nquery(&state, name.c_str(), ns_c_in, type, reinterpret_cast<unsigned char*>(message.data()),
                   static_cast<int>(message.size()));
    res_nclose(&state);
    message.resize(length > 0 ? std::min(message.size(), static_cast<std::size_t>(length)) : 0);
    return message;
}

// Calls [each] with the message and every record of [type] in its answer.
void eachRecord(std::string_view bytes, ns_type type,
                const std::function<void(const ns_msg&, const ns_rr&)>& each) {
    ns_msg message;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    if (ns_initparse(data, static_cast<int>(bytes.size()), &message) != 0) {
        return;
    }
    for (int at = 0; at < ns_msg_count(message, ns_s_an); ++at) {
        ns_rr record;
        if (ns_parserr(&message, ns_s_an, at, &record) != 0) {
            return;
        }
        if (ns_rr_type(record) == type) {
            each(message, record);
        }
    }
}

} // namespace

std::vector<Service> readServices(std::string_view message) {
    std::vector<Service> services;
    eachRecord(message, ns_t_srv, [&](const ns_msg& whole, const ns_rr& record) {
        constexpr int kFixed = 6; // bytes before the host
        if (ns_rr_rdlen(record) <= kFixed) {
            return;
        }
        const unsigned char* data = ns_rr_rdata(record);
        std::array<char, NS_MAXDNAME> host{};
        if (dn_expand(ns_msg_base(whole), ns_msg_end(whole), data + kFixed, host.data(),
                      static_cast<int>(host.size())) < 0) {
            return;
        }
        std::string name = host.data();
        if (name.ends_with('.')) {
            name.pop_back();
        }
        if (!name.empty()) {
            services.push_back({static_cast<int>(ns_get16(data)), static_cast<int>(ns_get16(data + 2)),
                                static_cast<int>(ns_get16(data + 4)), name});
        }
    });
    std::stable_sort(services.begin(), services.end(), [](const Service& one, const Service& other) {
        return one.priority != other.priority ? one.priority < other.priority : one.weight > other.weight;
    });
    return services;
}

std::vector<std::string> readTexts(std::string_view message) {
    std::vector<std::string> texts;
    eachRecord(message, ns_t_txt, [&](const ns_msg&, const ns_rr& record) {
        const auto* data = reinterpret_cast<const char*>(ns_rr_rdata(record));
        const std::string_view strings(data, ns_rr_rdlen(record));
        for (std::size_t at = 0; at < strings.size();) { // each behind its length
            const std::size_t length = static_cast<unsigned char>(strings[at]);
            texts.emplace_back(strings.substr(at + 1, length));
            at += 1 + length;
        }
    });
    return texts;
}

std::vector<Service> SystemDns::services(const std::string& name) const {
    return readServices(query(name, ns_t_srv));
}

std::vector<std::string> SystemDns::texts(const std::string& name) const {
    return readTexts(query(name, ns_t_txt));
}

} // namespace addressbook::carddav
