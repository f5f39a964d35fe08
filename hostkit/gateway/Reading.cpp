#include <algorithm>
#include <hostkit/characters/Words.h>
#include <hostkit/gateway/Naming.h>
#include <hostkit/gateway/Reading.h>
#include <hostkit/gateway/text/Charsets.h>
#include <hostkit/gateway/text/Flowed.h>
#include <hostkit/gateway/text/Html.h>
#include <hostkit/gateway/text/Transfer.h>

namespace hostkit::gateway {
namespace {

constexpr const char* kEncryptedLine = Marked("(This mail is encrypted. Its text is in an attachment.)");
constexpr const char* kSealedLine = Marked("(This mail is wrapped in its signature. Its text is in an attachment.)");

bool IsHtml(const Content& content) {
    return content.Is("text/html") || content.Is("application/xhtml+xml");
}

// A leaf that people read: what a multipart that could not be taken apart holds is text too.
bool IsReadable(const Content& content) {
    return content.IsMultipart() || IsHtml(content) || content.Is("text/plain") || content.Is("text/enriched") ||
           content.Is("text/richtext") || content.Is("text/markdown");
}

bool IsLetter(const Entity& entity) {
    return IsReadable(entity.content) && !entity.content.isAttachment && entity.content.name.empty();
}

bool IsSealed(const Content& content) {
    return content.Is("application/pkcs7-mime") || content.Is("application/x-pkcs7-mime");
}

bool IsWhite(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// A text that only claims to be Base64 is given as it stands.
bool IsBase64(std::string_view text) {
    if (IsCleanBase64(text, LineEnds::Any)) return true;
    const auto others = std::count_if(text.begin(), text.end(), [](char c) {
        return !g_ascii_isalnum(c) && std::string_view("+/= \t\r\n").find(c) == std::string_view::npos;
    });
    const auto blanks = std::count(text.begin(), text.end(), ' ');
    return static_cast<std::size_t>(others + blanks) * 16 <= text.size();
}

// Programs label what they do not know as text.
bool IsText(const Entity& leaf) {
    std::string room;
    const std::string_view data = DataOf(leaf, room);
    const auto controls = std::count_if(data.begin(), data.end(), [](char c) {
        return c >= '\0' && c < ' ' && std::string_view("\t\n\r\f\x1b").find(c) == std::string_view::npos;
    });
    return static_cast<std::size_t>(controls) * 100 <= data.size();
}

class Reader {
public:
    Reading Read(const Tree& tree) {
        if (tree.isCut) Tell(Notice::Kind::Cut);
        if (tree.isDeep) Tell(Notice::Kind::TooDeep);
        if (tree.left > 0) Tell(Notice::Kind::TooMany, std::to_string(tree.left));
        const Content& whole = tree.root.content;
        if (tree.root.parts.empty() && IsReadable(whole) && whole.name.empty())
            TakeText(tree.root);
        else
            Take(tree.root);
        if (m_texts == 0) ShowNamedText();
        if (m_faults > 0) Tell(Notice::Kind::UnknownBytes, std::to_string(m_faults));
        NameFiles(m_reading.files);
        return std::move(m_reading);
    }

private:
    void Tell(Notice::Kind kind, std::string detail = "") { m_reading.notices.push_back({kind, std::move(detail)}); }

    void Take(const Entity& entity) {
        const Content& content = entity.content;
        if (entity.parts.empty()) return TakeLeaf(entity);
        if (content.Is("multipart/alternative")) return TakeAlternative(entity);
        if (content.Is("multipart/related")) return TakeOne(entity, RootOf(entity));
        if (content.Is("multipart/signed") || content.Is("multipart/report")) return TakeOne(entity, entity.parts[0]);
        if (content.Is("multipart/encrypted")) {
            AddText(hostkit::Words(kEncryptedLine) + '\n');
            Tell(Notice::Kind::Encrypted);
            for (const Entity& part : entity.parts)
                AttachAll(part);
            return;
        }
        for (const Entity& part : entity.parts)
            Take(part);
    }

    void TakeLeaf(const Entity& leaf) {
        if (IsLetter(leaf)) return TakeText(leaf);
        if (IsSealed(leaf.content)) {
            const bool isOpen = leaf.content.smimeType == "signed-data";
            AddText(hostkit::Words(isOpen ? kSealedLine : kEncryptedLine) + '\n');
            Tell(Notice::Kind::Encrypted);
        }
        Attach(leaf);
    }

    // One part is the text; the others serve it.
    void TakeOne(const Entity& entity, const Entity& chosen) {
        Take(chosen);
        for (const Entity& part : entity.parts)
            if (&part != &chosen) AttachAll(part);
    }

    static const Entity& RootOf(const Entity& related) {
        const std::string& start = related.content.start;
        const auto named = std::find_if(related.parts.begin(), related.parts.end(),
                                        [&](const Entity& part) { return part.content.id == start; });
        return start.empty() || named == related.parts.end() ? related.parts[0] : *named;
    }

    void TakeAlternative(const Entity& entity) {
        const Entity* chosen = nullptr;
        for (const Entity& part : entity.parts)
            if (chosen == nullptr && HoldsText(part, true)) chosen = &part;
        for (auto part = entity.parts.rbegin(); chosen == nullptr && part != entity.parts.rend(); ++part)
            if (HoldsText(*part, false)) chosen = &*part;
        if (chosen == nullptr) chosen = &entity.parts[0];
        Take(*chosen);
        for (const Entity& part : entity.parts)
            if (&part != chosen) PassOver(part, true);
    }

    // Whether the text of an entity is there and not blank; plain alone, or of any kind.
    static bool HoldsText(const Entity& entity, bool plain) {
        if (!entity.parts.empty())
            return std::any_of(entity.parts.begin(), entity.parts.end(),
                               [&](const Entity& part) { return HoldsText(part, plain); });
        return IsLetter(entity) && (!plain || !IsHtml(entity.content)) && !IsWhite(entity.body);
    }

    // Another form of a text that was given already. What serves it, its pictures for instance, is still there for who
    // wants it.
    void PassOver(const Entity& entity, bool isForm) {
        if (entity.parts.empty() && (isForm || IsLetter(entity))) {
            m_reading.alternatives.push_back(entity.content.type);
            return;
        }
        if (entity.parts.empty()) return Attach(entity);
        for (const Entity& part : entity.parts)
            PassOver(part, false);
    }

    void AttachAll(const Entity& entity) {
        if (entity.parts.empty()) return Attach(entity);
        for (const Entity& part : entity.parts)
            AttachAll(part);
    }

    void Attach(const Entity& entity) {
        TellEncoding(entity);
        m_reading.files.push_back({&entity, entity.content.name, false});
    }

    // A letter that bears a name, and is all there is to read: it is shown, and stays a file of that name.
    void ShowNamedText() {
        const auto found = std::find_if(m_reading.files.begin(), m_reading.files.end(), [](const Attached& file) {
            const Content& content = file.entity->content;
            return IsReadable(content) && !content.isAttachment && IsText(*file.entity);
        });
        if (found == m_reading.files.end()) return;
        const Entity& entity = *found->entity;
        AddText(ReadText(entity));
    }

    void TakeText(const Entity& entity) {
        TellEncoding(entity);
        AddText(ReadText(entity));
        if (IsHtml(entity.content)) m_reading.files.push_back({&entity, hostkit::Words("text.html"), true});
    }

    std::string ReadText(const Entity& entity) {
        const Content& content = entity.content;
        std::string room;
        const std::string_view data = DataOf(entity, room);
        if (IsHtml(content)) {
            const std::string charset = content.charset.empty() ? CharsetInHtml(data) : content.charset;
            return HtmlToText(TextToUtf8(data, charset, m_faults));
        }
        std::string text = TextToUtf8(data, content.charset, m_faults);
        if (content.isFlowed) text = Unflow(text, content.isDelSp);
        return text;
    }

    void AddText(std::string text) {
        ++m_texts;
        constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
        if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
        std::string& all = m_reading.text;
        if (!all.empty() && !all.ends_with('\n')) all += '\n';
        if (all.empty())
            all = std::move(text);
        else
            all += text;
    }

    void TellEncoding(const Entity& entity) {
        const std::string& unknown = entity.content.unknownEncoding;
        if (!unknown.empty()) Tell(Notice::Kind::UnknownEncoding, unknown);
    }

    Reading m_reading;
    int m_texts = 0;
    std::size_t m_faults = 0;
};

}  // namespace

Reading Read(const Tree& tree) {
    return Reader().Read(tree);
}

std::string_view DataOf(const Entity& leaf, std::string& room) {
    const GMimeContentEncoding encoding = leaf.content.encoding;
    if (!IsEncoding(encoding) || (encoding == GMIME_CONTENT_ENCODING_BASE64 && !IsBase64(leaf.body))) return leaf.body;
    room = DecodeTransfer(leaf.body, encoding);
    return room;
}

}  // namespace hostkit::gateway
