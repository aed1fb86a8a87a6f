#include <hbrcdatamodel/objectquery.h>

#include <cctype>

namespace hbrc::host {

namespace {

struct FlagName
{
    const char* name;
    unsigned flag;
};

const FlagName kFlags[] = {
    {"IS_PERSISTABLE", kFlagPersistable},
    {"IS_METADATA", kFlagMetadata},
    {"IS_DIRTY", kFlagDirty},
    {"IS_VALUE_ASSET", kFlagValueAsset},
};

struct ParseError
{
    std::size_t position;
    std::string reason;
};

// Recursive descent over the query text; every error carries the offset where it was found.
class QueryParser
{
public:
    explicit QueryParser(const std::string& text) : m_text(text) {}

    std::vector<ObjectQuery::Node> Run()
    {
        for (const char* keyword : {"select", "object", "where"})
            ExpectKeyword(keyword);
        ParseExpression();
        SkipBlanks();
        if (m_pos != m_text.size())
            throw ParseError{m_pos, "unexpected text after the expression"};
        return std::move(m_nodes);
    }

private:
    void SkipBlanks()
    {
        while (m_pos < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_pos])))
            ++m_pos;
    }

    // The next word (letters, digits, '_'), or "" when none starts here.
    std::string PeekWord()
    {
        SkipBlanks();
        std::size_t end = m_pos;
        while (end < m_text.size() && (std::isalnum(static_cast<unsigned char>(m_text[end])) || m_text[end] == '_'))
            ++end;
        return m_text.substr(m_pos, end - m_pos);
    }

    void ExpectKeyword(const char* keyword)
    {
        const std::string word = PeekWord();
        if (word != keyword)
            throw ParseError{m_pos, std::string("expected \"") + keyword + "\""};
        m_pos += word.size();
    }

    void Expect(char symbol)
    {
        SkipBlanks();
        if (m_pos >= m_text.size() || m_text[m_pos] != symbol)
            throw ParseError{m_pos, std::string("expected '") + symbol + "'"};
        ++m_pos;
    }

    int Add(ObjectQuery::Node node)
    {
        m_nodes.push_back(node);
        return int(m_nodes.size()) - 1;
    }

    int ParseExpression()
    {
        const std::size_t start = (SkipBlanks(), m_pos);
        if (m_depth == kMaxDepth)
            throw ParseError{start, "the expression is nested too deeply"};
        ++m_depth;
        const int node = ParseTerm(start);
        --m_depth;
        return node;
    }

    int ParseTerm(std::size_t start)
    {
        const std::string word = PeekWord();
        if (word.empty())
            throw ParseError{start, "expected a flag or AND, OR, NOT"};
        m_pos += word.size();
        if (word == "AND" || word == "OR") {
            Expect('(');
            const int left = ParseExpression();
            Expect(',');
            const int right = ParseExpression();
            Expect(')');
            return Add({word == "AND" ? ObjectQuery::Node::And : ObjectQuery::Node::Or, 0, left, right});
        }
        if (word == "NOT") {
            Expect('(');
            const int operand = ParseExpression();
            Expect(')');
            return Add({ObjectQuery::Node::Not, 0, operand, -1});
        }
        for (const FlagName& flag : kFlags) {
            if (word == flag.name)
                return Add({ObjectQuery::Node::Flag, flag.flag, -1, -1});
        }
        throw ParseError{start, "unknown flag \"" + word + "\""};
    }

    static constexpr int kMaxDepth = 200;
    const std::string& m_text;
    std::size_t m_pos = 0;
    int m_depth = 0;
    std::vector<ObjectQuery::Node> m_nodes;
};

}  // namespace

std::unique_ptr<ObjectQuery> ObjectQuery::Parse(const std::string& text, std::string& errorText)
{
    try {
        return std::unique_ptr<ObjectQuery>(new ObjectQuery(QueryParser(text).Run()));
    } catch (const ParseError& error) {
        errorText = "position " + std::to_string(error.position + 1) + ": " + error.reason;
        return nullptr;
    }
}

bool ObjectQuery::Matches(unsigned flags) const
{
    return Evaluate(int(m_nodes.size()) - 1, flags);
}

bool ObjectQuery::Evaluate(int index, unsigned flags) const
{
    const Node& node = m_nodes[std::size_t(index)];
    switch (node.kind) {
    case Node::Flag: return (flags & node.flag) != 0;
    case Node::And: return Evaluate(node.left, flags) && Evaluate(node.right, flags);
    case Node::Or: return Evaluate(node.left, flags) || Evaluate(node.right, flags);
    case Node::Not: return !Evaluate(node.left, flags);
    }
    return false;
}

}  // namespace hbrc::host
