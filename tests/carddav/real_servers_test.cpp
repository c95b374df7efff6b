// The whole way with servers that others wrote.

#include "frameworks/AddressBook/carddav/discovery.h"
#include "frameworks/AddressBook/carddav/etag.h"
#include "frameworks/AddressBook/carddav/server_collection.h"

#include "tests/carddav/debian_servers.h"
#include "tests/carddav/support.h"

#include <algorithm>
#include <map>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

std::string card(const std::string& uid, const std::string& name) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nFN:" + name + "\r\nN:" + name +
           ";;;;\r\nX-KEPT;X-P=\"a,b\":J\xC3\xB8rgen <&> \"x\"\r\nEND:VCARD\r\n";
}

class NoDns : public Dns {
  public:
    [[nodiscard]] std::vector<Service> services(const std::string&) const override { return {}; }
    [[nodiscard]] std::vector<std::string> texts(const std::string&) const override { return {}; }
};

class RealServerTest : public testing::TestWithParam<DebianServer> {
  protected:
    RealServerTest() : server_(GetParam().arguments), client_({}, ida()) {
        account_ = discover(client_, server_.url(), NoDns());
        book_ = createBook(client_, account_.homes.at(0), "Friends & <others>");
        collection_ = openCollection(client_, book_.url);
    }

    Written write(const Write& write) {
        Written result;
        collection_->write(each(std::vector{write}),
                           [&](const Write&, Written&& written) { result = std::move(written); });
        return result;
    }

    std::map<std::string, Fetched> fetch(const std::vector<std::string>& hrefs) {
        std::map<std::string, Fetched> cards;
        collection_->fetch(each(hrefs), [&](Fetched&& fetched) {
            const std::string href = fetched.href;
            cards[href] = std::move(fetched);
        });
        return cards;
    }

    // All that changed since [state], which is brought forward; without what was told before.
    std::map<std::string, Change> changes(std::string& state) {
        std::map<std::string, Change> all;
        for (;;) {
            const Changes told = collection_->changes(state, [&](Change&& change) {
                const auto known = etags_.find(change.href);
                if (known == etags_.end() ? change.removed : sameEtag(known->second, change.etag)) {
                    return;
                }
                all[change.href] = change;
            });
            EXPECT_NE(told.progress, Progress::beginAnew);
            state = told.state;
            if (told.progress != Progress::more) {
                for (const auto& [href, change] : all) {
                    if (change.removed) {
                        etags_.erase(href);
                    } else {
                        etags_[href] = change.etag;
                    }
                }
                return all;
            }
        }
    }

    ChildServer server_;
    Client client_;
    Account account_;
    Book book_;
    std::unique_ptr<Collection> collection_;
    std::map<std::string, std::string> etags_; // that changes() told
};

TEST_P(RealServerTest, NewBookIsFound) {
    EXPECT_EQ(book_.name, "Friends & <others>");
    EXPECT_FALSE(book_.readOnly);
    EXPECT_TRUE(book_.hasSyncReport);
    const auto has = [&](const Account& account) {
        return std::any_of(account.books.begin(), account.books.end(),
                           [&](const Book& book) { return book.url == book_.url; });
    };
    EXPECT_TRUE(has(discover(client_, server_.url(), NoDns())));
    EXPECT_TRUE(has(discover(client_, account_.principal, NoDns())));
    const Account given = discover(client_, book_.url, NoDns());
    EXPECT_TRUE(given.isGivenBook);
    EXPECT_EQ(given.books.at(0).url, book_.url);
}

