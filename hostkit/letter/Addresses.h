// Addresses: an address as a user types it, and what of an address a mail can carry. Stateless; any thread.
#pragma once

#include <hostkit/characters/CodePage.h>
#include <string>
#include <vector>

#include <mailengine/model/Address.h>
#include <mailengine/model/MailDoc.h>

namespace hostkit {

// The address in text: 'name <user@host>', user@host or mailto:user@host, in UTF-8, blanks at the ends of name and
// address left out. Throws Failure for a text that holds no address, more than one, a malformed domain, or what a
// header field cannot carry.
HOSTKIT_API CAddress AddressOf(const std::string& text, Missing missing, Field field);

// The mail address alone of such a text. Throws Failure.
HOSTKIT_API std::string MailAddressIn(const std::string& text, Field field);

// The mail address in the form by which two are one mailbox, as the engine compares them: the domain in small letters
// (RFC 5321 2.4). Local parts that differ in their case are two: a mail that comes twice does less harm than one that
// never comes.
std::string ComparedAddress(std::string mailAddress);

// Takes the double quotes off that FromText leaves around a Japanese name: readers would see them.
void DropQuotes(CAddress& address);

// The addresses of one of a document's lists.
using AddressAt = const CAddress* (CMailDoc::*)(unsigned int) const;
std::vector<CAddress> AddressesOf(const CMailDoc& doc, unsigned int size, AddressAt addressAt);

}  // namespace hostkit
