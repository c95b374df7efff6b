#include "tools/addressbook/sync/keyring.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/places.h"

#include <dlfcn.h>
#include <libsecret/secret.h>

#include <cstring>
#include <string>

namespace addressbook::tool {
namespace {

// Items of any schema are found: secret-tool writes one of its own.
const SecretSchema kSchema = {"org.velocard.AddressBook",
                              SECRET_SCHEMA_DONT_MATCH_NAME,
                              {{"server", SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {"user", SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                              0,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr};

// The functions of the library, which stays loaded.
class Library {
  public:
    static const Library& get() {
        static const Library library;
        return library;
    }

    decltype(&secret_password_lookup_sync) lookup = nullptr;
    decltype(&secret_password_store_sync) store = nullptr;
    decltype(&secret_password_clear_sync) clear = nullptr;
    decltype(&secret_password_free) free = nullptr;
    decltype(&g_error_free) freeError = nullptr;

  private:
    Library() : handle_(dlopen("libsecret-1.so.0", RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw Failure("the desktop's keyring needs the library libsecret: install libsecret-1-0, or use "
                          "--password-command or --password-file");
        }
        take(lookup, "secret_password_lookup_sync");
        take(store, "secret_password_store_sync");
        take(clear, "secret_password_clear_sync");
        take(free, "secret_password_free");
        take(freeError, "g_error_free");
    }

    template <typename Function>
    void take(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(handle_, name));
        if (function == nullptr) {
            throw Failure(std::string("the library libsecret has no function ") + name);
        }
    }

    void* handle_;
};

// Throws what the library reports, if it does.
void check(GError* error) {
    if (error != nullptr) {
        const std::string reason = error->message;
        Library::get().freeError(error);
        throw Failure("the desktop's keyring does not answer: " + reason);
    }
}

} // namespace

std::optional<carddav::Secret> findInKeyring(const SyncAccount& account) {
    const Library& library = Library::get();
    GError* error = nullptr;
    const UnnotedSignals unnoted; // who is asked to unlock the keyring may take long, or not be there
    gchar* password = library.lookup(&kSchema, nullptr, &error, "server", hostOf(account).c_str(), "user",
                                     account.user.c_str(), nullptr);
    check(error);
    if (password == nullptr) {
        return std::nullopt;
    }
    // What a shell put there may end with a line end.
    carddav::Secret secret{std::string(password, std::strcspn(password, "\r\n"))};
    library.free(password); // which overwrites it
    return secret;
}

void putIntoKeyring(const SyncAccount& account, const carddav::Secret& password) {
    GError* error = nullptr;
    const UnnotedSignals unnoted;
    const std::string label = "Address book of " + account.user + " on " + hostOf(account);
    Library::get().store(&kSchema, SECRET_COLLECTION_DEFAULT, label.c_str(), password.text(), nullptr, &error,
                         "server", hostOf(account).c_str(), "user", account.user.c_str(), nullptr);
    check(error);
}

void removeFromKeyring(const SyncAccount& account) {
    GError* error = nullptr;
    const UnnotedSignals unnoted;
    Library::get().clear(&kSchema, nullptr, &error, "server", hostOf(account).c_str(), "user",
                         account.user.c_str(), nullptr);
    check(error);
}

} // namespace addressbook::tool
