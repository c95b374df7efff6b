#include "frameworks/AddressBook/values/query.h"

#include <utility>

namespace addressbook {
namespace {

// A query that several share, and the next one to delete when the last of them is gone.
struct SharedQuery {
    Query query;
    SharedQuery* next = nullptr;
};

// Deletes a query, and then, one after the other, those that it was the last to hold.
void release(SharedQuery* last) {
    static thread_local bool releasing = false;
    static thread_local SharedQuery* waiting = nullptr;
    last->next = std::exchange(waiting, last);
    if (releasing) {
        return;
    }
    releasing = true;
    while (waiting != nullptr) {
        delete std::exchange(waiting, waiting->next);
    }
    releasing = false;
}

} // namespace

const Query& Query::resolved() const {
    const Query* query = this;
    while (const auto* other = std::get_if<Shared>(&query->node)) {
        query = other->get();
    }
    return *query;
}

Query shared(Query query) {
    const std::shared_ptr<SharedQuery> held(new SharedQuery{std::move(query)}, release);
    return {Query::Shared(held, &held->query)};
}

bool anyCondition(const Query& query, const std::function<bool(const Condition&)>& holds) {
    std::vector<const Query*> open{&query};
    while (!open.empty()) {
        const Query& one = open.back()->resolved();
        open.pop_back();
        if (const auto* condition = std::get_if<Condition>(&one.node)) {
            if (holds(*condition)) {
                return true;
            }
            continue;
        }
        for (const Query& child : std::get<Query::Compound>(one.node).children) {
            open.push_back(&child);
        }
    }
    return false;
}

} // namespace addressbook
