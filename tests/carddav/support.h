#pragma once

// What the tests of this folder share.

#include "frameworks/AddressBook/carddav/collection.h"
#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/carddav/http.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace carddav_test {

// What a call throws; fails the test when it throws nothing.
inline addressbook::carddav::Error errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const addressbook::carddav::Error& error) {
        return error;
    }
    ADD_FAILURE() << "there is no error";
    return {addressbook::carddav::ErrorKind::stopped, "there is no error"};
}

// Gives the elements of a vector, one after the other, then nothing.
template <class Element>
std::function<std::optional<Element>()> each(std::vector<Element> elements) {
    return [elements = std::move(elements), at = std::size_t{0}]() mutable -> std::optional<Element> {
        return at < elements.size() ? std::optional(elements[at++]) : std::nullopt;
    };
}

// Somebody with a password.
inline addressbook::carddav::Credentials ida(const std::string& password = "s3cret") {
    addressbook::carddav::Credentials credentials;
    credentials.user = "ida";
    credentials.password = [password] { return addressbook::carddav::Secret(std::string(password)); };
    return credentials;
}

// "Basic" of ida with s3cret.
inline constexpr const char* kBasic = "Basic aWRhOnMzY3JldA==";

} // namespace carddav_test
