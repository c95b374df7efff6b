#include "tools/addressbook/sync/sync_round.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/progress.h"
#include "tools/addressbook/sync/carddav_library.h"
#include "tools/addressbook/sync/permissions.h"

#include <array>
#include <iostream>

namespace addressbook::tool {
namespace {

constexpr std::array kStages = {"asking", "fetching", "sending"}; // by CycleProgress::Stage

} // namespace

Outcome syncBook(Store& store, Server& server, const SyncCollection& book, const std::string& name,
                 bool dryRun, bool force) {
    ProgressLine progress(name);
    sync::CycleOptions options{.dryRun = dryRun, .force = force, .progress = {}};
    options.progress = [&](const sync::CycleProgress& at) {
        const auto done = static_cast<double>(at.done), total = static_cast<double>(at.total);
        progress.update(at.total == 0 ? -1 : done / total,
                        std::string(kStages[static_cast<std::size_t>(at.stage)]) + ' ' +
                            std::to_string(at.done));
    };
    Outcome outcome;
    const auto fail = [&](int status, const std::exception& error) {
        throwIfInterrupted(); // which may be why
        outcome.status = status;
        outcome.trouble = error.what();
    };
    try {
        requirePermission(server.account(), book.url);
        const auto cards = carddavLibrary().openCollection(server.client(), book.url, {});
        outcome.summary = sync::runCycle(store, book.id, *cards, options);
        outcome.status = outcome.summary.refused.empty() ? kDone : kIncomplete;
    } catch (const sync::MassDeletion& held) {
        fail(kHeldBack, held);
        outcome.isHeldBack = true;
    } catch (const carddav::Error& error) {
        fail(kNoServer, error);
        outcome.error = error.kind();
    } catch (const Failure& noPassword) {
        fail(kNoServer, noPassword);
        outcome.error = carddav::ErrorKind::unauthorised;
    }
    return outcome;
}

std::string describe(const sync::Summary& summary) {
    std::string text;
    const auto add = [&](std::size_t count, const char* what) {
        if (count != 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + what;
        }
    };
    add(summary.fetched, "fetched");
    add(summary.removedHere, "deleted here");
    add(summary.sent, "sent");
    add(summary.removedThere, "deleted on the server");
    add(summary.merged, "merged");
    add(summary.conflicts, summary.conflicts == 1 ? "conflict" : "conflicts");
    add(summary.refused.size(), "refused");
    return text.empty() ? "nothing new" : text;
}

void tellRefused(const sync::Summary& summary, const std::string& name) {
    for (const sync::Refusal& refusal : summary.refused) {
        const std::string& which = !refusal.name.empty() ? refusal.name
                                   : refusal.uid.empty() ? refusal.href
                                                         : refusal.uid;
        complain(escaped(name) + ": " + escaped(which) +
                 (refusal.by == sync::Side::remote ? " was not taken by the server: " : " cannot be read: ") +
                 escaped(refusal.reason));
    }
}

} // namespace addressbook::tool
