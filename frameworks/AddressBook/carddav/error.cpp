#include "frameworks/AddressBook/carddav/error.h"

namespace addressbook::carddav {

bool concernsServer(ErrorKind kind) {
    switch (kind) {
    case ErrorKind::unauthorised:
    case ErrorKind::busy:
    case ErrorKind::network:
    case ErrorKind::tls:
    case ErrorKind::untrustedHost:
    case ErrorKind::refused:
    case ErrorKind::stopped:
        return true;
    default:
        return false;
    }
}

} // namespace addressbook::carddav
