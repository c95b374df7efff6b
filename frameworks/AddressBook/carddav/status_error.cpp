#include "frameworks/AddressBook/carddav/status_error.h"

#include "frameworks/AddressBook/carddav/multistatus.h"
#include "frameworks/AddressBook/carddav/names.h"
#include "frameworks/AddressBook/carddav/url.h"

#include <algorithm>
#include <array>

namespace addressbook::carddav {
namespace {

// What a status means. The first row that has the condition (an empty one fits all), and the status (0 fits all), counts.
struct Row {
    std::string_view condition;
    int status;
    ErrorKind kind;
    std::string_view text;
};
constexpr std::array kRows = {
    Row{names::kNoUidConflict, 0, ErrorKind::uidConflict, "has a card with this UID already"},
    Row{names::kTooLarge, 0, ErrorKind::tooLarge, "takes no card as large as this"},
    Row{names::kValidCard, 0, ErrorKind::rejected, "does not take this for a card"},
    Row{names::kSupportedCard, 0, ErrorKind::rejected, "does not take cards of this version"},
    Row{names::kQuota, 0, ErrorKind::full, "has no room left for this account"},
    Row{"", 401, ErrorKind::unauthorised, "does not accept this user name and password"},
    Row{"", 403, ErrorKind::forbidden, "does not allow this account to do so"},
    Row{"", 404, ErrorKind::notFound, "has nothing at this address"},
    Row{"", 409, ErrorKind::conflict, "cannot do this with what it holds"},
    Row{"", 410, ErrorKind::notFound, "has nothing at this address any more"},
    Row{"", 412, ErrorKind::preconditionFailed, "holds something else there by now"},
    Row{"", 413, ErrorKind::tooLarge, "takes nothing as large as this"},
    Row{"", 423, ErrorKind::locked, "has this locked"},
    Row{"", 429, ErrorKind::busy, "gets more requests than it takes"},
    Row{"", 503, ErrorKind::busy, "is not available at the moment"},
    Row{"", 507, ErrorKind::full, "has no room left"},
};

const Row& rowFor(std::string_view condition, int status) {
    static constexpr Row kClient{"", 0, ErrorKind::rejected, "does not take this request"};
    static constexpr Row kServer{"", 0, ErrorKind::serverError, "has a fault of its own"};
    const auto* row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& candidate) {
        return (candidate.condition.empty() || candidate.condition == condition) &&
               (candidate.status == 0 || candidate.status == status);
    });
    return row != kRows.end() ? *row : status < 500 ? kClient : kServer;
}

} // namespace

Error errorOfStatus(int status, std::string_view body, const std::string& method, const std::string& url) {
    Condition condition = readCondition(body);
    const Row& row = rowFor(condition.name, status);
    const std::optional<Url> at = parseUrl(url);
    std::string sentence = at ? at->host : url;
    sentence += ' ';
    sentence += row.text;
    sentence += " (" + method + ' ' + (at ? at->path : url) + ": " + std::to_string(status);
    if (!condition.name.empty()) {
        sentence += ", " + condition.name.substr(condition.name.find('}') + 1);
    }
    return {row.kind, sentence + ')', status, condition.name, condition.href};
}

} // namespace addressbook::carddav
