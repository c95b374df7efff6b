#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace sharing_test {

using addressbook::Outcome;

std::string Machine::passwordFile() const {
    std::string path = file("password", "s3cret\n");
    std::filesystem::permissions(path,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    return path;
}

void Machine::addAccount(const std::string& url, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"account",         "add",          url,        "--user", "ida",
                                          "--password-file", passwordFile(), "--default"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome added = run(arguments);
    ASSERT_EQ(added.status, 0) << added.out << added.err;
}

void Machine::join(const std::string& url, const std::string& book, const std::vector<std::string>& options) {
    std::vector<std::string> all = {"--book", book};
    all.insert(all.end(), options.begin(), options.end());
    addAccount(url, all);
}

void Machine::found(const std::string& url, const std::string& book) {
    addAccount(url, {"--create", book});
}

Outcome Machine::sync(std::initializer_list<std::string> options) const {
    std::vector<std::string> arguments = {"sync"};
    arguments.insert(arguments.end(), options);
    return run(arguments);
}

void Machine::syncWell() const {
    const Outcome outcome = sync();
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
}

void Machine::add(const std::string& cards) const {
    const Outcome outcome = run({"import", "--quiet", "-"}, cards);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

void Machine::set(const std::string& uid, const std::string& assignment) const {
    const Outcome outcome = run({"set", uid, assignment});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

void Machine::remove(const std::string& uid) const {
    const Outcome outcome = run({"delete", uid});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

std::string Machine::show(const std::string& uid) const {
    return run({"show", uid}).out;
}

std::map<std::string, std::set<std::string>> Machine::everybody() const {
    std::map<std::string, std::set<std::string>> all;
    std::istringstream lines(run({"export"}).out);
    std::string uid;
    std::set<std::string> card;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("UID:")) {
            uid = line.substr(4, line.size() - 5);
        }
        if (line.starts_with("END:VCARD")) {
            all[uid] = std::move(card);
            card.clear();
        } else if (!line.starts_with("REV:") && !line.starts_with("PRODID:") &&
                   !line.starts_with("X-ABUID:")) {
            card.insert(line + '\n');
        }
    }
    return all;
}

std::string person(const std::string& uid, const std::string& first, const std::string& last,
                   const std::string& lines) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nN:" + last + ';' + first + ";;;\r\nFN:" + first +
           ' ' + last + "\r\n" + lines + "END:VCARD\r\n";
}

std::string group(const std::string& uid, const std::string& name, const std::vector<std::string>& members) {
    std::string lines = "X-ADDRESSBOOKSERVER-KIND:group\r\n";
    for (const std::string& member : members) {
        lines += "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + member + "\r\n";
    }
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nN:" + name + ";;;;\r\nFN:" + name + "\r\n" +
           lines + "END:VCARD\r\n";
}

} // namespace sharing_test
