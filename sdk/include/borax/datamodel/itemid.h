#pragma once

#include <cstdint>

namespace borax::datamodel {

/// Identifier of an item of an item library; 0 is no item.
class ItemID
{
public:
    constexpr ItemID() = default;
    constexpr explicit ItemID(std::uint64_t value) : m_value(value) {}
    constexpr std::uint64_t GetValue() const { return m_value; }
    constexpr bool IsValid() const { return m_value != 0; }
    constexpr bool operator==(const ItemID& o) const { return m_value == o.m_value; }
    constexpr bool operator!=(const ItemID& o) const { return m_value != o.m_value; }
    constexpr bool operator<(const ItemID& o) const { return m_value < o.m_value; }

private:
    std::uint64_t m_value = 0;
};

}  // namespace borax::datamodel
