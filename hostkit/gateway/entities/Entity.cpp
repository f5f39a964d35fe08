#include <algorithm>
#include <cstring>
#include <hostkit/gateway/entities/Entity.h>
#include <optional>
#include <string>
#include <unordered_map>

namespace hostkit::gateway {
namespace {

struct Delimiter {
    std::size_t level = 0;  // of the multipart it belongs to
    bool closes = false;
    std::size_t top = 0;     // of its line
    std::size_t behind = 0;  // where the next line begins
};

class Walk {
public:
    Walk(std::string_view text, const Bounds& bounds, Tree& tree)
        : m_text(text), m_bounds(bounds), m_tree(tree), m_at(TopOfMessage(text)) {}

    // Reads the entity at the place where the walk stands, up to the delimiter that ends it, which stays ahead.
    Entity ReadEntity(std::string_view defaultType) {
        Entity entity;
        std::size_t bodyTop = 0;
        entity.header = ReadHeader(m_text.substr(m_at), bodyTop);
        m_at += bodyTop;
        entity.content = ReadContent(entity.header, defaultType);
        const bool isMultipart = entity.content.IsMultipart() && !entity.content.boundary.empty();
        const bool isDeep = isMultipart && m_open.size() >= m_bounds.depth;
        if (isDeep) m_tree.isDeep = true;
        const std::size_t top = m_at;
        if (isMultipart && !isDeep) ReadParts(entity);
        if (entity.parts.empty()) {
            m_at = top;
            entity.body = ReadLeaf();
        }
        return entity;
    }

private:
    void ReadParts(Entity& entity) {
        const std::size_t level = m_open.size();
        const std::string_view partType = entity.content.Is("multipart/digest") ? "message/rfc822" : "text/plain";
        std::string& boundary = m_open.emplace_back(entity.content.boundary);
        boundary.erase(boundary.find_last_not_of(" \t") + 1);
        m_levels[boundary].push_back(level);
        std::optional<Delimiter> next = FindDelimiter();
        while (next && next->level == level && !next->closes) {
            m_at = next->behind;
            next = std::nullopt;
            if (m_text.find_first_not_of("\r\n", m_at) == std::string_view::npos) break;  // it was to close
            TakePart(entity, partType);
            next = FindDelimiter();
        }
        std::vector<std::size_t>& levels = m_levels[m_open.back()];
        levels.pop_back();
        if (levels.empty()) m_levels.erase(m_open.back());
        m_open.pop_back();
        const bool isClosed = next && next->level == level;
        if (isClosed)
            m_at = next->behind;
        else if (!entity.parts.empty())
            m_tree.isCut = true;
        if (isClosed || next) (void)ReadLeaf();  // the epilogue
    }

    void TakePart(Entity& entity, std::string_view partType) {
        if (m_parts >= m_bounds.parts) {
            ++m_tree.left;
            (void)ReadLeaf();
            return;
        }
        ++m_parts;
        entity.parts.push_back(ReadEntity(partType));
    }

    // The bytes up to the next delimiter, or to the end; the line end in front belongs to the delimiter.
    std::string_view ReadLeaf() {
        const std::optional<Delimiter> next = FindDelimiter();
        const std::size_t top = m_at;
        m_at = next ? next->top : m_text.size();
        std::string_view leaf = m_text.substr(top, m_at - top);
        if (next && leaf.ends_with('\n')) leaf.remove_suffix(leaf.ends_with("\r\n") ? 2 : 1);
        return leaf;
    }

    // The next line that is a delimiter of any open multipart. It is kept, so that those who share it look once.
    std::optional<Delimiter> FindDelimiter() {
        if (m_open.empty()) return std::nullopt;
        std::size_t from = m_at;
        if (m_known && m_known->top >= m_at && m_knownOpen == m_open.size()) return m_known;
        for (;;) {
            const std::size_t top = NextHyphens(from);
            if (top == std::string_view::npos) return std::nullopt;
            const std::size_t end = std::min(m_text.find('\n', top), m_text.size());
            const std::size_t behind = std::min(end + 1, m_text.size());
            if (std::optional<Delimiter> found = Match(m_text.substr(top + 2, end - top - 2))) {
                found->top = top;
                found->behind = behind;
                m_known = found;
                m_knownOpen = m_open.size();
                return found;
            }
            from = behind;
        }
    }

    // The next line top at or behind from, which is one, where two hyphens stand.
    std::size_t NextHyphens(std::size_t from) const {
        if (m_text.substr(from).starts_with("--")) return from;
        const std::size_t found = m_text.find("\n--", from);
        return found == std::string_view::npos ? found : found + 1;
    }

    std::optional<Delimiter> Match(std::string_view line) const {
        const std::size_t last = line.find_last_not_of(" \t\r");
        line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
        if (const auto found = m_levels.find(std::string(line)); found != m_levels.end())
            return Delimiter{found->second.back(), false};
        if (!line.ends_with("--")) return std::nullopt;
        line.remove_suffix(2);
        const auto found = m_levels.find(std::string(line));
        return found != m_levels.end() ? std::optional(Delimiter{found->second.back(), true}) : std::nullopt;
    }

    std::string_view m_text;
    Bounds m_bounds;
    Tree& m_tree;
    std::size_t m_at;
    std::size_t m_parts = 1;
    std::vector<std::string> m_open;                                     // boundaries, outermost first
    std::unordered_map<std::string, std::vector<std::size_t>> m_levels;  // by boundary
    std::optional<Delimiter> m_known;
    std::size_t m_knownOpen = 0;
};

}  // namespace

Tree ReadTree(std::string_view text, const Bounds& bounds) {
    Tree tree;
    tree.root = Walk(text, bounds, tree).ReadEntity("text/plain");
    return tree;
}

}  // namespace hostkit::gateway
