// Calls of the plug-in's functions, as the host makes them for a calculation, while another process saves to the same
// address book, deletes, and restores it. Whatever is called, the book stays sound.
//
// The input: a byte of choices, then calls: a byte for the function, or for what the other process does, and arguments.

#include "fuzz/support/claim.h"
#include "fuzz/support/forgetful_plugin.h"
#include "fuzz/support/input.h"
#include "fuzz/support/shared_book.h"
#include "host/calc/stack_limit.h"
#include "host/loader/plugin_host.h"
#include "host/values/text.h"

#include <cstdint>
#include <dlfcn.h>
#include <memory>

namespace {

using namespace host;

// Arguments that functions understand; the identifiers of the records are among them.
constexpr const char16_t* kWords[] = {
    u"",
    u"person",
    u"group",
    u"firstname",
    u"lastname",
    u"note",
    u"birthday",
    u"person flags",
    u"ShowAsCompany",
    u"phone",
    u"email",
    u"address",
    u"dates",
    u"name",
    u"UID",
    u"Street",
    u"City",
    u"CountryCode",
    u"home",
    u"work",
    u"anniversary",
    u"Cottage",
    u"Equal",
    u"NotEqual",
    u"LessThan",
    u"GreaterThanOrEqual",
    u"ContainsSubStringCaseInsensitive",
    u"PrefixMatch",
    u"SuffixMatchCaseInsensitive",
    u"BitsInBitFieldMatch",
    u"WithinIntervalAroundTodayYearless",
    u"DoesNotContainSubString",
    u"expand",
    u"constrain",
    u"members",
    u"groups",
    u"subgroups",
    u"people",
    u"phones",
    u"Long",
    u"NUM",
    u"0",
    u"1",
    u"-1",
    u"86400",
    u"1970-03-12",
    u"25 December 2010",
    u"us",
    u"Ada",
    u"Harbour",
    u"555-1234",
    u"Customer",
    u"Rating",
    u"own",
    u"AAAAAAAA-0000-4000-8000-0000000000E1",
    u"AAAAAAAA-0000-4000-8000-000000000001:ABPerson",
    u"AAAAAAAA-0000-4000-8000-000000000002:ABPerson",
    u"AAAAAAAA-0000-4000-8000-000000000003:ABPerson",
    u"AAAAAAAA-0000-4000-8000-000000000004:ABGroup",
    u"AAAAAAAA-0000-4000-8000-000000000005:ABGroup",
};

// A calculation has no more than these; they share the time of an input.
constexpr int kMostCalls = 40;
constexpr std::size_t kMostAnswer = 4096;

// The plug-in in the host, for as long as this process lives.
class Plugin {
  public:
    Plugin() {
        host_.load(FORGETFUL_PLUGIN);
        void* const library = dlopen(FORGETFUL_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
        forget_ = reinterpret_cast<void (*)()>(dlsym(library, "forgetEverything"));
        fuzz::claim(forget_ != nullptr, "this plug-in can forget");
        for (const FunctionInfo& info : host_.functions()) {
            if (info.name != u"KORU_Reload") { // which ends the process
                functions_.push_back(session_.functions().find(foldName(info.name)));
            }
        }
        fuzz::claim(functions_.size() == 41, "all functions are registered");
    }

    void forget() { forget_(); }
    void idle() { host_.idle(IdleLevel::userIdle); }

    // Calls a function with arguments that the input chooses.
    void call(std::size_t number, fuzz::Input& input) {
        ExternalFunction& function = *functions_[number % functions_.size()];
        const int more = function.maxArguments() - function.minArguments();
        std::vector<Value> arguments(static_cast<std::size_t>(
            function.minArguments() + (more > 0 ? input.number<uint8_t>() % (more + 1) : 0)));
        for (Value& argument : arguments) {
            argument = argumentFrom(input);
        }
        try {
            const Value answer = function.call(session_, arguments);
            if (answer.type() != ValueType::text || answer.storedText().size() < kMostAnswer) {
                answer_ = answer;
            }
        } catch (const ExternalFailure&) {
            answer_ = Value();
        }
    }

  private:
    Value argumentFrom(fuzz::Input& input) {
        const auto choice = input.number<uint8_t>();
        if (choice < std::size(kWords)) {
            return Value::text(kWords[choice]);
        }
        switch (choice % 4) {
        case 0:
            return answer_;
        case 1: {
            Container container;
            container.setPictureSize(1, 1);
            const std::string_view bytes = input.bytes(input.number<uint16_t>());
            container.set(choice / 4 % 2 == 0 ? StreamType::of("PNGf") : StreamType::of("BMPf"),
                          Bytes(bytes.begin(), bytes.end()));
            return Value::container(container);
        }
        case 2: {
            std::u16string units(input.number<uint8_t>() % 32, u'\0');
            for (char16_t& unit : units) {
                unit = input.number<char16_t>();
            }
            return Value::text(units);
        }
        default:
            return Value::text(fromUtf8(input.bytes(input.number<uint8_t>())));
        }
    }

    Session session_;
    StepRegistry steps_;
    PluginHost host_{session_, steps_, [](const auto&, const auto&, const auto&) { return 0; }};
    void (*forget_)() = nullptr;
    std::vector<ExternalFunctionPtr> functions_;
    Value answer_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static fuzz::SharedBook book;
    static auto& plugin = *new Plugin; // threads of the plug-in may outlive main()
    growStack();
    plugin.forget();
    book.renew();
    fuzz::Input input(data, size);
    const bool checks = input.number<uint8_t>() % 8 == 0;
    for (int i = 0; i < kMostCalls && !input.ended(); ++i) {
        const auto what = input.number<uint8_t>();
        if (what < 192) {
            plugin.call(what, input);
        } else if (what == 0xFF) {
            plugin.idle();
        } else {
            book.change(what, input);
        }
    }
    if (checks) {
        fuzz::claim(book.isSound(), "the book is sound whatever was called");
    }
    return 0;
}
