// Reading: what of a message is its text and what are its attachments, by the rules of RFC 2046, 2387 and their kin.
#pragma once

#include <hostkit/gateway/Gateway.h>
#include <hostkit/gateway/entities/Entity.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

struct Attached {
    const Entity* entity;
    std::string name;  // as the message has it, or made here
    bool isMade = false;
};

struct Reading {
    std::string text;  // UTF-8, LF
    std::vector<Attached> files;
    std::vector<std::string> alternatives;
    std::vector<Notice> notices;
};

// The reading points into the tree.
Reading Read(const Tree& tree);

// The bytes of a leaf, in room where they are encoded.
std::string_view DataOf(const Entity& leaf, std::string& room);

}  // namespace hostkit::gateway
