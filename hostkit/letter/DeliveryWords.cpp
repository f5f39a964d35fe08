#include <algorithm>
#include <cerrno>
#include <cstring>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/DeliveryWords.h>
#include <netdb.h>
#include <string_view>

namespace hostkit {

namespace {

// Each line of a reply begins with its code (RFC 5321 4.2.1); none of the library's own texts does so.
bool IsReplyLine(std::string_view line) {
    return line.size() >= 3 && std::all_of(line.begin(), line.begin() + 3, [](char c) { return c >= '0' && c <= '9'; });
}

std::string LineOf(std::string_view line) {
    line = line.substr(0, line.find_last_not_of("\r ") + 1);
    return Shown(IsReplyLine(line) ? std::string(line) : FromCodePage(line));
}

std::string LinesOf(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string line = LineOf(text.substr(0, end));
        if (!line.empty()) lines += (lines.empty() ? "" : " ") + line;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

struct Server {
    std::string name;
    std::string place;  // with the port
};

Server ServerOf(const CMailDoc& doc) {
    CString host;
    std::int32_t port = 0;
    doc.GetSendServer(host, port);
    const std::string name = Shown(FromCodePage(host.View()));
    const bool isIpv6 = name.find(':') != std::string::npos;
    return {name, (isIpv6 ? "[" + name + "]" : name) + ":" + std::to_string(port)};
}

std::string ResolverWords(int number, const std::string& name) {
    switch (number) {
        case EAI_NONAME:
        case EAI_NODATA:
            return Words("no machine is named {1}", name);
        case EAI_AGAIN:
            return Words("the name {1} cannot be looked up now; try again later", name);
        default:
            return Words("the name {1} cannot be looked up: {2}", name, FromLocale(gai_strerror(number)));
    }
}

std::string ConnectionWords(int number, const Server& server) {
    switch (number) {
        case ECONNREFUSED:
            return Words("nobody listens at {1}", server.place);
        case ETIMEDOUT:
            return Words("{1} does not answer", server.place);
        case ENETUNREACH:
        case EHOSTUNREACH:
            return Words("no way leads to {1} from here", server.place);
        case ECONNRESET:
        case EPIPE:
            return Words("{1} broke the connection off", server.place);
        default:
            return number < 0 ? ResolverWords(number, server.name) : server.place + ": " + SystemWords(number);
    }
}

}  // namespace

std::string ReasonOf(const CMailSendRecv::Result& result, const CMailDoc& doc) {
    const std::string lines = LinesOf(result.text.View());
    return lines.empty() || result.systemError == 0 ? lines
                                                    : lines + ": " + ConnectionWords(result.systemError, ServerOf(doc));
}

FailureKind KindOf(const CMailSendRecv::Result& result) {
    if (result.replyCode == 530 || result.replyCode == 534 || result.replyCode == 538) return FailureKind::Login;
    if (result.systemError == EAI_NONAME || result.systemError == EAI_NODATA) return FailureKind::NoHost;
    const bool mayWork = result.systemError != 0 || (result.replyCode >= 400 && result.replyCode < 500);
    return mayWork ? FailureKind::Later : FailureKind::Delivery;
}

}  // namespace hostkit
