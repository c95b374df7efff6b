#pragma once

// The names that are asked for and answered: of DAV (RFC 4918, 3744, 5397, 6578), of CardDAV (RFC 6352), and the
// collection's tag, which is older than sync tokens.

#include <string_view>

namespace addressbook::carddav::names {

// Elements of answers.
inline constexpr std::string_view kMultistatus = "{DAV:}multistatus";
inline constexpr std::string_view kResponse = "{DAV:}response";
inline constexpr std::string_view kPropstat = "{DAV:}propstat";
inline constexpr std::string_view kProp = "{DAV:}prop";
inline constexpr std::string_view kHref = "{DAV:}href";
inline constexpr std::string_view kStatus = "{DAV:}status";
inline constexpr std::string_view kError = "{DAV:}error";

// Properties, and what stands in them.
inline constexpr std::string_view kResourceType = "{DAV:}resourcetype";
inline constexpr std::string_view kIsCollection = "{DAV:}collection";
inline constexpr std::string_view kIsAddressBook = "{urn:ietf:params:xml:ns:carddav}addressbook";
inline constexpr std::string_view kDisplayName = "{DAV:}displayname";
inline constexpr std::string_view kEtag = "{DAV:}getetag";
inline constexpr std::string_view kSyncToken = "{DAV:}sync-token";
inline constexpr std::string_view kCtag = "{http://calendarserver.org/ns/}getctag";
inline constexpr std::string_view kPrincipal = "{DAV:}current-user-principal";
inline constexpr std::string_view kHomeSet = "{urn:ietf:params:xml:ns:carddav}addressbook-home-set";
inline constexpr std::string_view kPrivileges = "{DAV:}current-user-privilege-set";
inline constexpr std::string_view kReports = "{DAV:}supported-report-set";
inline constexpr std::string_view kSyncReport = "{DAV:}sync-collection";
inline constexpr std::string_view kVersions = "{urn:ietf:params:xml:ns:carddav}supported-address-data";
inline constexpr std::string_view kVersion = "{urn:ietf:params:xml:ns:carddav}address-data-type";
inline constexpr std::string_view kMaxSize = "{urn:ietf:params:xml:ns:carddav}max-resource-size";
inline constexpr std::string_view kCard = "{urn:ietf:params:xml:ns:carddav}address-data";

// Conditions of errors.
inline constexpr std::string_view kValidToken = "{DAV:}valid-sync-token";
inline constexpr std::string_view kSupportedReport = "{DAV:}supported-report";
inline constexpr std::string_view kNoUidConflict = "{urn:ietf:params:xml:ns:carddav}no-uid-conflict";
inline constexpr std::string_view kTooLarge = "{urn:ietf:params:xml:ns:carddav}max-resource-size";
inline constexpr std::string_view kValidCard = "{urn:ietf:params:xml:ns:carddav}valid-address-data";
inline constexpr std::string_view kSupportedCard = "{urn:ietf:params:xml:ns:carddav}supported-address-data";
inline constexpr std::string_view kQuota = "{DAV:}quota-not-exceeded";

} // namespace addressbook::carddav::names
