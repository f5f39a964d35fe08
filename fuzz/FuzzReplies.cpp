// What a server sends, in one piece and byte by byte: the replies are the same, and never longer than they may be.
#include <fuzz/ScratchFolder.h>
#include <string>
#include <tests/models/Require.h>

#include <mailengine/transport/ReplyReader.h>

namespace {

std::string RepliesOf(std::string_view bytes, std::size_t step) {
    CReplyReader reader;
    std::string replies;
    CReplyReader::State state = CReplyReader::kIncomplete;
    for (std::size_t at = 0; at < bytes.size() && state == CReplyReader::kIncomplete; at += step) {
        reader.Take(bytes.substr(at, step));
        ServerReply reply;
        while ((state = reader.Next(reply)) == CReplyReader::kWhole) {
            Require(reply.code >= 200 && reply.code <= 599, "a code that is none");
            Require(reply.text.size() <= CReplyReader::kMaxReplyBytes + 2, "a reply too long");
            replies += reply.text;
        }
    }
    return replies + std::to_string(state);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = ViewOf(data, size);
    Require(RepliesOf(bytes, bytes.size() + 1) == RepliesOf(bytes, 1), "the network's cuts made another reply");
    return 0;
}
