// Entity: a message as a tree of entities (RFC 2046). GMime reads what stands in fields; the way over the delimiters is
// walked here, since only so each entity's bytes are known as they came, and a line costs the same however many
// multiparts are open. Any thread.
#pragma once

#include <hostkit/gateway/entities/Content.h>
#include <hostkit/gateway/entities/Fields.h>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

struct Entity {
    Header header;
    Content content;
    std::string_view body;      // of a leaf, with its transfer encoding
    std::vector<Entity> parts;  // of a multipart, in their order
};

struct Bounds {
    std::size_t depth;
    std::size_t parts;
};

struct Tree {
    Entity root;
    bool isCut = false;    // a closing delimiter is missing
    bool isDeep = false;   // a multipart lies too deep, and stays one leaf
    std::size_t left = 0;  // parts beyond the limit, which are not there
};

// Views into text, which ends its lines by CRLF or LF. An attached mail is a leaf.
Tree ReadTree(std::string_view text, const Bounds& bounds);

}  // namespace hostkit::gateway
