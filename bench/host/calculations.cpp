#include "bench/host/calculations.h"

#include "host/calc/external_function.h"
#include "host/calc/parser.h"
#include "host/calc/session.h"
#include "host/loader/plugin_host.h"
#include "host/values/text.h"

#include <map>
#include <stdexcept>

namespace bench {
namespace {

// The function that does nothing.
class EmptyFunction : public host::ExternalFunction {
  public:
    EmptyFunction() : ExternalFunction(u"Nothing", u"Nothing", 0, 0) {}
    host::Value call(host::Session&, std::span<host::Value>) override { return {}; }
};

} // namespace

struct Calculations::Machine {
    host::Session session;
    host::StepRegistry steps;
    host::PluginHost plugins{session, steps, [](const auto&, const auto&, const auto&) { return 0; }};
    std::map<int, host::Calculation> prepared;

    host::Calculation parse(const std::string& text) {
        return host::parseCalculation(std::make_shared<host::Source>("", host::fromUtf8(text)),
                                      session.functions());
    }

    // Returns the result of a calculation. Throws when it is the plug-in's error.
    host::Value value(const host::Calculation& calculation) {
        host::Value result = session.evaluate(calculation);
        if (result.storedText() == u"!!ERROR!!") {
            throw std::runtime_error(
                "a calculation failed: " +
                host::toUtf8(session.evaluate(u"KORU_GetLastError ( \"TEXT\" )").asText()));
        }
        return result;
    }
};

Calculations::Calculations(const std::filesystem::path& plugin) : machine_(std::make_unique<Machine>()) {
    machine_->session.functions().add(std::make_shared<EmptyFunction>());
    machine_->plugins.load(plugin);
}

Calculations::~Calculations() = default;

void Calculations::prepare(int as, const std::string& calculation) {
    machine_->prepared.insert_or_assign(as, machine_->parse(calculation));
    machine_->value(machine_->prepared.at(as));
}

void Calculations::run(int as) {
    machine_->session.evaluate(machine_->prepared.at(as));
}

std::string Calculations::evaluate(const std::string& calculation) {
    return host::toUtf8(machine_->value(machine_->parse(calculation)).asText());
}

void Calculations::searchEverybody() {
    evaluate(R"(KORU_Search ( "person" ; "lastname" ; "" ; "" ; "" ; "Equal" ))");
}

std::size_t Calculations::walk(bool counting) {
    Machine& machine = *machine_;
    const host::Calculation first = machine.parse("KORU_OpenFirstRecord");
    const host::Calculation next = machine.parse("KORU_OpenNextRecord");
    const host::Calculation properties[] = {machine.parse("KORU_GetValueForProperty ( \"firstname\" )"),
                                            machine.parse("KORU_GetValueForProperty ( \"lastname\" )"),
                                            machine.parse("KORU_GetValueForProperty ( \"companyname\" )")};
    const host::Calculation firstPhone = machine.parse("KORU_OpenFirstMVProperty ( \"phone\" )");
    const host::Calculation nextPhone = machine.parse("KORU_OpenNextMVProperty");
    const host::Calculation phone = machine.parse("KORU_GetValueForUID ( \"phone\" ; $phone )");

    std::size_t bytes = 0;
    const auto see = [&](const host::Value& value) {
        if (counting) {
            bytes += host::toUtf8(value.storedText()).size();
        }
    };
    for (host::Value id = machine.value(first); id.storedText() != u"END"; id = machine.value(next)) {
        for (const host::Calculation& property : properties) {
            see(machine.value(property));
        }
        for (host::Value entry = machine.value(firstPhone); entry.storedText() != u"END";
             entry = machine.value(nextPhone)) {
            machine.session.setVariable(u"$phone", entry);
            see(machine.value(phone));
        }
    }
    return bytes;
}

} // namespace bench