TEST_P(RealServerTest, CardsComeAndGo) {
    std::string state;
    EXPECT_TRUE(changes(state).empty());
    const std::string href = collection_->hrefFor("ID-1");
    const Written created = write({Write::Kind::create, href, "", card("ID-1", "Ida")});
    ASSERT_FALSE(created.error) << created.error->what();
    auto changed = changes(state);
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_EQ(changed.begin()->first, href);
    auto fetched = fetch({href});
    ASSERT_FALSE(fetched[href].error);
    EXPECT_THAT(fetched[href].card, testing::HasSubstr("FN:Ida\r\n"));
    EXPECT_THAT(fetched[href].card, testing::HasSubstr("J\xC3\xB8rgen <&> \"x\"\r\n"));
    EXPECT_TRUE(sameEtag(fetched[href].etag, changed[href].etag));
    EXPECT_TRUE(changes(state).empty()) << "nothing new";

    const Written again = write({Write::Kind::create, href, "", card("ID-1", "Else")});
    ASSERT_TRUE(again.error);
    EXPECT_EQ(again.error->kind(), ErrorKind::preconditionFailed);
    const Written twice = write({Write::Kind::change, href, "\"another\"", card("ID-1", "Else")});
    ASSERT_TRUE(twice.error);
    EXPECT_EQ(twice.error->kind(), ErrorKind::preconditionFailed);

    const Written second = write({Write::Kind::change, href, fetched[href].etag, card("ID-1", "Eva")});
    ASSERT_FALSE(second.error) << second.error->what();
    changed = changes(state);
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_FALSE(sameEtag(changed[href].etag, fetched[href].etag));
    EXPECT_THAT(fetch({href})[href].card, testing::HasSubstr("FN:Eva\r\n"));

    const Written stale = write({Write::Kind::remove, href, fetched[href].etag, ""});
    ASSERT_TRUE(stale.error);
    EXPECT_EQ(stale.error->kind(), ErrorKind::preconditionFailed);
    EXPECT_FALSE(write({Write::Kind::remove, href, changed[href].etag, ""}).error);
    EXPECT_FALSE(write({Write::Kind::remove, href, changed[href].etag, ""}).error) << "gone already";
    changed = changes(state);
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_TRUE(changed[href].removed);
    fetched = fetch({href});
    ASSERT_TRUE(fetched[href].error);
    EXPECT_EQ(fetched[href].error->kind(), ErrorKind::notFound);
}

TEST_P(RealServerTest, ManyCards) {
    std::vector<Write> writes;
    for (int at = 0; at < 60; ++at) {
        const std::string uid = "ID-" + std::to_string(at);
        writes.push_back(
            {Write::Kind::create, collection_->hrefFor(uid), "", card(uid, "Name " + std::to_string(at))});
    }
    int refused = 0;
    collection_->write(each(writes),
                       [&](const Write&, Written&& written) { refused += written.error ? 1 : 0; });
    EXPECT_EQ(refused, 0);
    std::string state;
    const auto all = changes(state);
    EXPECT_EQ(all.size(), 60U);
    std::vector<std::string> hrefs;
    for (const auto& [href, change] : all) {
        hrefs.push_back(href);
    }
    hrefs.push_back(collection_->hrefFor("never-made"));
    const auto cards = fetch(hrefs);
    EXPECT_EQ(cards.size(), 61U);
    int missing = 0;
    for (const auto& [href, fetched] : cards) {
        missing += fetched.error ? 1 : 0;
        EXPECT_EQ(fetched.error.has_value(), fetched.card.find("Name ") == std::string::npos);
    }
    EXPECT_EQ(missing, 1);
}

TEST_P(RealServerTest, TokenThatItDoesNotKnowBeginsAnew) {
    const Changes told = collection_->changes("sync-token http://radicale.org/ns/sync/no-such-token",
                                              [](Change&&) { ADD_FAILURE(); });
    EXPECT_EQ(told.progress, Progress::beginAnew);
}

TEST_P(RealServerTest, UidThatIsTakenIsRefusedOrStored) {
    ASSERT_FALSE(write({Write::Kind::create, collection_->hrefFor("ID-1"), "", card("ID-1", "Ida")}).error);
    const Written other =
        write({Write::Kind::create, collection_->hrefFor("OTHER"), "", card("ID-1", "Ida")});
    if (other.error) {
        EXPECT_EQ(other.error->kind(), ErrorKind::uidConflict) << other.error->what();
    }
}

INSTANTIATE_TEST_SUITE_P(Debian, RealServerTest, testing::Values(kRadicale, kXandikos),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace carddav_test
