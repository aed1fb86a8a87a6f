#pragma once

#include <hbrcdatamodel/export.h>

#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// Flags of an object that a query can test.
enum ObjectFlag : unsigned {
    kFlagPersistable = 0x1,
    kFlagMetadata = 0x2,
    kFlagDirty = 0x4,
    kFlagValueAsset = 0x8
};

// A parsed object query: "select object where EXPR", EXPR being a flag (IS_PERSISTABLE,
// IS_METADATA, IS_DIRTY, IS_VALUE_ASSET) or AND(EXPR, EXPR), OR(EXPR, EXPR), NOT(EXPR).
// Keywords and flags are case-sensitive; blanks may stand between any two symbols.
class HBRC_DATAMODEL_EXPORT ObjectQuery
{
public:
    // The query, or null with errorText "position N: reason" (N counts characters from 1).
    static std::unique_ptr<ObjectQuery> Parse(const std::string& text, std::string& errorText);

    // True when an object with these flags (ObjectFlag bits) is selected.
    bool Matches(unsigned flags) const;

    // One node of the expression; children are indices into the node list.
    struct Node
    {
        enum Kind { Flag, And, Or, Not } kind;
        unsigned flag = 0;
        int left = -1;
        int right = -1;
    };

private:
    explicit ObjectQuery(std::vector<Node> nodes) : m_nodes(std::move(nodes)) {}
    bool Evaluate(int node, unsigned flags) const;

    std::vector<Node> m_nodes;  // the root is the last node
};

}  // namespace hbrc::host
