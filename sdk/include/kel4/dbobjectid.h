#pragma once

#include <string>

/// Identifier of a database object, stable across sessions. The empty identifier is invalid.
class DbObjectId
{
public:
    DbObjectId() = default;
    explicit DbObjectId(std::string text) : m_text(std::move(text)) {}

    const std::string& GetStr() const { return m_text; }
    bool IsValid() const { return !m_text.empty(); }

    bool operator==(const DbObjectId& other) const { return m_text == other.m_text; }
    bool operator!=(const DbObjectId& other) const { return m_text != other.m_text; }
    bool operator<(const DbObjectId& other) const { return m_text < other.m_text; }

private:
    std::string m_text;
};

/// Saved version of an object. An object created since the last save has a null ancestor version.
class VersionId
{
public:
    VersionId() = default;
    explicit VersionId(std::string text) : m_text(std::move(text)) {}

    bool IsNull() const { return m_text.empty(); }
    const std::string& GetStr() const { return m_text; }
    bool operator==(const VersionId& other) const { return m_text == other.m_text; }

private:
    std::string m_text;
};
